// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/testmain.h"

#include "tests/support/testnamespace.h"

#include <QCoreApplication>
#include <QMetaMethod>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

struct Test
{
    QByteArray name;
    const QMetaObject *metaObject = nullptr;
    TestMain::Factory factory;
};

std::vector<Test> &tests()
{
    static std::vector<Test> all;
    return all;
}

/// The executable's only test, or the one that it was started by the name of.
const Test *testNamed(const QByteArray &program)
{
    const QByteArray name = program.mid(program.lastIndexOf('/') + 1);
    const auto isNamed = [&name](const Test &test) { return test.name == name; };
    const auto found = std::find_if(tests().cbegin(), tests().cend(), isNamed);
    if (found != tests().cend())
        return &*found;
    return tests().size() == 1 ? &tests().front() : nullptr;
}

/// What QTest takes for a test function.
std::vector<QByteArray> testFunctions(const QMetaObject &metaObject)
{
    std::vector<QByteArray> names;
    for (int i = 0; i < metaObject.methodCount(); ++i) {
        const QMetaMethod method = metaObject.method(i);
        const QByteArray name = method.name();
        if (method.methodType() == QMetaMethod::Slot && method.access() == QMetaMethod::Private
            && method.parameterCount() == 0 && method.returnType() == QMetaType::Void
            && !name.endsWith("_data") && name != "initTestCase" && name != "cleanupTestCase"
            && name != "init" && name != "cleanup")
            names.push_back(name);
    }
    return names;
}

bool namesFunction(const std::vector<QByteArray> &functions, const char *argument)
{
    const QByteArray text(argument);
    const QByteArray name = text.left(text.indexOf(':') < 0 ? text.size() : text.indexOf(':'));
    return std::find(functions.cbegin(), functions.cend(), name) != functions.cend();
}

/// Asks for something that runs no test: "-functions", "-help" and their like.
bool asksForInformation(const char *argument)
{
    const QByteArray text(argument);
    return text == "-functions" || text == "-datatags" || text == "-help" || text == "--help"
        || text == "-h";
}

int runInProcess(int argc, char **argv, const QByteArray &function)
{
    std::vector<char *> arguments(argv, argv + argc);
    QByteArray name = function;
    arguments.push_back(name.data());
    arguments.push_back(nullptr);
    fflush(nullptr);
    const pid_t process = fork();
    if (process == 0) {
        execv("/proc/self/exe", arguments.data());
        _exit(127);
    }
    int status = -1;
    return process > 0 && waitpid(process, &status, 0) == process ? status : -1;
}

int runEach(int argc, char **argv, const std::vector<QByteArray> &functions)
{
    int failures = 0;
    for (const QByteArray &function : functions) {
        if (runInProcess(argc, argv, function) == 0)
            continue;
        ++failures;
        fprintf(stderr, "FAILED %s\n", function.constData());
    }
    printf("%d of %d test functions failed\n", failures, int(functions.size()));
    return failures == 0 && !functions.empty() ? 0 : 1;
}

} // namespace

void TestMain::clearEnvironment()
{
    for (const char *name : {"ANDROID_DATA_ROOT", "LUMD_PACKAGE_BLACKLIST_PATH",
             "DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS", "FAKE_GBINDER_SOCKET",
             "QT_LOGGING_RULES", "QT_LOGGING_CONF", "QT_LOGGING_DEBUG", "QT_MESSAGE_PATTERN",
             "QT_NO_GLIB", "XDG_RUNTIME_DIR", "LANG", "LANGUAGE"})
        qunsetenv(name);
    qputenv("LC_ALL", "C.UTF-8");
    // No qtlogging.ini of the user's.
    qputenv("XDG_CONFIG_HOME", "/run/config");
}

namespace {

void listEntries()
{
    for (const Test &test : tests()) {
        for (const QByteArray &function : testFunctions(*test.metaObject))
            printf("%s.%s\n", test.name.constData(), function.constData());
    }
}

int runTest(int argc, char **argv, const Test &test)
{
    const std::vector<QByteArray> functions = testFunctions(*test.metaObject);
    bool isNamed = false;
    bool isInformation = false;
    for (int i = 1; i < argc; ++i) {
        isNamed = isNamed || namesFunction(functions, argv[i]);
        isInformation = isInformation || asksForInformation(argv[i]);
    }
    // A misspelt name must not run all the rest.
    if (!isNamed && !isInformation && argc > 1 && argv[argc - 1][0] != '-') {
        fprintf(stderr, "%s: no such test function\n", argv[argc - 1]);
        return 1;
    }
    if (!isNamed && !isInformation)
        return runEach(argc, argv, functions);
    if (!isInformation) {
        TestMain::clearEnvironment();
        TestNamespace::enter();
    }
    QCoreApplication application(argc, argv);
    const std::unique_ptr<QObject> object = test.factory();
    return QTest::qExec(object.get(), argc, argv);
}

} // namespace

TestMain::Registration::Registration(
    const char *source, const QMetaObject &metaObject, const Factory &factory)
{
    QByteArray name(source);
    name = name.mid(name.lastIndexOf('/') + 1);
    tests().push_back({name.left(name.indexOf('.')), &metaObject, factory});
}

int TestMain::run(int argc, char **argv)
{
    if (argc == 2 && qstrcmp(argv[1], "-entries") == 0) {
        listEntries();
        return 0;
    }
    const Test *const test = testNamed(argv[0]);
    if (!test) {
        fprintf(stderr, "%s: start this by a link with the name of a test\n", argv[0]);
        return 1;
    }
    return runTest(argc, argv, *test);
}
