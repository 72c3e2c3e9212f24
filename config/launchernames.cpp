// SPDX-License-Identifier: BSD-3-Clause
#include "config/launchernames.h"

#include "config/paths.h"

#include <QDir>
#include <QFileInfo>
#include <QRegExp>
#include <QStringBuilder>

namespace {

// Doubles underscores and turns dots into single ones.
QString escaped(const QString &name)
{
    QString result(2 * name.size(), Qt::Uninitialized);
    QChar *end = result.data();
    for (const QChar character : name) {
        if (character == QLatin1Char('_'))
            *end++ = character;
        *end++ = character == QLatin1Char('.') ? QLatin1Char('_') : character;
    }
    result.truncate(static_cast<int>(end - result.constData()));
    return result;
}

QString unversionedApkName(const QString &apkPath)
{
    QString name = QFileInfo(apkPath).fileName();
    if (name.contains(QLatin1Char('-')))
        name.replace(QRegExp(QStringLiteral("-\\d+\\.apk")), QStringLiteral(".apk"));
    return name;
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
    const QStringView name =
        QStringView(desktopPath).mid(desktopPath.lastIndexOf(QLatin1Char('/')) + 1);
    const auto suffix = name.lastIndexOf(QLatin1Char('.'));
    return QLatin1String(Paths::settingsEntries) % name.left(suffix < 0 ? name.size() : suffix)
        % QLatin1String(".json");
}

QString unversionedApkPath(const QDir &dir, const QString &apkPath)
{
    return dir.absoluteFilePath(unversionedApkName(apkPath));
}

bool unversionedApkExists(const QDir &dir, const QString &apkPath)
{
    return dir.exists(unversionedApkName(apkPath));
}
