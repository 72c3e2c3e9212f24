// SPDX-License-Identifier: BSD-3-Clause
#include "tests/launcher/launcherfiles.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace LauncherFiles {

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size()
        || !file.flush())
        qFatal("Cannot write %s", qPrintable(path));
}

QByteArray read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("Cannot read %s", qPrintable(path));
    return file.readAll();
}

void makeDirectory(const QString &path)
{
    if (!QDir().mkpath(path))
        qFatal("Cannot make %s", qPrintable(path));
}

QStringList listing(const QString &directory)
{
    QStringList names = QDir(directory).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    names.sort();
    return names;
}

QStringList allFiles()
{
    QStringList paths;
    for (const char *directory : {applications, icons, settings}) {
        for (const QString &name : listing(directory))
            paths.append(QLatin1String(directory) + name);
    }
    return paths;
}

QStringList filesOf(const ApkLauncher &launcher)
{
    return {desktopPath(launcher), iconPath(launcher), settingsPath(launcher)};
}

bool operator==(const Stamp &a, const Stamp &b)
{
    return a.inode == b.inode && a.modified == b.modified;
}

Stamp stamp(const QString &path)
{
    struct stat status = {};
    if (stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return {status.st_ino, status.st_mtim.tv_sec * qint64(1000000000) + status.st_mtim.tv_nsec};
}

unsigned int mode(const QString &path)
{
    struct stat status = {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777u : 0;
}

void fillDisk(const QString &directory)
{
    const QByteArray path = QFile::encodeName(QDir(directory).filePath(QStringLiteral("filler")));
    const int descriptor = open(path.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    const QByteArray block(4096, 'f');
    while (::write(descriptor, block.constData(), static_cast<size_t>(block.size())) > 0) { }
    const bool isFull = errno == ENOSPC;
    close(descriptor);
    if (!isFull)
        qFatal("Cannot fill %s", path.constData());
}

ApkLauncher launcher(const char *packageName, const char *className)
{
    return {QStringLiteral("Caption"), "icon", QString::fromUtf8(packageName),
        QString::fromUtf8(className), QStringLiteral("1")};
}

QByteArray entryText(const ApkLauncher &launcher, const QMap<QString, QString> &further)
{
    QMap<QString, QString> keys = further;
    keys.insert(QStringLiteral("Exec"),
        QLatin1String("lumd-launcher ") + launcher.packageName + QLatin1String(".apk ")
            + launcher.packageName + QLatin1Char('/') + launcher.className);
    keys.insert(QStringLiteral("Icon"), iconPath(launcher));
    keys.insert(QStringLiteral("Name"), launcher.caption);
    keys.insert(QStringLiteral("Type"), QStringLiteral("Application"));
    keys.insert(QStringLiteral("Version"), QStringLiteral("1.0"));
    keys.insert(QStringLiteral("X-Tesk-Application-Type"), QStringLiteral("no-invoker"));
    keys.insert(QStringLiteral("X-lumd-apkfile"),
        QLatin1String("/home/.android/data/app//") + launcher.packageName + QLatin1String(".apk"));
    keys.insert(QStringLiteral("X-lumd-packageName"), launcher.packageName);
    QByteArray text("[Desktop Entry]\n");
    for (auto key = keys.constBegin(); key != keys.constEnd(); ++key)
        text += key.key().toUtf8() + '=' + key.value().toUtf8() + '\n';
    return text;
}

QString leaveBehind(const ApkLauncher &launcher)
{
    write(desktopPath(launcher), entryText(launcher));
    write(iconPath(launcher), launcher.icon);
    write(settingsPath(launcher), "{}");
    return desktopPath(launcher);
}

QString baseName(const ApkLauncher &launcher)
{
    QString name = launcher.packageName + QLatin1Char('-') + launcher.className;
    return QLatin1String("lumd_launcher_") + name.replace(QLatin1Char('.'), QLatin1Char('_'));
}

QString desktopPath(const ApkLauncher &launcher)
{
    return QLatin1String(applications) + baseName(launcher) + QLatin1String(".desktop");
}

QString iconPath(const ApkLauncher &launcher)
{
    return QLatin1String(icons) + baseName(launcher) + QLatin1String(".png");
}

QString settingsPath(const ApkLauncher &launcher)
{
    return QLatin1String(settings) + baseName(launcher) + QLatin1String(".json");
}

QString logLine(const char *level, const QString &text)
{
    return QLatin1String(level) + QLatin1String(" com.tovra.lumd.launcher ") + text;
}

QString pathLine(const char *level, const char *words, const QString &path)
{
    return logLine(level, QLatin1String(words) + QLatin1String(" \"") + path + QLatin1Char('"'));
}

QStringList announcedLines(const ApkLauncher &launcher)
{
    return {
        pathLine("debug", "onCreateLauncher:", desktopPath(launcher)),
        pathLine("debug", "iconfilename:", iconPath(launcher)),
    };
}

QStringList rewrittenLines(const ApkLauncher &launcher)
{
    return announcedLines(launcher) << pathLine("debug", "Updating:", desktopPath(launcher));
}

QString iconFailure(const ApkLauncher &launcher)
{
    return pathLine("warning", "Unable to write icon:", iconPath(launcher));
}

QString settingFailure(const ApkLauncher &launcher)
{
    return pathLine("warning", "Unable to write json file", settingsPath(launcher))
        + QLatin1String(" for writing");
}

QString openFailure(const ApkLauncher &launcher)
{
    return pathLine("warning", "Could not open", desktopPath(launcher))
        + QLatin1String(" for writing");
}

QStringList warnings(const LogCapture &log)
{
    QStringList lines = log.lines();
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                    [](const QString &line) { return line.startsWith(QLatin1String("debug ")); }),
        lines.end());
    return lines;
}

} // namespace LauncherFiles
