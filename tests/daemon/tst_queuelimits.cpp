// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/appfixture.h"
#include "tests/support/fakegbinder/parcelreader.h"
#include "tests/support/testmain.h"

#include <QDBusConnection>
#include <QDBusPendingCall>

using FakeBinder::ParcelReader;
using FakeBinder::Request;

namespace {

constexpr int count = 5000;

QString nameOf(int number)
{
    return QStringLiteral("com.foo%1").arg(number);
}

QVariantList launchArguments(int number)
{
    return {nameOf(number)};
}

QVariantList intentArguments(int number)
{
    const QString none = QStringLiteral("");
    // Without a package no window is waited for.
    return {nameOf(number), none, none, none, none, none, QVariantMap()};
}

QString actionOf(const Request &request)
{
    ParcelReader reader(request.payload);
    reader.object(); // the caller
    reader.string16(); // the calling package
    reader.int32(); // an Intent follows
    return reader.string16();
}

} // namespace

/// What waits for the runtime waits in any number. (Installs and removals: tst_deferral.)
class TestQueueLimits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void fiveThousandLaunchesAreMadeInOrder();
    void fiveThousandIntentsAreStartedInOrder();

private:
    void callAll(const QString &method, QVariantList (*arguments)(int));

    std::unique_ptr<AppFixture> m_world;
    QStringList m_names;
};

void TestQueueLimits::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
    for (int i = 0; i < count; ++i)
        m_names.append(nameOf(i));
}

void TestQueueLimits::init()
{
    m_world->daemon->setLoggingRules(
        QStringLiteral("com.tovra.lumd.service=true\ncom.tovra.lumd.binder=true"));
    QVERIFY(m_world->start());
}

void TestQueueLimits::cleanup()
{
    m_world->renew();
}

void TestQueueLimits::callAll(const QString &method, QVariantList (*arguments)(int))
{
    constexpr int batch = 100; // the bus takes 128 calls without an answer
    for (int first = 0; first < count; first += batch) {
        QVector<QDBusPendingCall> calls;
        for (int i = first; i < first + batch; ++i) {
            QDBusMessage message = QDBusMessage::createMethodCall(QStringLiteral("com.tovra.lumd"),
                QStringLiteral("/com/tovra/lumd"), QStringLiteral("com.tovra.lumd"), method);
            message.setArguments(arguments(i));
            calls.append(QDBusConnection::systemBus().asyncCall(message));
        }
        for (QDBusPendingCall &call : calls) {
            call.waitForFinished();
            QCOMPARE(errorOf(call.reply()), QString());
        }
        QTRY_COMPARE(m_world->notifications.notices().size(), batch);
        m_world->notifications.clear();
    }
}

void TestQueueLimits::fiveThousandLaunchesAreMadeInOrder()
{
    callAll(QStringLiteral("launchApp"), launchArguments);
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(m_world->bringUp(QStringLiteral("package")));
    QVERIFY(m_world->bringUp(QStringLiteral("alien")));
    QVERIFY(m_world->android->waitForRequest(QStringLiteral("alien"), launchCode, count));
    QCOMPARE(names(m_world->requests(QStringLiteral("alien"), launchCode)), m_names);
}

void TestQueueLimits::fiveThousandIntentsAreStartedInOrder()
{
    callAll(QStringLiteral("launchIntent"), intentArguments);
    QVERIFY(m_world->see(QStringLiteral("active")));
    QVERIFY(m_world->bringUp(QStringLiteral("activity")));
    const QString activity = QStringLiteral("activity");
    QVERIFY(m_world->android->waitForRequest(activity, startActivityCode, count));
    QStringList started;
    for (const Request &request : m_world->requests(activity, startActivityCode))
        started.append(actionOf(request));
    QCOMPARE(started, m_names);
}

LUM_TEST_MAIN(TestQueueLimits)
#include "tst_queuelimits.moc"
