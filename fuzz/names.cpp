// SPDX-License-Identifier: BSD-3-Clause
#include "config/apkconfig.h"
#include "config/launchernames.h"
#include "fuzz/setup.h"

#include <QDir>
#include <QFileInfo>

namespace {

QString unescaped(QString name)
{
    // The other way round: what was a dot is a single underscore.
    return name.replace(QLatin1String("__"), QLatin1String("/"))
        .replace(QLatin1Char('_'), QLatin1Char('.'))
        .replace(QLatin1Char('/'), QLatin1Char('_'));
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<int>(size));

    ApkConfig::runtimePath(text);
    const QUrl url = ApkConfig::runtimeUrl(text);
    Fuzz::require(!text.startsWith(QLatin1String("/home")) || url.isLocalFile());

    const QString escaped = escapeLauncherName(text, QStringLiteral("Main"));
    Fuzz::require(!escaped.contains(QLatin1Char('.')) && escaped.endsWith(QLatin1String("-Main")));
    const bool isReversible = !text.contains(QLatin1Char('/'))
        && !text.contains(QLatin1String("._")) && !text.contains(QLatin1String("_."))
        && !text.contains(QLatin1String(".."));
    Fuzz::require(!isReversible || unescaped(escaped.chopped(5)) == text);

    isApkPath(text);
    Fuzz::require(!iconPathFor(text).contains(QLatin1String("/usr/share/applications/"))
        || text.contains(QLatin1String("/usr/share/appl")));
    Fuzz::require(settingsEntryPathFor(text).endsWith(QLatin1String(".json")));
    const QDir folder(QStringLiteral("/usr/share/lumd"));
    // QDir takes a name that begins with a colon for the absolute path of a Qt resource.
    Fuzz::require(unversionedApkPath(folder, text).startsWith(QLatin1String("/usr/share/lumd"))
        || QFileInfo(text).fileName().startsWith(QLatin1Char(':')));
    unversionedApkExists(folder, text);
    return 0;
}
