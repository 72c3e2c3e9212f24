// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/announcementtest.h"

#include "tests/support/fakegbinder/parcelwriter.h"

#include <QDir>
#include <QFileInfo>
#include <QtTest>

#include <sys/stat.h>

using FakeBinder::ParcelWriter;

QString Launcher::fileName() const
{
    const auto escaped = [](QString name) {
        return name.replace(QStringLiteral("_"), QStringLiteral("__"))
            .replace(QStringLiteral("."), QStringLiteral("_"));
    };
    return QStringLiteral("lumd_launcher_%1-%2").arg(escaped(packageName), escaped(className));
}

QString Launcher::entryPath() const
{
    return QStringLiteral("/usr/share/applications/%1.desktop").arg(fileName());
}

QString Launcher::iconPath() const
{
    return QStringLiteral("/var/lib/lumd/%1.png").arg(fileName());
}

QString Launcher::settingsPath() const
{
    return QStringLiteral("/usr/share/tovra-settings/entries/%1.json").arg(fileName());
}

QByteArray Launcher::payload() const
{
    return ParcelWriter()
        .string16(packageName)
        .string16(className)
        .string16(caption)
        .string16(version)
        .byteArray(icon)
        .bytes();
}

Launcher clockLauncher()
{
    return {QStringLiteral("org.example.clock"), QStringLiteral("org.example.clock.Main"),
        QStringLiteral("K\u00e4llo"), QStringLiteral("1.2"), QByteArray("\x89PNG\0clock", 10)};
}

Launcher alarmLauncher()
{
    return {QStringLiteral("org.example.clock"), QStringLiteral("org.example.clock.Alarm"),
        QStringLiteral("Alarm"), QStringLiteral("1.2"), QByteArrayLiteral("alarm")};
}

Launcher mapLauncher()
{
    return {QStringLiteral("com.a_b.map"), QStringLiteral(".Map"), QStringLiteral("Map"),
        QStringLiteral("7"), QByteArrayLiteral("map")};
}

QByteArray entryText(const Launcher &launcher)
{
    return QStringLiteral("[Desktop Entry]\n"
                          "Exec=lumd-launcher %1.apk %1/%2\n"
                          "Icon=%3\n"
                          "Name=%4\n"
                          "Type=Application\n"
                          "Version=1.0\n"
                          "X-Tesk-Application-Type=no-invoker\n"
                          "X-lumd-apkfile=/home/.android/data/app//%1.apk\n"
                          "X-lumd-packageName=%1\n")
        .arg(launcher.packageName, launcher.className, launcher.iconPath(), launcher.caption)
        .toUtf8();
}

QByteArray settingsText(const Launcher &launcher)
{
    return QStringLiteral("{\n"
                          "    \"entries\": [\n"
                          "        {\n"
                          "            \"params\": {\n"
                          "                \"properties\": {\n"
                          "                    \"packageName\": \"%1\",\n"
                          "                    \"packageVersion\": \"%2\"\n"
                          "                },\n"
                          "                \"source\": \"/usr/share/tovra-settings/pages/"
                          "apk-configuration/apkConfigurationPage.qml\"\n"
                          "            },\n"
                          "            \"path\": \"applications/%3.desktop\",\n"
                          "            \"type\": \"page\"\n"
                          "        }\n"
                          "    ]\n"
                          "}\n")
        .arg(launcher.packageName, launcher.version, launcher.fileName())
        .toUtf8();
}

QStringList generatedFiles()
{
    QStringList files;
    for (const char *folder :
        {"/usr/share/applications/", "/usr/share/tovra-settings/entries/", "/var/lib/lumd/"}) {
        const QDir dir(QString::fromLatin1(folder));
        const QStringList names =
            dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        for (const QString &name : names)
            files.append(dir.filePath(name));
    }
    return files;
}

QStringList filesOf(const QVector<Launcher> &launchers)
{
    QStringList files;
    for (const Launcher &launcher : launchers)
        files << launcher.entryPath() << launcher.iconPath() << launcher.settingsPath();
    files.sort();
    return files;
}

QStringList identities(const QStringList &files)
{
    QStringList identities;
    for (const QString &path : files) {
        struct stat status = {};
        stat(qPrintable(path), &status);
        identities.append(QStringLiteral("%1 %2.%3")
                .arg(status.st_ino)
                .arg(status.st_mtim.tv_sec)
                .arg(status.st_mtim.tv_nsec));
    }
    return identities;
}

void AnnouncementTest::initTestCase()
{
    m_world = std::make_unique<DaemonFixture>();
}

void AnnouncementTest::init()
{
    m_world->systemd.setUnitStateSilently(QStringLiteral("active"), QStringLiteral("running"));
    const QStringList files = generatedFiles();
    for (const QString &path : files)
        QVERIFY(QFile::remove(path));
}

void AnnouncementTest::cleanup()
{
    m_world->renew();
}

bool AnnouncementTest::startServed()
{
    return m_world->start() && m_world->android->waitForPublished(QStringLiteral("alien.launcher"));
}

FakeBinder::Answer AnnouncementTest::send(quint32 code, const QByteArray &payload)
{
    FakeBinder::Call call;
    call.code = code;
    call.interface = QStringLiteral("alien.applications.IAlienNativeLauncherService");
    call.payload = payload;
    call.initialStatus = 77;
    return m_world->android->transact(QStringLiteral("alien.launcher"), call);
}

bool AnnouncementTest::announce(const Launcher &launcher)
{
    const FakeBinder::Answer answer = send(launcherAdded, launcher.payload());
    return answer.delivered && answer.status == 0 && !answer.hasReply;
}
