// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "binder/alienbinderconnection.h"
#include "tests/support/fakegbinder/fakebinder.h"

#include <utility>

/// The gbinder ledger with the signals of a connection at their places in it.
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
};
