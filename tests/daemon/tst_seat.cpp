// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/seat.h"

#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

#include <cstdint>
#include <ctime>
#include <functional>

#include <poll.h>
#include <systemd/sd-login.h>

namespace {

constexpr int monitorFd = 7;
constexpr quint64 second = 1000000;

/// What libsystemd and the kernel answer, and the calls that they got, in order. The seat's
/// user turns up with the ask number `asksUntilActive`.
struct Scenario
{
    int newResult = 0;
    int fd = monitorFd;
    int events = POLLIN;
    int asksUntilActive = 1;
    uid_t uid = 1000;
    int timeoutResult = 0;
    quint64 timeout = UINT64_MAX;
    timespec now{};
    std::function<int()> pollResult = [] { return 1; };

    int asks = 0;
    QStringList calls;
};

Scenario *scenario = nullptr;

sd_login_monitor *theMonitor()
{
    static char monitor;
    return reinterpret_cast<sd_login_monitor *>(&monitor);
}

void note(const QString &call)
{
    scenario->calls.append(call);
}

void noteFor(const sd_login_monitor *monitor, const QString &call)
{
    note(monitor == theMonitor() ? call : call + QStringLiteral(" of something else"));
}

} // namespace

// The linker sends lumd's calls of these functions here (--wrap), under names of its own.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {

int __wrap_sd_login_monitor_new(const char *category, sd_login_monitor **monitor)
{
    note(QStringLiteral("new %1").arg(QLatin1String(category)));
    if (scenario->newResult >= 0)
        *monitor = theMonitor();
    return scenario->newResult;
}

sd_login_monitor *__wrap_sd_login_monitor_unref(sd_login_monitor *monitor)
{
    noteFor(monitor, QStringLiteral("unref"));
    return nullptr;
}

int __wrap_sd_login_monitor_flush(sd_login_monitor *monitor)
{
    noteFor(monitor, QStringLiteral("flush"));
    return 0;
}

int __wrap_sd_login_monitor_get_fd(sd_login_monitor *monitor)
{
    noteFor(monitor, QStringLiteral("get_fd"));
    return scenario->fd;
}

int __wrap_sd_login_monitor_get_events(sd_login_monitor *monitor)
{
    noteFor(monitor, QStringLiteral("get_events"));
    return scenario->events;
}

int __wrap_sd_login_monitor_get_timeout(sd_login_monitor *monitor, uint64_t *timeout)
{
    noteFor(monitor, QStringLiteral("get_timeout"));
    *timeout = scenario->timeout;
    return scenario->timeoutResult;
}

int __wrap_sd_seat_get_active(const char *seat, char **session, uid_t *uid)
{
    note(QStringLiteral("get_active %1%2")
            .arg(QLatin1String(seat), session ? QStringLiteral(" session") : QString()));
    scenario->asks += 1;
    if (scenario->asks < scenario->asksUntilActive)
        return -ENODATA;
    *uid = scenario->uid;
    return 0;
}

int __real_poll(pollfd *fds, nfds_t count, int timeout);

int __wrap_poll(pollfd *fds, nfds_t count, int timeout)
{
    if (!scenario)
        return __real_poll(fds, count, timeout);
    note(QStringLiteral("poll %1 fd %2 events %3 revents %4 timeout %5")
            .arg(count)
            .arg(fds->fd)
            .arg(fds->events)
            .arg(fds->revents)
            .arg(timeout));
    return scenario->pollResult();
}

int __real_clock_gettime(clockid_t clock, timespec *time);

int __wrap_clock_gettime(clockid_t clock, timespec *time)
{
    if (!scenario)
        return __real_clock_gettime(clock, time);
    note(clock == CLOCK_MONOTONIC ? QStringLiteral("clock") : QStringLiteral("another clock"));
    *time = scenario->now;
    return 0;
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier)

class TestSeat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pollTimeoutCountsMilliseconds_data();
    void pollTimeoutCountsMilliseconds();
    void monitorThatCannotBeMadeGivesNothing_data();
    void monitorThatCannotBeMadeGivesNothing();
    void monitorThatCannotBePolledGivesNothing_data();
    void monitorThatCannotBePolledGivesNothing();
    void sessionActiveAtOnceNeedsNoPoll_data();
    void sessionActiveAtOnceNeedsNoPoll();
    void eachTurnAsksPollsAndFlushes();
    void timeoutOfTheMonitorIsCountedFromNow_data();
    void timeoutOfTheMonitorIsCountedFromNow();
    void failedPollIsToldAndSurvived();
    void allEventsOfTheMonitorArePolledFor();

private:
    std::optional<uid_t> wait(Scenario &playing);

    const QStringList m_monitorMade{
        QStringLiteral("new seat"), QStringLiteral("get_fd"), QStringLiteral("get_events")};
};

std::optional<uid_t> TestSeat::wait(Scenario &playing)
{
    scenario = &playing;
    const std::optional<uid_t> uid = waitForActiveSeat();
    scenario = nullptr;
    return uid;
}

void TestSeat::pollTimeoutCountsMilliseconds_data()
{
    QTest::addColumn<quint64>("deadline");
    QTest::addColumn<quint64>("now");
    QTest::addColumn<int>("timeout");

    constexpr quint64 never = UINT64_MAX;
    QTest::newRow("no deadline") << never << quint64(0) << -1;
    QTest::newRow("no deadline at the end of time") << never << never << -1;
    QTest::newRow("now") << quint64(5000) << quint64(5000) << 0;
    QTest::newRow("just past") << quint64(4999) << quint64(5000) << 0;
    QTest::newRow("long past") << quint64(0) << quint64(never - 1) << 0;
    QTest::newRow("less than a millisecond") << quint64(5999) << quint64(5000) << 0;
    QTest::newRow("one millisecond") << quint64(6000) << quint64(5000) << 1;
    QTest::newRow("rounded down") << quint64(7999) << quint64(5000) << 2;
    QTest::newRow("an hour") << 3600 * second << quint64(0) << 3600000;
    QTest::newRow("the longest") << quint64(INT_MAX) * 1000 << quint64(0) << INT_MAX;
    QTest::newRow("too long for poll") << quint64(INT_MAX) * 1000 + 1000 << quint64(0) << INT_MAX;
    QTest::newRow("one before never") << never - 1 << quint64(0) << INT_MAX;
}

void TestSeat::pollTimeoutCountsMilliseconds()
{
    QFETCH(quint64, deadline);
    QFETCH(quint64, now);
    QTEST(pollTimeout(deadline, now), "timeout");
}

void TestSeat::monitorThatCannotBeMadeGivesNothing_data()
{
    QTest::addColumn<int>("result");
    QTest::newRow("no memory") << -ENOMEM;
    QTest::newRow("no such folder") << -ENOENT;
    QTest::newRow("-1") << -1;
}

void TestSeat::monitorThatCannotBeMadeGivesNothing()
{
    QFETCH(int, result);
    Scenario playing;
    playing.newResult = result;

    LogCapture log;
    QCOMPARE(wait(playing), std::nullopt);
    QCOMPARE(playing.calls, QStringList{QStringLiteral("new seat")});
    QCOMPARE(log.lines(),
        QStringList{QStringLiteral("warning default Failed to monitor for seat changes")});
}

void TestSeat::monitorThatCannotBePolledGivesNothing_data()
{
    QTest::addColumn<int>("fd");
    QTest::addColumn<int>("events");
    QTest::newRow("no descriptor") << -EBADF << int(POLLIN);
    QTest::newRow("descriptor -1") << -1 << int(POLLIN);
    QTest::newRow("no events") << monitorFd << 0;
    QTest::newRow("events other than input") << monitorFd << int(POLLOUT | POLLPRI);
    QTest::newRow("neither") << -1 << 0;
}

void TestSeat::monitorThatCannotBePolledGivesNothing()
{
    Scenario playing;
    QFETCH(int, fd);
    QFETCH(int, events);
    playing.fd = fd;
    playing.events = events;

    LogCapture log;
    QCOMPARE(wait(playing), std::nullopt);
    QCOMPARE(playing.calls, m_monitorMade + QStringList{QStringLiteral("unref")});
    QCOMPARE(log.lines(),
        QStringList{QStringLiteral("warning default Unable to poll for systemd login events")});
}

void TestSeat::sessionActiveAtOnceNeedsNoPoll_data()
{
    QTest::addColumn<uint>("uid");
    QTest::addColumn<int>("fd");
    QTest::newRow("a user") << 100000U << monitorFd;
    QTest::newRow("root") << 0U << monitorFd;
    QTest::newRow("the largest uid") << UINT_MAX - 1 << monitorFd;
    QTest::newRow("descriptor 0") << 1000U << 0;
}

void TestSeat::sessionActiveAtOnceNeedsNoPoll()
{
    Scenario playing;
    QFETCH(uint, uid);
    QFETCH(int, fd);
    playing.uid = uid;
    playing.fd = fd;

    LogCapture log;
    QCOMPARE(wait(playing), std::optional<uid_t>(uid));
    QCOMPARE(playing.calls,
        m_monitorMade + QStringList({QStringLiteral("get_active seat0"), QStringLiteral("unref")}));
    QCOMPARE(log.lines(), QStringList());
}

void TestSeat::eachTurnAsksPollsAndFlushes()
{
    Scenario playing;
    playing.asksUntilActive = 3;
    playing.pollResult = [&playing] { return playing.asks == 1 ? 1 : 0; };

    LogCapture log;
    QCOMPARE(wait(playing), std::optional<uid_t>(1000));
    const QStringList turn{QStringLiteral("get_active seat0"), QStringLiteral("get_timeout"),
        QStringLiteral("clock"), QStringLiteral("poll 1 fd 7 events 1 revents 0 timeout -1"),
        QStringLiteral("flush")};
    QCOMPARE(playing.calls,
        m_monitorMade + turn + turn
            + QStringList({QStringLiteral("get_active seat0"), QStringLiteral("unref")}));
    QCOMPARE(log.lines(), QStringList());
}

void TestSeat::timeoutOfTheMonitorIsCountedFromNow_data()
{
    QTest::addColumn<quint64>("timeout");
    QTest::addColumn<int>("result");
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<qint64>("nanoseconds");
    QTest::addColumn<int>("polled");

    QTest::newRow("none") << quint64(UINT64_MAX) << 0 << qint64(5) << qint64(0) << -1;
    QTest::newRow("past") << 4 * second << 0 << qint64(5) << qint64(0) << 0;
    QTest::newRow("ahead") << 7 * second << 0 << qint64(5) << qint64(0) << 2000;
    QTest::newRow("part of a second gone")
        << 7 * second << 0 << qint64(5) << qint64(250000000) << 1750;
    QTest::newRow("nanoseconds rounded down")
        << 5 * second + 1000 << 0 << qint64(5) << qint64(999) << 1;
    QTest::newRow("a microsecond too little")
        << 5 * second + 1000 << 0 << qint64(5) << qint64(1000) << 0;
    QTest::newRow("result ignored") << 7 * second << -EINVAL << qint64(5) << qint64(0) << 2000;
}

void TestSeat::timeoutOfTheMonitorIsCountedFromNow()
{
    QFETCH(quint64, timeout);
    QFETCH(int, result);
    QFETCH(qint64, seconds);
    QFETCH(qint64, nanoseconds);
    QFETCH(int, polled);
    Scenario playing;
    playing.asksUntilActive = 2;
    playing.timeout = timeout;
    playing.timeoutResult = result;
    playing.now = {seconds, nanoseconds};

    QCOMPARE(wait(playing), std::optional<uid_t>(1000));
    QCOMPARE(playing.calls.filter(QStringLiteral("poll")),
        QStringList{QStringLiteral("poll 1 fd 7 events 1 revents 0 timeout %1").arg(polled)});
}

void TestSeat::failedPollIsToldAndSurvived()
{
    Scenario playing;
    playing.asksUntilActive = 3;
    playing.pollResult = [] {
        errno = EINTR;
        return -1;
    };

    LogCapture log;
    QCOMPARE(wait(playing), std::optional<uid_t>(1000));
    const QStringList turn{QStringLiteral("get_active seat0"), QStringLiteral("get_timeout"),
        QStringLiteral("clock"), QStringLiteral("poll 1 fd 7 events 1 revents 0 timeout -1"),
        QStringLiteral("flush")};
    QCOMPARE(playing.calls,
        m_monitorMade + turn + turn
            + QStringList({QStringLiteral("get_active seat0"), QStringLiteral("unref")}));
    QCOMPARE(log.lines(),
        QStringList({QStringLiteral("warning default poll failed"),
            QStringLiteral("warning default poll failed")}));
}

void TestSeat::allEventsOfTheMonitorArePolledFor()
{
    Scenario playing;
    playing.asksUntilActive = 2;
    // The field of the pollfd has 16 bits.
    playing.events = 0x10000 | POLLIN | POLLPRI;

    QCOMPARE(wait(playing), std::optional<uid_t>(1000));
    QCOMPARE(playing.calls.filter(QStringLiteral("poll")),
        QStringList{QStringLiteral("poll 1 fd 7 events 3 revents 0 timeout -1")});
}

LUM_TEST_MAIN(TestSeat)
#include "tst_seat.moc"
