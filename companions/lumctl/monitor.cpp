// SPDX-License-Identifier: BSD-3-Clause
#include "client/shownname.h"
#include "command.h"
#include "session.h"

namespace {

QString monitorSummary()
{
    return qtTrId("lumctl-monitor-summary");
}

/// Prints what happens: the event's name and its values.
class EventPrinter
{
public:
    explicit EventPrinter(Output &output) : m_output(output) { }

    void print(const char *event, const QVector<QPair<const char *, QJsonValue>> &values) const
    {
        QJsonObject document = {{QStringLiteral("event"), QLatin1String(event)}};
        QString line = QLatin1String(event);
        for (const auto &[name, value] : values) {
            document.insert(QLatin1String(name), value);
            line += QStringLiteral("  %1=%2").arg(
                QLatin1String(name), shownName(value.toVariant().toString()));
        }
        m_output.document(document);
        m_output.line(line);
    }

    void follow(LumdClient &client, QObject *context) const;

private:
    Output &m_output;
};

void EventPrinter::follow(LumdClient &client, QObject *context) const
{
    const auto connectTo = [&client, context](auto signal, auto slot) {
        QObject::connect(&client, signal, context, slot);
    };
    using Text = const QString &;
    connectTo(&LumdClient::daemonAppeared, [this] { print("DaemonAppeared", {}); });
    connectTo(&LumdClient::daemonVanished, [this] { print("DaemonVanished", {}); });
    connectTo(&LumdClient::stateChanged, [this](const DaemonState &state) {
        print("StateChanged",
            {{"runtimeState", state.runtimeState}, {"ready", state.isReady},
                {"pendingChanges", int(state.pendingChanges)},
                {"pendingLaunches", int(state.pendingLaunches)}, {"sdkLevel", state.sdkLevel},
                {"version", state.version}});
    });
    connectTo(&LumdClient::installFinished, [this](Text package, bool success, Text message) {
        print(
            "InstallFinished", {{"package", package}, {"success", success}, {"message", message}});
    });
    connectTo(&LumdClient::removeFinished, [this](Text package, bool success) {
        print("RemoveFinished", {{"package", package}, {"success", success}});
    });
    connectTo(&LumdClient::requestQueued,
        [this](Text kind, Text what) { print("RequestQueued", {{"kind", kind}, {"what", what}}); });
    connectTo(&LumdClient::launcherChanged, [this](Text package, const AndroidLauncher &launcher) {
        print("LauncherChanged",
            {{"desktopFile", launcher.desktopFile}, {"package", package}, {"name", launcher.name},
                {"icon", launcher.icon}});
    });
    connectTo(&LumdClient::launcherGone, [this](Text package, Text desktopFile) {
        print("LauncherGone", {{"desktopFile", desktopFile}, {"package", package}});
    });
    connectTo(&LumdClient::packageRemoved,
        [this](Text package) { print("PackageRemoved", {{"package", package}}); });
    connectTo(&LumdClient::listComplete, [this] { print("ListComplete", {}); });
    connectTo(&LumdClient::startOnBootChanged, [this](Text package, bool allowed) {
        print("StartOnBootChanged", {{"package", package}, {"allowed", allowed}});
    });
}

ExitCode runMonitor(Session &session)
{
    const EventPrinter printer(session.output);
    printer.follow(session.client, &session);
    const ExitCode watched = session.watch();
    if (watched != ExitCode::Success)
        return watched;
    // A restart of lumd is something that a follower wants to see, and not the end.
    while (session.wait([] { return false; }) == Session::End::Vanished)
        session.forgetVanished();
    return ExitCode::Success;
}

} // namespace

const Command monitorCommand = {"monitor", monitorSummary, "", 0, 0, 0, nullptr, runMonitor};
