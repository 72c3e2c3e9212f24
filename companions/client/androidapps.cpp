// SPDX-License-Identifier: BSD-3-Clause
#include "client/androidapps.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

const QLatin1String desktopSuffix(".desktop");

using Test = std::function<bool(const AndroidLauncher &)>;

/// The one app of which launchers pass the test, or all apps of which some do.
NamedApp findByLauncher(const QVector<AndroidApp> &apps, const Test &test)
{
    NamedApp named;
    for (const AndroidApp &app : apps) {
        const auto first = std::find_if(app.launchers.cbegin(), app.launchers.cend(), test);
        if (first == app.launchers.cend())
            continue;
        const bool isOnlyOne = std::none_of(first + 1, app.launchers.cend(), test);
        named.candidates.append(app);
        named.launcher = isOnlyOne ? int(first - app.launchers.cbegin()) : -1;
    }
    if (named.candidates.size() == 1) {
        named.kind = NamedApp::Kind::Found;
        named.app = named.candidates.takeFirst();
    } else if (!named.candidates.isEmpty()) {
        named.kind = NamedApp::Kind::Doubtful;
        named.launcher = -1;
    }
    return named;
}

bool isDesktopFile(const AndroidLauncher &launcher, const QString &name)
{
    if (name.contains(QLatin1Char('/')))
        return launcher.desktopFile == QFileInfo(name).absoluteFilePath();
    const QString fileName = launcher.desktopFile.section(QLatin1Char('/'), -1);
    return fileName == name || fileName == name + desktopSuffix;
}

QVector<AndroidApp> appsNearly(const QVector<AndroidApp> &apps, const QString &name)
{
    const auto isPart = [&name](const QString &text) {
        return text.contains(name, Qt::CaseInsensitive);
    };
    QVector<AndroidApp> found;
    std::copy_if(
        apps.cbegin(), apps.cend(), std::back_inserter(found), [&isPart](const AndroidApp &app) {
            return isPart(app.package)
                || std::any_of(app.launchers.cbegin(), app.launchers.cend(),
                    [&isPart](const AndroidLauncher &launcher) { return isPart(launcher.name); });
        });
    return found;
}

} // namespace

QString AndroidLauncher::className() const
{
    // lumd-launcher PACKAGE.apk PACKAGE/CLASS
    const QByteArray key = QByteArrayLiteral("Exec=lumd-launcher ");
    QFile entry(desktopFile);
    if (!entry.open(QIODevice::ReadOnly))
        return {};
    while (!entry.atEnd()) {
        const QByteArray line = entry.readLine();
        if (line.startsWith(key))
            return QString::fromUtf8(line.mid(line.indexOf('/', key.size()) + 1)).trimmed();
    }
    return {};
}

QString AndroidApp::name() const
{
    return launchers.isEmpty() || launchers.first().name.isEmpty() ? package
                                                                   : launchers.first().name;
}

QString AndroidApp::version() const
{
    return launchers.isEmpty() ? QString() : launchers.first().version;
}

NamedApp findApp(const QVector<AndroidApp> &apps, const QString &name)
{
    NamedApp named;
    if (name.isEmpty())
        return named;
    const auto ofPackage = std::find_if(
        apps.cbegin(), apps.cend(), [&name](const AndroidApp &app) { return app.package == name; });
    if (ofPackage != apps.cend()) {
        named.kind = NamedApp::Kind::Found;
        named.app = *ofPackage;
        return named;
    }
    const Test tests[] = {
        [&name](const AndroidLauncher &launcher) { return isDesktopFile(launcher, name); },
        [&name](const AndroidLauncher &launcher) { return launcher.name == name; },
        [&name](const AndroidLauncher &launcher) {
            return launcher.name.compare(name, Qt::CaseInsensitive) == 0;
        },
    };
    for (const Test &test : tests) {
        named = findByLauncher(apps, test);
        if (named.kind != NamedApp::Kind::Unknown)
            return named;
    }
    named.candidates = appsNearly(apps, name);
    if (!named.candidates.isEmpty())
        named.kind = NamedApp::Kind::Doubtful;
    return named;
}
