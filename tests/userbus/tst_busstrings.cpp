// SPDX-License-Identifier: BSD-3-Clause
#include "userbus/busstrings.h"

#include "tests/support/privatebus.h"
#include "tests/support/testmain.h"
#include "tests/userbus/rawpeer.h"
#include "tests/userbus/recorder.h"

class TestBusStrings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textArrivesAsItIs_data();
    void textArrivesAsItIs();
    void finishedMessageTakesNoText();
};

void TestBusStrings::textArrivesAsItIs_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *title, const QString &text) {
        QTest::newRow(title) << text << text;
    };
    row("null", QString());
    row("beyond ASCII", QStringLiteral("\u00c4pfel \U0001f34e"));
    row("noncharacters", QString(QChar(0xffff)) + QChar(0xfdd0) + QLatin1Char('a'));
    row("control characters", QStringLiteral("\n\t\x01\x7f"));
    row("great", QString(1000000, QLatin1Char('a')));
    QTest::newRow("up to a NUL") << QString::fromLatin1("ab\0cd", 5) << QStringLiteral("ab");
}

void TestBusStrings::textArrivesAsItIs()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    qputenv("DBUS_SESSION_BUS_ADDRESS", RawPeer::address());
    const PrivateBus daemon(PrivateBus::Kind::User, 1000);
    const Recorder recorder;
    UserBus bus;
    bus.post(Recorder::note(text));
    QTRY_COMPARE(recorder.texts(), QStringList{expected});
}

void TestBusStrings::finishedMessageTakesNoText()
{
    qputenv("DBUS_SESSION_BUS_ADDRESS", RawPeer::address());
    const PrivateBus daemon(PrivateBus::Kind::User, 1000);
    const Recorder recorder;
    UserBus bus;
    int result = 0;
    UserBusCall call = Recorder::note({});
    call.arguments = [&result](sd_bus_message *message) {
        sd_bus_message_seal(message, 1, 0);
        return result = appendString(message, QStringLiteral("a"));
    };
    bus.post(call);
    QTRY_VERIFY(result < 0);
    QCOMPARE(recorder.texts(), QStringList());
}

LUM_TEST_MAIN(TestBusStrings)
#include "tst_busstrings.moc"
