// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/binder/androidpeer.h"
#include "tests/support/fakegbinder/fakebinder.h"

#include <QtTest>

/// The base of tests of transactions: each function begins with a peer that answers with nothing,
/// and must leave nothing behind on the gbinder side.
class TransactionTest : public QObject
{
    Q_OBJECT

protected:
    static constexpr quint32 code = 17;
    static constexpr bool oneway = true;
    static constexpr bool withReply = false;

    AndroidPeer m_peer;

private Q_SLOTS:
    void init()
    {
        m_peer.setReply(FakeBinder::Reply::data({}));
        FakeBinder::clearLedger();
        FakeBinder::clearRequests();
    }
    void cleanup()
    {
        QCOMPARE(FakeBinder::errors(), QStringList());
        // The manager, the service's object and the client of the peer itself.
        QCOMPARE(FakeBinder::leaks().size(), 3);
    }
};
