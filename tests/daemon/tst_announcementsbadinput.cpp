// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/announcementtest.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"

using FakeBinder::ParcelWriter;

class TestAnnouncementsBadInput : public AnnouncementTest
{
    Q_OBJECT

private Q_SLOTS:
    void otherCallsAreTurnedAway_data();
    void otherCallsAreTurnedAway();
    void announcementCutAnywhereIsSurvived();
    void lyingLengthIsSurvived();
};

void TestAnnouncementsBadInput::otherCallsAreTurnedAway_data()
{
    QTest::addColumn<QString>("interface");
    QTest::addColumn<quint32>("code");
    QTest::addColumn<int>("status");

    const QString own = QStringLiteral("alien.applications.IAlienNativeLauncherService");
    QTest::newRow("code 0") << own << 0U << 1;
    QTest::newRow("code 4") << own << 4U << 1;
    QTest::newRow("a large code") << own << 0xffffffU << 1;
    QTest::newRow("another interface") << QStringLiteral("android.os.IFoo") << 1U << 77;
    QTest::newRow("another interface's complete list") << own.toLower() << 2U << 77;
    QTest::newRow("an interface that begins alike") << own + QLatin1Char('2') << 2U << 77;
    QTest::newRow("an empty interface") << QStringLiteral("") << 2U << 77;
    QTest::newRow("no header") << QString() << 2U << 77;
}

void TestAnnouncementsBadInput::otherCallsAreTurnedAway()
{
    QFETCH(QString, interface);
    QFETCH(quint32, code);
    QVERIFY(startServed());
    QVERIFY(announce(clockLauncher()));
    m_world->renew();
    QVERIFY(startServed());

    FakeBinder::Call call;
    call.code = code;
    call.interface = interface;
    call.payload = mapLauncher().payload();
    call.initialStatus = 77;
    const FakeBinder::Answer answer =
        m_world->android->transact(QStringLiteral("alien.launcher"), call);
    QVERIFY(answer.delivered);
    QTEST(answer.status, "status");
    QVERIFY(!answer.hasReply);
    QCOMPARE(generatedFiles(), filesOf({clockLauncher()}));
}

void TestAnnouncementsBadInput::announcementCutAnywhereIsSurvived()
{
    QVERIFY(startServed());
    const Launcher launcher = mapLauncher();
    const QByteArray whole = launcher.payload();
    const int captionEnd = ParcelWriter()
                               .string16(launcher.packageName)
                               .string16(launcher.className)
                               .string16(launcher.caption)
                               .bytes()
                               .size();
    for (int size = 0; size < whole.size(); ++size) {
        const FakeBinder::Answer answer = send(launcherAdded, whole.left(size));
        const QByteArray where = QByteArray::number(size);
        QVERIFY2(answer.delivered && answer.status == 0 && !answer.hasReply, where.constData());
        // What has no caption is not made.
        QVERIFY2(QFile::exists(launcher.entryPath()) == (size >= captionEnd), where.constData());
    }
    QVERIFY(announce(launcher));
    QCOMPARE(generatedFiles(), filesOf({launcher}));
    QCOMPARE(fileContents(launcher.iconPath()), launcher.icon);
    QVERIFY(m_world->daemon->isRunning());
    QCOMPARE(m_world->android->errors(), QStringList());
}

void TestAnnouncementsBadInput::lyingLengthIsSurvived()
{
    const ParcelWriter uncaptioned = ParcelWriter()
                                         .string16(QStringLiteral("com.foo"))
                                         .string16(QStringLiteral("Main"))
                                         .nullString16()
                                         .string16(QStringLiteral("1"));
    QVector<QPair<quint32, QByteArray>> calls{
        {launcherAdded, QByteArray(64, '\xff')},
        {launcherAdded,
            ParcelWriter().int32(2).raw(QByteArray("\x00\xd8\x00\xd8\0\0\0\0", 8)).bytes()},
        {packageRemoved, QByteArray()},
        {packageRemoved, ParcelWriter().nullString16().bytes()},
    };
    for (const qint32 length : {INT_MAX, INT_MAX - 1, 0x7ffffffc, 0x40000000, 1000, -2, INT_MIN}) {
        calls.append({launcherAdded, ParcelWriter().int32(length).raw("abcdabcd").bytes()});
        calls.append({launcherAdded, ParcelWriter(uncaptioned).int32(length).raw("abcd").bytes()});
        calls.append({packageRemoved, ParcelWriter().int32(length).raw("abcdabcd").bytes()});
    }

    QVERIFY(startServed());
    for (const auto &call : qAsConst(calls)) {
        const FakeBinder::Answer answer = send(call.first, call.second);
        const QByteArray where = QByteArray::number(call.first) + ' ' + call.second.toHex(' ');
        QVERIFY2(answer.delivered && answer.status == 0 && !answer.hasReply, where.constData());
        QVERIFY2(generatedFiles().isEmpty(), where.constData());
    }
    QVERIFY(announce(mapLauncher()));
    QCOMPARE(generatedFiles(), filesOf({mapLauncher()}));
    QVERIFY(m_world->daemon->isRunning());
    QCOMPARE(m_world->android->errors(), QStringList());
}

LUM_TEST_MAIN(TestAnnouncementsBadInput)
#include "tst_announcementsbadinput.moc"
