// SPDX-License-Identifier: BSD-3-Clause
// Runs the functions of tst_*.qml. Without a function's name each runs in a process of its own;
// "--pictures" runs those that draw.
#include "appsworld.h"
#include "tests/support/testmain.h"
#include "tests/support/testnamespace.h"

#include <QApplication>
#include <QDir>
#include <QProcess>
#include <QtQuickTest>

#include <cstdio>

namespace {

const char *folder = QUICK_TEST_SOURCE_DIR;

struct Function
{
    QString file;
    QString testCase;
};

/// The test functions by name.
QMap<QString, Function> functions()
{
    static const QRegularExpression caseName(
        QStringLiteral("^    name: \"(\\w+)\"$"), QRegularExpression::MultilineOption);
    static const QRegularExpression functionName(
        QStringLiteral("^    function (test_\\w+)\\("), QRegularExpression::MultilineOption);
    QMap<QString, Function> found;
    const QDir dir(QString::fromUtf8(folder));
    for (const QString &name : dir.entryList({QStringLiteral("tst_*.qml")})) {
        const QString text = QString::fromUtf8(fileContents(dir.filePath(name)));
        auto matches = functionName.globalMatch(text);
        while (matches.hasNext()) {
            const QString function = matches.next().captured(1);
            if (!function.endsWith(QLatin1String("_data")))
                found.insert(function, {dir.filePath(name), caseName.match(text).captured(1)});
        }
    }
    return found;
}

int runEach(const QStringList &names)
{
    int failures = 0;
    for (const QString &name : names) {
        if (QProcess::execute(QStringLiteral("/proc/self/exe"), {name}) == 0)
            continue;
        ++failures;
        fprintf(stderr, "FAILED %s\n", qPrintable(name));
    }
    printf("%d of %d test functions failed\n", failures, names.size());
    return failures == 0 && !names.isEmpty() ? 0 : 1;
}

int run(const QString &name, const Function &function, char *program)
{
    TestMain::clearEnvironment();
    for (const char *variable : {"QT_QUICK_CONTROLS_STYLE", "QT_QPA_PLATFORMTHEME",
             "XDG_CURRENT_DESKTOP", "QT_QUICK_CONTROLS_MOBILE", "QT_SCALE_FACTOR"})
        qunsetenv(variable);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    qputenv("QML_DISABLE_DISK_CACHE", "1");
    TestNamespace::enter();
    QDir().mkpath(QStringLiteral("/run/user/0"));
    QFile::setPermissions(
        QStringLiteral("/run/user/0"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("XDG_RUNTIME_DIR", "/run/user/0");

    Window::setUpStyle();
    QByteArray input = function.file.toUtf8();
    QByteArray testFunction = (function.testCase + QLatin1String("::") + name).toUtf8();
    QByteArray inputOption = QByteArrayLiteral("-input");
    std::vector<char *> arguments{program, inputOption.data(), input.data(), testFunction.data()};
    int count = int(arguments.size());
    arguments.push_back(nullptr);
    QApplication application(count, arguments.data());
    AppsWorld world;
    return quick_test_main_with_setup(count, arguments.data(), "tst_lumdapps", folder, &world);
}

} // namespace

// Leaks are not looked for here: QML's own objects live until the end of the process, and what
// they own with them.
extern "C" const char *__asan_default_options(); // NOLINT: the sanitizer's own name
extern "C" const char *__asan_default_options() // NOLINT
{
    return "detect_leaks=0";
}

int main(int argc, char **argv)
{
    const QMap<QString, Function> all = functions();
    const QString argument = QString::fromLocal8Bit(argc > 1 ? argv[1] : "");
    if (argument == QLatin1String("-entries")) {
        for (const QString &name : all.keys())
            printf("tst_lumdapps.%s\n", qPrintable(name));
        return 0;
    }
    if (argument.isEmpty())
        return runEach(all.keys());
    if (argument == QLatin1String("--pictures"))
        return runEach(all.keys().filter(QRegularExpression(QStringLiteral("^test_picture"))));
    if (!all.contains(argument)) {
        fprintf(stderr, "%s: no such test function\n", argv[1]);
        return 1;
    }
    return run(argument, all.value(argument), argv[0]);
}
