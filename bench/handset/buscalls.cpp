// SPDX-License-Identifier: BSD-3-Clause
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QEventLoop>
#include <QProcess>
#include <QTimer>

#include <benchmark/benchmark.h>

namespace {

struct Service
{
    QString busName;
    QString path;
    QString program;
};

const Service daemon{QStringLiteral("com.tovra.lumd"), QStringLiteral("/com/tovra/lumd"),
    QStringLiteral("/usr/sbin/lumd")};
const Service bare{QStringLiteral("com.tovra.bare"), QStringLiteral("/com/tovra/bare"),
    QStringLiteral("/run/bench/bareservice")};

const QString package = QStringLiteral("com.example.maps");

void call(benchmark::State &state, const Service &service, const QString &method,
    const QVariantList &expected)
{
    const QDBusConnection bus = QDBusConnection::systemBus();
    QDBusMessage message =
        QDBusMessage::createMethodCall(service.busName, service.path, service.busName, method);
    message.setArguments({package});
    for (auto _ : state) {
        const QDBusMessage reply = bus.call(message);
        if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments() != expected)
            qFatal("%s: %s", qPrintable(method), qPrintable(reply.errorMessage()));
    }
}

void waitForOwner(const Service &service, bool isOwned)
{
    QDBusConnection bus = QDBusConnection::systemBus();
    QDBusServiceWatcher watcher(service.busName, bus, QDBusServiceWatcher::WatchForOwnerChange);
    QEventLoop loop;
    QObject::connect(&watcher, &QDBusServiceWatcher::serviceOwnerChanged, &loop,
        [&](const QString &, const QString &, const QString &owner) {
            if (owner.isEmpty() != isOwned)
                loop.quit();
        });
    constexpr int deadlineMilliseconds = 60000;
    QTimer::singleShot(deadlineMilliseconds, &loop,
        [&] { qFatal("waited in vain for %s", qPrintable(service.busName)); });
    // The signals of a connection wait for its first event loop: one may tell of an earlier owner.
    while (bus.interface()->isServiceRegistered(service.busName) != isOwned)
        loop.exec();
}

void start(benchmark::State &state, const Service &service)
{
    for (auto _ : state) {
        QProcess process;
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(service.program, QStringList());
        waitForOwner(service, true);
        state.PauseTiming();
        process.kill();
        process.waitForFinished();
        waitForOwner(service, false);
        state.ResumeTiming();
    }
}

void callDaemon(benchmark::State &state)
{
    call(state, daemon, QStringLiteral("deleteAppCacheFiles"), {});
}

void callBare(benchmark::State &state)
{
    call(state, bare, QStringLiteral("nothing"), {});
}

void binderByDaemon(benchmark::State &state)
{
    call(state, daemon, QStringLiteral("getAppStartOnBootup"), {false});
}

void binderByHand(benchmark::State &state)
{
    call(state, bare, QStringLiteral("isWhitelisted"), {false});
}

void startDaemon(benchmark::State &state)
{
    start(state, daemon);
}

void startBare(benchmark::State &state)
{
    start(state, bare);
}

// Other processes do the work: it is the time by the clock that tells.
BENCHMARK(callDaemon)->Name("call/subject")->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(callBare)->Name("call/yardstick")->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(binderByDaemon)->Name("binder/subject")->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(binderByHand)->Name("binder/yardstick")->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(startDaemon)->Name("start/subject")->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(startBare)->Name("start/yardstick")->Unit(benchmark::kMicrosecond)->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    return benchmark::RunSpecifiedBenchmarks() > 0 ? 0 : 1;
}
