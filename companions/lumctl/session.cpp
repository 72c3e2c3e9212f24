// SPDX-License-Identifier: BSD-3-Clause
#include "session.h"

#include "client/shownname.h"

#include <QJsonArray>
#include <QTimer>

#include <csignal>

#include <sys/signalfd.h>
#include <unistd.h>

namespace {

bool isIgnored(int number)
{
    struct sigaction action = {};
    return sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

} // namespace

ErrorReport reportOf(const ClientError &error)
{
    switch (error.kind) {
    case ClientError::Kind::NoDaemon:
        return {ExitCode::NoDaemon, "no-lumd", qtTrId("lumctl-no-lumd")};
    case ClientError::Kind::Refused:
        return {ExitCode::Refused, "refused", qtTrId("lumctl-refused")};
    case ClientError::Kind::TimedOut:
        return {ExitCode::TimedOut, "timed-out", qtTrId("lumctl-timed-out")};
    case ClientError::Kind::TooOld:
        return {ExitCode::Failed, "too-old", qtTrId("lumctl-too-old")};
    default:
        return {ExitCode::Failed, "failed", qtTrId("lumctl-failed").arg(shownName(error.text))};
    }
}

Session::Session(const QCommandLineParser &options_, const QStringList &arguments_, Output &output_,
    std::chrono::seconds limit_)
    : options(options_),
      arguments(arguments_),
      output(output_),
      limit(limit_),
      m_deadline(limit_.count() > 0 ? QDeadlineTimer(limit_) : QDeadlineTimer::Forever)
{
    connect(&client, &LumdClient::daemonVanished, this, [this] {
        m_hasVanished = true;
        wake();
    });
}

Session::~Session()
{
    if (m_interrupts)
        close(int(m_interrupts->socket()));
}

std::chrono::milliseconds Session::remaining() const
{
    if (m_deadline.isForever())
        return LumdClient::usualTimeLimit;
    return std::chrono::milliseconds(m_deadline.remainingTime());
}

ExitCode Session::watch()
{
    const auto answer = ask<Nothing>(&LumdClient::watch);
    return answer.error ? fail(answer.error) : ExitCode::Success;
}

void Session::catchInterrupts()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM}) {
        if (!isIgnored(number))
            sigaddset(&signals, number);
    }
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    const int descriptor = signalfd(-1, &signals, SFD_CLOEXEC);
    m_interrupts = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    connect(m_interrupts.get(), &QSocketNotifier::activated, this, [this, descriptor] {
        signalfd_siginfo information = {};
        if (read(descriptor, &information, sizeof(information)) == sizeof(information))
            m_caughtSignal = int(information.ssi_signo);
        wake();
    });
}

Session::End Session::wait(
    const std::function<bool()> &isReached, const std::function<void()> &eachSecond)
{
    QTimer deadline;
    deadline.setSingleShot(true);
    connect(&deadline, &QTimer::timeout, this, &Session::wake);
    QTimer second;
    if (eachSecond) {
        connect(&second, &QTimer::timeout, this, eachSecond);
        second.start(std::chrono::seconds(1));
    }
    for (;;) {
        if (isReached())
            return End::Reached;
        if (m_caughtSignal != 0)
            return End::Interrupted;
        if (m_hasVanished)
            return End::Vanished;
        if (m_deadline.hasExpired())
            return End::TimedOut;
        // Anew each time: a timer may fire before its time.
        if (!m_deadline.isForever())
            deadline.start(remaining());
        m_loop.exec();
    }
}

ExitCode Session::fail(const ClientError &error)
{
    const ErrorReport report = reportOf(error);
    return fail(report.code, report.kind, report.text);
}

ExitCode Session::fail(
    ExitCode code, const char *kind, const QString &text, const QJsonObject &details)
{
    QJsonObject error = details;
    error.insert(QStringLiteral("kind"), QLatin1String(kind));
    error.insert(QStringLiteral("message"), text);
    output.document({{QStringLiteral("error"), error}});
    output.error(text);
    return code;
}

ExitCode Session::misused(const QString &text)
{
    return fail(ExitCode::Usage, "usage", text);
}

std::optional<NamedApp> Session::findNamed(const QString &name)
{
    NamedApp named;
    if (options.isSet(QStringLiteral("exact"))) {
        named.kind = NamedApp::Kind::Found;
        named.app.package = name;
        return named;
    }
    if (!m_apps) {
        const auto apps = ask<QVector<AndroidApp>>(&LumdClient::listApps);
        if (apps.error) {
            m_failure = fail(apps.error);
            return {};
        }
        m_apps = apps.value;
    }
    named = findApp(*m_apps, name);
    if (named.kind == NamedApp::Kind::Found)
        return named;
    m_failure = failWithCandidates(name, named.candidates);
    return {};
}

ExitCode Session::failWithCandidates(const QString &name, const QVector<AndroidApp> &candidates)
{
    QJsonArray packages;
    for (const AndroidApp &app : candidates)
        packages.append(app.package);
    const bool isUnknown = candidates.isEmpty();
    const QString text = (isUnknown ? qtTrId("lumctl-no-such-app") : qtTrId("lumctl-doubtful-app"))
                             .arg(shownName(name));
    fail(ExitCode::NoSuchApp, isUnknown ? "no-such-app" : "doubtful", text,
        {{QStringLiteral("name"), name}, {QStringLiteral("candidates"), packages}});
    for (const AndroidApp &app : candidates)
        output.error(QStringLiteral("  %1  %2")
                .arg(shownName(app.package), cutToWidth(shownName(app.name()), 60)));
    return ExitCode::NoSuchApp;
}

ExitCode Session::requireRuntime()
{
    const auto state = ask<DaemonState>(&LumdClient::fetchState);
    if (state.error)
        return fail(state.error);
    if (state.value.isRuntimeUp())
        return ExitCode::Success;
    return fail(ExitCode::Failed, "runtime-down", qtTrId("lumctl-runtime-down"));
}

void addExactOption(QCommandLineParser &parser)
{
    parser.addOption({QStringLiteral("exact"), qtTrId("lumctl-option-exact")});
}
