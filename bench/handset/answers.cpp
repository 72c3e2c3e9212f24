// SPDX-License-Identifier: BSD-3-Clause
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QStringList>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

using namespace std::chrono;

namespace {

QDBusMessage callOfDaemon(const QString &method)
{
    return QDBusMessage::createMethodCall(QStringLiteral("com.tovra.lumd"),
        QStringLiteral("/com/tovra/lumd"), QStringLiteral("com.tovra.lumd"), method);
}

// The microseconds until the daemon has answered a call that has nothing to do with anything.
qint64 answerTime(const QDBusConnection &bus)
{
    constexpr int patienceMilliseconds = 120000;
    const steady_clock::time_point asked = steady_clock::now();
    const QDBusMessage reply =
        bus.call(callOfDaemon(QStringLiteral("isRunning")), QDBus::Block, patienceMilliseconds);
    if (reply.type() != QDBusMessage::ReplyMessage)
        qFatal("no answer: %s", qPrintable(reply.errorMessage()));
    return duration_cast<microseconds>(steady_clock::now() - asked).count();
}

} // namespace

// Calls the daemon every 50 ms for as many seconds as the first argument says, and prints how
// long the answers took, in microseconds. The other arguments are a method and its strings, which
// is called a second after the start; nobody waits for its answer.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments().mid(1);
    const seconds duration(arguments.takeFirst().toInt());
    const QDBusConnection bus = QDBusConnection::systemBus();

    constexpr milliseconds interval(50);
    constexpr seconds untilDisturbance(1);
    std::vector<qint64> answers;
    answerTime(bus);
    const steady_clock::time_point start = steady_clock::now();
    for (steady_clock::time_point next = start; next - start < duration;) {
        std::this_thread::sleep_until(next);
        if (!arguments.isEmpty() && next - start >= untilDisturbance) {
            QDBusMessage disturbance = callOfDaemon(arguments.takeFirst());
            while (!arguments.isEmpty())
                disturbance << arguments.takeFirst();
            bus.asyncCall(disturbance);
        }
        answers.push_back(answerTime(bus));
        next = std::max(next + interval, steady_clock::now());
    }
    std::sort(answers.begin(), answers.end());
    std::printf("{\"median\": %lld, \"longest\": %lld, \"count\": %zu}\n",
        static_cast<long long>(answers[answers.size() / 2]), static_cast<long long>(answers.back()),
        answers.size());
    return 0;
}
