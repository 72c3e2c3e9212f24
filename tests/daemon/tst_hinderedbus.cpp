// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"
#include "tests/support/shiftedclock.h"
#include "tests/support/testmain.h"
#include "tests/userbus/rawpeer.h"

#include <csignal>
#include <optional>

using namespace std::chrono_literals;

namespace {

const QString dropped = QStringLiteral("warning User's bus not reached in 10 s, dropping message: "
                                       "org.freedesktop.Notifications.Notify");

/// Has the daemon tell the user something about an app, the runtime being down.
QString tellOf(const QString &package)
{
    return errorOf(DaemonFixture::call(QStringLiteral("launchApp"), {package}));
}

} // namespace

/// The daemon while the user's bus is not what it should be.
class TestHinderedBus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void nobodyIsHeldAndTheNextMessageArrives_data();
    void nobodyIsHeldAndTheNextMessageArrives();
    void restartedBusGetsTheNextMessage();
    void busThatComesInTimeGetsAll();

private:
    bool start();
    void startBus();
    /// What the user has been told of: the packages.
    QStringList told();

    std::unique_ptr<DaemonFixture> m_world;
    std::optional<ShiftedClock> m_clock;
    std::optional<PrivateBus> m_bus;
    std::optional<RawPeer> m_peer;
    std::optional<NotificationServer> m_server;
};

void TestHinderedBus::initTestCase()
{
    makeFile(QStringLiteral("/opt/alien/system.img"));
    AppFixture::installCatalogues();
    m_world = std::make_unique<DaemonFixture>();
}

void TestHinderedBus::cleanup()
{
    m_world->renew();
    m_server.reset();
    m_bus.reset();
    m_peer.reset();
    m_clock.reset();
}

bool TestHinderedBus::start()
{
    m_clock.emplace();
    m_clock->giveTo(*m_world->daemon);
    return m_world->start();
}

void TestHinderedBus::startBus()
{
    // A message that went out between the bus and the server would find nobody there.
    m_world->daemon->signal(SIGSTOP);
    m_bus.emplace(PrivateBus::Kind::User, 1000);
    m_server.emplace(m_bus->address());
    m_world->daemon->signal(SIGCONT);
}

QStringList TestHinderedBus::told()
{
    QStringList packages;
    const auto notices = m_server->notices();
    for (const NotificationServer::Notice &notice : notices)
        packages.append(notice.body.section(QLatin1Char('#'), 1, 1));
    return packages;
}

void TestHinderedBus::nobodyIsHeldAndTheNextMessageArrives_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"absent", "stopped before it is joined", "stopped after it was joined",
             "never answers", "no room"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void TestHinderedBus::nobodyIsHeldAndTheNextMessageArrives()
{
    QFETCH(QString, kind);
    QStringList expected;
    QVERIFY(start());
    if (kind.startsWith(QLatin1String("stopped"))) {
        startBus();
        if (kind.contains(QLatin1String("after"))) {
            expected.append(QStringLiteral("early"));
            QCOMPARE(tellOf(QStringLiteral("#early#")), QString());
            QTRY_COMPARE(told(), expected);
        }
        m_bus->signal(SIGSTOP);
    } else if (kind != QLatin1String("absent")) {
        const bool isFull = kind == QLatin1String("no room");
        m_peer.emplace(isFull ? 0 : 16);
        if (isFull)
            m_peer->fill();
    }

    QCOMPARE(tellOf(QStringLiteral("#lost#")), QString());
    QVERIFY(DaemonFixture::settle());
    m_clock->forward(5s);
    QCOMPARE(tellOf(QStringLiteral("#young#")), QString());
    m_clock->forward(4s);
    QVERIFY(DaemonFixture::settle());
    const auto daemonWarnings = [this] {
        const QString category = QStringLiteral(" com.tovra.lumd.daemon ");
        return m_world->daemon->lines()
            .filter(category)
            .replaceInStrings(category, QStringLiteral(" "))
            .filter(QRegularExpression(QStringLiteral("^warning")));
    };
    QCOMPARE(daemonWarnings(), QStringList());
    m_clock->forward(1s);
    QVERIFY(DaemonFixture::settle());
    QTRY_COMPARE(daemonWarnings(), QStringList{dropped});

    m_peer.reset();
    if (m_bus)
        m_bus->signal(SIGCONT);
    else
        startBus();
    m_clock->forward(1s);
    QCOMPARE(tellOf(QStringLiteral("#next#")), QString());
    expected.append({QStringLiteral("young"), QStringLiteral("next")});
    QTRY_COMPARE(told(), expected);
    QCOMPARE(daemonWarnings(), QStringList{dropped});
}

void TestHinderedBus::restartedBusGetsTheNextMessage()
{
    QVERIFY(start());
    for (int count = 0; count < 3; ++count) {
        startBus();
        QCOMPARE(tellOf(QStringLiteral("#%1#").arg(count)), QString());
        QTRY_COMPARE(told(), QStringList{QString::number(count)});
        m_server.reset();
        m_bus.reset();
    }
}

void TestHinderedBus::busThatComesInTimeGetsAll()
{
    QVERIFY(start());
    QCOMPARE(tellOf(QStringLiteral("#first#")), QString());
    QCOMPARE(tellOf(QStringLiteral("#second#")), QString());
    startBus();
    m_clock->forward(1s);
    QVERIFY(DaemonFixture::settle());
    QTRY_COMPARE(told(), QStringList({QStringLiteral("first"), QStringLiteral("second")}));
}

LUM_TEST_MAIN(TestHinderedBus)
#include "tst_hinderedbus.moc"
