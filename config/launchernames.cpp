// SPDX-License-Identifier: BSD-3-Clause
#include "config/launchernames.h"

#include "config/paths.h"

#include <QDir>
#include <QFileInfo>
#include <QRegExp>

namespace {

// Underscores first: the other way round those made from dots would be doubled.
QString escaped(QString name)
{
    return name.replace(QLatin1String("_"), QLatin1String("__"))
        .replace(QLatin1String("."), QLatin1String("_"));
}

QString unversionedApkName(const QString &apkPath)
{
    return QFileInfo(apkPath).fileName().replace(
        QRegExp(QStringLiteral("-\\d+\\.apk")), QStringLiteral(".apk"));
}

} // namespace

QString escapeLauncherName(const QString &packageName, const QString &className)
{
    return escaped(packageName) + QLatin1Char('-') + escaped(className);
}

bool isApkPath(const QString &path)
{
    if (path.endsWith(QLatin1String(".apk"), Qt::CaseInsensitive))
        return true;
    return QFileInfo(path).isDir() && QDir(path).exists(QStringLiteral("base.apk"));
}

QString iconPathFor(const QString &desktopPath)
{
    return QString(desktopPath)
        .replace(QLatin1String(Paths::applications), QLatin1String(Paths::icons))
        .replace(QLatin1String(".desktop"), QLatin1String(".png"));
}

QString settingsEntryPathFor(const QString &desktopPath)
{
    return QLatin1String(Paths::settingsEntries) + QFileInfo(desktopPath).completeBaseName()
        + QLatin1String(".json");
}

QString unversionedApkPath(const QDir &dir, const QString &apkPath)
{
    return dir.absoluteFilePath(unversionedApkName(apkPath));
}

bool unversionedApkExists(const QDir &dir, const QString &apkPath)
{
    return dir.exists(unversionedApkName(apkPath));
}
