// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/alienbinderconnection.h"
#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/logcapture.h"

#include <utility>

/// The gbinder ledger with the signals of a connection, and the lines of its log, at their places
/// in it.
class LinkStory : public QObject
{
    Q_OBJECT

public:
    explicit LinkStory(AlienBinderConnection &connection)
    {
        FakeBinder::clearLedger();
        connect(&connection, &AlienBinderConnection::connectionChanged, this, [this](bool up) {
            collect();
            m_lines.append(up ? QStringLiteral("connectionChanged true")
                              : QStringLiteral("connectionChanged false"));
        });
    }

    /// With the log's lines too. It is to be gone before @p log.
    LinkStory(AlienBinderConnection &connection, LogCapture &log) : LinkStory(connection)
    {
        m_log = &log;
        log.setListener([this](const QString &line) {
            if (!line.contains(QLatin1String(" com.tovra.lumd.binder ")))
                return;
            collect();
            m_lines.append(line);
        });
    }
    ~LinkStory() override
    {
        if (m_log)
            m_log->setListener({});
    }

    /// What happened since the last call.
    QStringList take()
    {
        collect();
        return std::exchange(m_lines, {});
    }

private:
    void collect()
    {
        m_lines.append(FakeBinder::ledger());
        FakeBinder::clearLedger();
    }

    QStringList m_lines;
    LogCapture *m_log = nullptr;
};
