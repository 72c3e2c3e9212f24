// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/daemon/appfixture.h"
#include "tests/support/fakegbinder/parcelwriter.h"

#include <QObject>
#include <QVariantMap>
#include <QVector>

#include <memory>

/// An Intent as the runtime should get it; null strings are Android's null, null extras none.
struct Intent
{
    QString action = QStringLiteral("android.intent.action.VIEW");
    QString data;
    QString type;
    qint32 flags = 0;
    QString package;
    QString className;
    QStringList categories;
    QByteArray extras;
};
Q_DECLARE_METATYPE(Intent)

/// The arguments of the bus method launchIntent.
struct IntentCall
{
    QString action = QStringLiteral("android.intent.action.VIEW");
    QString data = QStringLiteral("");
    QString type = QStringLiteral("");
    QString package = QStringLiteral("");
    QString className = QStringLiteral("");
    QString category = QStringLiteral("");
    QVariantMap extras;
};
Q_DECLARE_METATYPE(IntentCall)

/// A parcel as the daemon writes it.
FakeBinder::ParcelWriter parcel();
/// A bundle of that many entries.
QByteArray bundle(const FakeBinder::ParcelWriter &entries, int count);
/// The body of startActivity. The identifier came with Android level 29.
QByteArray startActivityBody(const Intent &intent, bool hasIdentifier = false);

/// Calls launchIntent; gives the error's words, or nothing.
QString launch(const IntentCall &call);

/// A test class whose functions have the daemon start activities: the runtime is up, and has
/// a window for everybody.
class IntentTest : public QObject
{
    Q_OBJECT

protected:
    /// Puts that in place around a new daemon.
    bool start();
    /// The bodies of startActivity since the last look; sets m_windowQuestions too.
    QVector<QByteArray> takeBodies(quint32 code = startActivityCode);
    /// What the daemon warned of since the function began.
    QStringList warnings() const;

    std::unique_ptr<AppFixture> m_world;
    QStringList m_windowQuestions; ///< the packages whose windows were looked for

private Q_SLOTS:
    void initTestCase();
    void init();
};
