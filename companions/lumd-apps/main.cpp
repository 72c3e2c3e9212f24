// SPDX-License-Identifier: BSD-3-Clause
// The window in which people manage their Android apps. Arguments are apk files to install.
#include "companions/lumd-apps/appsmodule.h"
#include "companions/lumd-apps/window.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QQmlApplicationEngine>

namespace {

QList<QUrl> filesAmong(const QStringList &arguments)
{
    QList<QUrl> files;
    for (const QString &argument : arguments)
        files.append(QUrl::fromUserInput(argument, QDir::currentPath(), QUrl::AssumeLocalFile));
    return files;
}

} // namespace

int main(int argc, char *argv[])
{
    Window::setUpStyle();
    const QApplication application(argc, argv);
    const Window::Texts texts;
    QCommandLineParser parser;
    parser.setApplicationDescription(qtTrId("lumd-apps-description"));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(
        QStringLiteral("files"), qtTrId("lumd-apps-files-argument"), QStringLiteral("[APK...]"));
    parser.process(application);

    AppsModule module;
    QQmlApplicationEngine engine;
    engine.load(QUrl(QLatin1String(Window::source)));
    if (engine.rootObjects().isEmpty())
        return 1;
    const QList<QUrl> files = filesAmong(parser.positionalArguments());
    if (!files.isEmpty())
        module.installer().install(files);
    return QApplication::exec();
}
