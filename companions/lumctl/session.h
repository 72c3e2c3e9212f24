// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "client/lumdclient.h"
#include "command.h"
#include "output.h"

#include <QCommandLineParser>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QObject>
#include <QSocketNotifier>
#include <QStringList>

#include <memory>
#include <optional>

/// An error as it is told.
struct ErrorReport
{
    ExitCode code;
    const char *kind; ///< in the JSON form
    QString text; ///< in the user's language
};
ErrorReport reportOf(const ClientError &error);

/// One run of a command: its options, its lumd, and what it prints. Nothing here takes longer than
/// the time limit; a limit of 0 is none.
class Session : public QObject
{
    Q_OBJECT

public:
    /// How a wait ended.
    enum class End {
        Reached,
        Vanished, ///< lumd has gone; only after watch()
        TimedOut,
        Interrupted, ///< by a signal; only after catchInterrupts()
    };

    Session(const QCommandLineParser &options, const QStringList &arguments, Output &output,
        std::chrono::seconds limit);
    ~Session() override;

    const QCommandLineParser &options;
    const QStringList arguments;
    Output &output;
    LumdClient client;
    const std::chrono::seconds limit;

    /// Calls an operation of the client and waits for its answer.
    template <typename Value, typename Operation, typename... Arguments>
    Answer<Value> ask(Operation operation, const Arguments &...operationArguments);

    /// Has the client watch lumd. Not successful when there is none, of which the user is told.
    ExitCode watch();
    /// From now on SIGINT and SIGTERM end a wait, and not the program.
    void catchInterrupts();
    /// The signal that came, or 0.
    int caughtSignal() const { return m_caughtSignal; }

    /// Waits until that is so; it is looked at after each wake().
    End wait(const std::function<bool()> &isReached, const std::function<void()> &eachSecond = {});
    void wake() { m_loop.quit(); }
    /// Lets the next wait go on without lumd, which may come back.
    void forgetVanished() { m_hasVanished = false; }

    /// Tells of an error and gives its exit code.
    ExitCode fail(const ClientError &error);
    /// `kind` is the word for it in the JSON form, where `details` join it.
    ExitCode fail(
        ExitCode code, const char *kind, const QString &text, const QJsonObject &details = {});
    /// A wrong use of the command.
    ExitCode misused(const QString &text);

    /// The app that a person means; nothing when that is not clear, of which the user is told and
    /// failure() then gives the exit code.
    std::optional<NamedApp> findNamed(const QString &name);
    ExitCode failure() const { return m_failure; }
    /// Not successful when the runtime is down or cannot be asked for, of which the user is told.
    ExitCode requireRuntime();

private:
    std::chrono::milliseconds remaining() const;
    ExitCode failWithCandidates(const QString &name, const QVector<AndroidApp> &candidates);

    const QDeadlineTimer m_deadline;
    QEventLoop m_loop;
    std::optional<QVector<AndroidApp>> m_apps;
    std::unique_ptr<QSocketNotifier> m_interrupts;
    ExitCode m_failure = ExitCode::Success;
    int m_caughtSignal = 0;
    bool m_hasVanished = false;
};

/// Adds the option by which a name is taken for a package's as it stands.
void addExactOption(QCommandLineParser &parser);

template <typename Value, typename Operation, typename... Arguments>
Answer<Value> Session::ask(Operation operation, const Arguments &...operationArguments)
{
    // Shared: an interrupt ends the wait before the answer has come.
    const auto answer = std::make_shared<std::optional<Answer<Value>>>();
    client.setTimeLimit(remaining());
    (client.*operation)(operationArguments..., [this, answer](const Answer<Value> &given) {
        *answer = given;
        wake();
    });
    while (!*answer && m_caughtSignal == 0)
        m_loop.exec();
    return answer->value_or(
        Answer<Value>{{}, {ClientError::Kind::Failed, QStringLiteral("Interrupted")}});
}
