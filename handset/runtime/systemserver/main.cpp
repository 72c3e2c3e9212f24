// SPDX-License-Identifier: BSD-3-Clause
// The simulated Android's system server: its services, in a process of their own, so that
// they can crash while the service manager lives. Prints events and answers as JSON lines;
// reads requests from its standard input and ends with it.
#include "systemserver/systemcontrol.h"
#include "systemserver/systemserver.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QSocketNotifier>

#include <unistd.h>

#include <array>
#include <cstdio>

namespace {

void printLine(const QJsonObject &line)
{
    const QByteArray bytes = QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n';
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    std::fflush(stdout);
}

void handle(SystemControl &control, const QByteArray &line)
{
    const QJsonObject request = QJsonDocument::fromJson(line).object();
    const QJsonValue number = request.value(QLatin1String("number"));
    control.handle(request, [number](const QJsonObject &answer) {
        printLine({{QStringLiteral("number"), number}, {QStringLiteral("answer"), answer}});
    });
}

/// Handles what has arrived; of a line that is not whole yet the beginning stays.
void handleInput(SystemControl &control, QByteArray &input)
{
    std::array<char, 65536> bytes;
    const ssize_t size = read(STDIN_FILENO, bytes.data(), bytes.size());
    if (size <= 0) {
        QCoreApplication::quit();
        return;
    }
    input.append(bytes.data(), int(size));
    for (int end = input.indexOf('\n'); end >= 0; end = input.indexOf('\n')) {
        const QByteArray line = input.left(end);
        input.remove(0, end + 1);
        handle(control, line);
    }
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    RuntimeConfig config = RuntimeConfig::load();
    config.sdk = QCoreApplication::arguments().value(1).toInt();
    SystemServer server(config);
    if (!server.start())
        return 1;
    SystemControl control(&server);
    QByteArray input;
    const QSocketNotifier notifier(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &server,
        [&control, &input] { handleInput(control, input); });
    return QCoreApplication::exec();
}
