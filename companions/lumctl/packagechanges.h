// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "session.h"

#include <QJsonArray>

/// The words of one kind of change, in the user's language. %1 is the file or app.
struct ChangeWords
{
    const char *request; ///< in requestQueued()
    const char *success; ///< in the JSON form
    QString succeeded; ///< %2 the package
    QString failed;
    QString failedBecause; ///< %2 why
    QString underWay; ///< %2 seconds
    QString refused;
};

/// Installs or removals, one after the other, each waited for unless the user does not want that:
/// the result of an install does not tell which file it is of.
class PackageChanges : public QObject
{
    Q_OBJECT

public:
    using Request = void (LumdClient::*)(const QString &, const Done<bool> &);

    PackageChanges(Session &session, const ChangeWords &words, Request request);

    /// Adds --no-wait.
    static void addOptions(QCommandLineParser &parser);

    /// What an answer of false means; failed unless set.
    void setRefusal(ExitCode code) { m_refusal = code; }

    /// Asks for the change of the file or package `what`, shown to people as `shown`, and waits.
    /// Nothing is asked for once lumd has gone, time is over, or the user has interrupted.
    void carryOut(const QString &what, const QString &shown);
    /// Notes one that cannot even be asked for.
    void noteFailure(const QString &what, const QString &text);
    /// To be called with each result that lumd tells and that may be of what is waited for.
    void onResult(const QString &package, bool success, const QString &message);

    /// Prints the document; gives the exit code, that of the first one that did not succeed.
    ExitCode finish();

private:
    enum class Stage { Asked, Queued, Succeeded, Failed };

    void onQueued(const QString &kind, const QString &what);
    void waitForResult(const QString &shown);
    void note(ExitCode code, const char *result, const QString &text);
    void stop(ExitCode code, const char *result, const QString &text);

    Session &m_session;
    const ChangeWords m_words;
    const Request m_request;
    ExitCode m_refusal = ExitCode::Failed;
    QString m_what;
    QString m_shown;
    Stage m_stage = Stage::Asked;
    QString m_package;
    QString m_message;
    bool m_isStopped = false;
    ExitCode m_code = ExitCode::Success;
    QJsonArray m_results;
};
