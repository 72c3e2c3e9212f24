// SPDX-License-Identifier: BSD-3-Clause
#include "config/launchernames.h"

#include "config/paths.h"

#include <QDir>
#include <QFileInfo>
#include <QRegExp>
#include <QStringBuilder>

namespace {

// Doubles underscores and turns dots into single ones. Gives the end of what it has written.
QChar *writeEscaped(const QString &name, QChar *end)
{
    for (const QChar character : name) {
        if (character == QLatin1Char('_'))
            *end++ = character;
        *end++ = character == QLatin1Char('.') ? QLatin1Char('_') : character;
    }
    return end;
}

QString unversionedApkName(const QString &apkPath)
{
    QString name = apkPath.mid(apkPath.lastIndexOf(QLatin1Char('/')) + 1);
    if (name.contains(QLatin1Char('-')))
        name.replace(QRegExp(QStringLiteral("-\\d+\\.apk")), QStringLiteral(".apk"));
    return name;
}

// Qt takes a path that begins with a colon for a resource of the program.
QString onDisk(const QString &path)
{
    return path.startsWith(QLatin1Char(':')) ? QLatin1String("./") + path : path;
}

} // namespace

QString escapeLauncherName(const QString &packageName, const QString &className)
{
    QString result(2 * (packageName.size() + className.size()) + 1, Qt::Uninitialized);
    QChar *end = writeEscaped(packageName, result.data());
    *end++ = QLatin1Char('-');
    end = writeEscaped(className, end);
    result.truncate(static_cast<int>(end - result.constData()));
    return result;
}

bool isApkPath(const QString &path)
{
    if (path.endsWith(QLatin1String(".apk"), Qt::CaseInsensitive))
        return true;
    const QString folder = onDisk(path);
    return QFileInfo(folder).isDir() && QDir(folder).exists(QStringLiteral("base.apk"));
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

QString pathInFolder(const QDir &dir, const QString &name)
{
    if (!name.startsWith(QLatin1Char(':')))
        return dir.filePath(name);
    const QString current = dir.filePath(QStringLiteral("."));
    return current.chopped(1) + name;
}

QString unversionedApkPath(const QDir &dir, const QString &apkPath)
{
    return pathInFolder(QDir(dir.absolutePath()), unversionedApkName(apkPath));
}

bool unversionedApkExists(const QDir &dir, const QString &apkPath)
{
    return dir.exists(onDisk(unversionedApkName(apkPath)));
}
