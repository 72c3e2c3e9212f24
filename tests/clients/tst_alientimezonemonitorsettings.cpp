// SPDX-License-Identifier: BSD-3-Clause
// What the monitor asks of the clock settings library. A device's library need not notice by
// itself that a listener has gone, so its functions are this file's own here: they record.
#include "clients/alientimezonemonitor.h"

#include "tests/clients/clienttest.h"
#include "tests/clients/timezonepushes.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <timed-qt5/interface.h>

#include <QtTest>

#include <memory>

using FakeBinder::Notice;
using Maemo::Timed::WallClock::Info;

namespace {

const QString alarmService = QStringLiteral("alarm");
const QString active = QStringLiteral("active");
const QString oslo = QStringLiteral("Europe/Oslo");

/// The calls of the library, with what became of the link until then.
struct Library
{
    QStringList calls;
    QVector<const QObject *> listeners;
    QStringList slotNames;
    bool fails = false;

    void record(const char *call)
    {
        const QStringList ledger = FakeBinder::ledger();
        for (const char *link : {"client_new alarm", "client_unref alarm"}) {
            if (ledger.contains(QLatin1String(link)))
                calls.append(QLatin1String(link));
        }
        FakeBinder::clearLedger();
        calls.append(QLatin1String(call));
    }

    void recordListener(const char *call, const QObject *listener, const char *slot)
    {
        record(call);
        listeners.append(listener);
        slotNames.append(QString::fromLatin1(QMetaObject::normalizedSignature(slot + 1)));
    }
};

Library library;

} // namespace

bool Maemo::Timed::Interface::settings_changed_connect(QObject *object, const char *slot)
{
    library.recordListener("connect", object, slot);
    return true;
}

bool Maemo::Timed::Interface::settings_changed_disconnect(QObject *object, const char *slot)
{
    library.recordListener("disconnect", object, slot);
    return true;
}

QDBusMessage Maemo::Timed::Interface::call(const QString &method)
{
    library.record(qPrintable(method));
    const QDBusMessage request = QDBusMessage::createMethodCall(
        QStringLiteral("test.timed"), QStringLiteral("/"), QStringLiteral("test.timed"), method);
    if (library.fails)
        return request.createErrorReply(QDBusError::Failed, QStringLiteral("failed"));
    return request.createReply(QVariant::fromValue(Info(oslo)));
}

class TestAlienTimezoneMonitorSettings : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { library = {}; }
    void listensBehindTheLinkAndBeforeItReads();
    void stopsToListenBeforeTheLinkGoes();
    void zoneOfTheReplyIsPushed_data();
    void zoneOfTheReplyIsPushed();
};

void TestAlienTimezoneMonitorSettings::listensBehindTheLinkAndBeforeItReads()
{
    FakeBinder::registerService(alarmService, {}, Notice::None);
    m_unit->startOutAs(active);
    const AlienTimezoneMonitor monitor;
    QCOMPARE(library.calls, texts({"client_new alarm", "connect", "get_wall_clock_info"}));
    QCOMPARE(library.listeners, QVector<const QObject *>{&monitor});
    QCOMPARE(library.slotNames, texts({"settingsChanged(Maemo::Timed::WallClock::Info,bool)"}));
}

void TestAlienTimezoneMonitorSettings::stopsToListenBeforeTheLinkGoes()
{
    auto monitor = std::make_unique<AlienTimezoneMonitor>();
    const QObject *const listener = monitor.get();
    FakeBinder::registerService(alarmService, {}, Notice::None);
    QVERIFY(m_unit->become(active));
    library.calls.clear();
    FakeBinder::clearLedger();

    monitor.reset();

    QCOMPARE(library.calls, texts({"disconnect"}));
    QVERIFY(FakeBinder::ledger().contains(QStringLiteral("client_unref alarm")));
    QCOMPARE(library.listeners, QVector<const QObject *>({listener, listener}));
    QCOMPARE(library.slotNames[1], library.slotNames[0]);
}

void TestAlienTimezoneMonitorSettings::zoneOfTheReplyIsPushed_data()
{
    QTest::addColumn<bool>("fails");
    QTest::addColumn<QString>("zone");
    QTest::newRow("answered") << false << oslo;
    QTest::newRow("an error") << true << QStringLiteral("");
}

void TestAlienTimezoneMonitorSettings::zoneOfTheReplyIsPushed()
{
    QFETCH(bool, fails);
    QFETCH(QString, zone);
    library.fails = fails;
    const AlienTimezoneMonitor monitor;
    FakeBinder::registerService(alarmService, {}, Notice::None);
    LogCapture log(LogCapture::Level::Default);
    QVERIFY(m_unit->become(active));
    QCOMPARE(takeCalls(), pushes({zone}));
    QCOMPARE(log.lines(), QStringList());
}

LUM_TEST_MAIN(TestAlienTimezoneMonitorSettings)
#include "tst_alientimezonemonitorsettings.moc"
