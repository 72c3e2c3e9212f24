// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"

#include "tests/support/fakegbinder/parcelreader.h"
#include "tests/support/fakegbinder/parcelwriter.h"

#include <QDir>
#include <QtTest>

#include <sys/stat.h>

using FakeBinder::ParcelReader;
using FakeBinder::ParcelWriter;

namespace {

QString connectedTo(const QString &service)
{
    return QStringLiteral("debug com.tovra.lumd.binder Connected to Alien Service %1").arg(service);
}

} // namespace

AppFixture::AppFixture()
{
    makeFile(QStringLiteral("/opt/alien/system.img"));
    makeFile(
        QStringLiteral("/opt/alien/build.prop"), QByteArrayLiteral("ro.build.version.sdk=27\n"));
    QDir().mkpath(marker());
}

void AppFixture::installCatalogues()
{
    const QDir built(QStringLiteral(CATALOGUES));
    const QStringList names = built.entryList({QStringLiteral("*.qm")});
    if (names.isEmpty())
        qFatal("no catalogues in %s", CATALOGUES);
    for (const QString &name : names)
        makeFile(
            QStringLiteral("/usr/share/translations/") + name, fileContents(built.filePath(name)));
}

bool AppFixture::bringUpRuntime()
{
    android->registerService(QStringLiteral("package"));
    android->registerService(QStringLiteral("alien"));
    return connectToRuntime();
}

bool AppFixture::connectToRuntime()
{
    return see(QStringLiteral("active")) && waitForLink(QStringLiteral("package"))
        && waitForLink(QStringLiteral("alien"));
}

bool AppFixture::see(const QString &state)
{
    systemd.setUnitState(state, QStringLiteral("test"));
    return daemon->waitForLine(
               QStringLiteral("debug com.tovra.lumd.service Alien Dalvik is \"%1\" ( \"test\" )")
                   .arg(state))
        && settle();
}

bool AppFixture::bringUp(const QString &service)
{
    if (!daemon->lines().contains(connectedTo(service)))
        android->registerService(service);
    return waitForLink(service);
}

bool AppFixture::waitForLink(const QString &service)
{
    return daemon->waitForLine(connectedTo(service)) && settle();
}

void AppFixture::renew()
{
    DaemonFixture::renew();
    systemd.setUnitStateSilently(QStringLiteral("inactive"), QStringLiteral("dead"));
    systemd.clearCalls();
    notifications.clear();
}

QStringList AppFixture::daemonLines() const
{
    const QString category = QStringLiteral(" com.tovra.lumd.daemon ");
    return daemon->lines().filter(category).replaceInStrings(category, QStringLiteral(" "));
}

QVector<FakeBinder::Request> AppFixture::requests(const QString &service, quint32 code)
{
    android->settle(); // what the daemon sent before has arrived then
    QVector<FakeBinder::Request> found;
    for (const FakeBinder::Request &request : android->requests()) {
        if (request.service == service && request.code == code)
            found.append(request);
    }
    return found;
}

int AppFixture::starts() const
{
    return systemd.callTexts().count(QStringLiteral("StartUnit(aliendalvik.service, replace)"));
}

void AppFixture::expectFailure(const QString &path, const QStringList &words, int expectedStarts)
{
    QCOMPARE(
        resultOf(call(QStringLiteral("installPartnerSpaceFile"), {path})), QStringLiteral("false"));
    QTRY_COMPARE(
        daemonLines(), QStringList{QStringLiteral("debug installFile: \"%1\"").arg(path)} + words);
    QCOMPARE(entries(marker()), QStringList());
    call(QStringLiteral("controlServiceAutostart"), {false});
    QVERIFY(systemd.waitForCall(QStringLiteral("DisableUnitFiles")));
    QCOMPARE(starts(), expectedStarts);
    QCOMPARE(notifications.texts(), QStringList());
    // Nothing waits for the runtime.
    QVERIFY(bringUpRuntime());
    QCOMPARE(requests(QStringLiteral("package"), installCode).size(), 0);
}

void addStatesAndStarts()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<int>("starts");
    QTest::newRow("inactive") << QStringLiteral("inactive") << 1;
    QTest::newRow("deactivating") << QStringLiteral("deactivating") << 1;
    QTest::newRow("activating") << QStringLiteral("activating") << 0;
    QTest::newRow("active") << QStringLiteral("active") << 0;
    QTest::newRow("failed") << QStringLiteral("failed") << 0;
    QTest::newRow("reloading") << QStringLiteral("reloading") << 0;
    QTest::newRow("Inactive") << QStringLiteral("Inactive") << 0;
}

QString resultOf(const QDBusMessage &reply)
{
    const QString error = errorOf(reply);
    if (!error.isEmpty())
        return error;
    return reply.arguments().value(0).toBool() ? QStringLiteral("true") : QStringLiteral("false");
}

QString incoming(const QString &name)
{
    return QLatin1String("/home/.android") + incomingInRuntime(name);
}

QString incomingInRuntime(const QString &name)
{
    return QLatin1String("/data/aas-staging/app/incoming/") + name;
}

QString packaged(const QString &name)
{
    return QLatin1String("/home/.android/data/aas-staging/app/packaged/") + name;
}

QString couldNotCopy(const QString &path, const QString &name)
{
    return QStringLiteral("critical Could not copy incoming file: \"%1\" -> \"%2.tmp\"")
        .arg(path, incoming(name));
}

QString marker(const QString &name)
{
    return QLatin1String("/usr/share/lumd/partnerspace/") + name;
}

QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

QString rights(const QString &path)
{
    struct stat status = {};
    if (lstat(QFile::encodeName(path).constData(), &status) != 0)
        return QStringLiteral("missing");
    return QStringLiteral("%1:%2 %3")
        .arg(status.st_uid)
        .arg(status.st_gid)
        .arg(status.st_mode & 07777, 0, 8);
}

QByteArray installBody(const QString &path, quint32 observer)
{
    constexpr qint32 flags = 66;
    constexpr qint32 user = 0;
    ParcelWriter writer(ParcelWriter::Style::Gbinder);
    writer.string16(path);
    if (observer != 0)
        writer.localObject(observer);
    else
        writer.nullObject();
    return writer.int32(flags).nullString16().int32(user).bytes();
}

QByteArray uninstallBody(const QString &package, quint32 observer)
{
    constexpr qint32 anyVersion = -1;
    constexpr qint32 user = 0;
    constexpr qint32 flags = 2;
    ParcelWriter writer(ParcelWriter::Style::Gbinder);
    writer.string16(package).int32(anyVersion);
    if (observer != 0)
        writer.localObject(observer);
    else
        writer.nullObject();
    return writer.int32(user).int32(flags).bytes();
}

QStringList names(const QVector<FakeBinder::Request> &requests)
{
    QStringList names;
    for (const FakeBinder::Request &request : requests)
        names.append(ParcelReader(request.payload).string16());
    return names;
}

QString remark(Remark kind, const QString &body)
{
    return kind == Remark::Warning
        ? QStringLiteral("\"\" 0 \"icon-lock-warning\" \"\" \"%1\" actions() "
                         "hints(image-path=icon-lock-warning:QString transient=true:bool "
                         "urgency=2:uchar) -1")
              .arg(body)
        : QStringLiteral("\"\" 0 \"icon-s-android\" \"\" \"%1\" actions() "
                         "hints(image-path=icon-s-android:QString transient=true:bool) -1")
              .arg(body);
}
