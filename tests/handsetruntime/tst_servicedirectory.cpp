// SPDX-License-Identifier: BSD-3-Clause
#include "androidparcel.h"
#include "servicemanager/servicedirectory.h"
#include "wirebytes.h"

#include <QtTest>

using namespace Wire;

namespace {

constexpr quint32 Get = 1;
constexpr quint32 Check = 2;
constexpr quint32 Add = 3;
constexpr quint32 List = 4;
constexpr quint32 Ping = 0x5f504e47;

QByteArray header(int sdk)
{
    return word(0x400000) + (sdk >= 29 ? word(-1) : QByteArray())
        + string16(QStringLiteral("android.os.IServiceManager"));
}

/// What Android's own client appends behind the object when it adds a service.
QByteArray addTail(int sdk, qint32 dumpPriority = 8)
{
    return word(0) + (sdk >= 28 ? word(dumpPriority) : QByteArray());
}

/// A directory of one level with a record of what it did.
class World
{
public:
    explicit World(int sdk)
        : m_sdk(sdk),
          m_directory(sdk,
              {[this](quint32 handle) { m_handles.append(QStringLiteral("keep %1").arg(handle)); },
                  [this](quint32 handle) {
                      m_handles.append(QStringLiteral("release %1").arg(handle));
                  },
                  [this](const QJsonObject &event) { m_events.append(event); }})
    {
    }

    ServiceDirectory::Answer call(
        quint32 code, const QByteArray &arguments, const QVector<quint64> &objects = {})
    {
        return m_directory.transact({code, header(m_sdk) + arguments, objects, 42});
    }

    ServiceDirectory::Answer add(const QString &name, qint32 handle, qint32 dumpPriority = 8)
    {
        const QByteArray text = string16(name);
        return call(Add, text + remoteObject(handle) + addTail(m_sdk, dumpPriority),
            {quint64(header(m_sdk).size() + text.size())});
    }

    /// The names in the list, in order.
    QStringList names(qint32 priorities = 0xf)
    {
        QStringList names;
        for (qint32 index = 0; index < 10; ++index) {
            const ServiceDirectory::Answer answer =
                call(List, word(index) + (m_sdk >= 28 ? word(priorities) : QByteArray()));
            if (answer.status != 0)
                break;
            AndroidParcel reply(answer.data);
            names.append(reply.readString16());
        }
        return names;
    }

    ServiceDirectory &directory() { return m_directory; }
    QStringList handles() const { return m_handles; }
    /// "registered alien", "died alien"
    QStringList changes() const
    {
        QStringList lines;
        for (const QJsonObject &event : m_events) {
            const QString kind = event.value(QStringLiteral("event")).toString();
            if (kind != QStringLiteral("servicemanager"))
                lines.append(
                    kind + QLatin1Char(' ') + event.value(QStringLiteral("service")).toString());
        }
        return lines;
    }
    QString lastError() const
    {
        return m_events.isEmpty() ? QString()
                                  : m_events.last().value(QStringLiteral("error")).toString();
    }

private:
    const int m_sdk;
    QStringList m_handles;
    QVector<QJsonObject> m_events;
    ServiceDirectory m_directory;
};

} // namespace

class TestServiceDirectory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void serviceIsFoundOnceItWasAdded_data();
    void serviceIsFoundOnceItWasAdded();
    void servicesAreListedOneACall_data();
    void servicesAreListedOneACall();
    void nameRegisteredAgainGoesToTheNewcomer();
    void nameRegisteredAgainKeepsItsPlaceAndPriority();
    void listHasTheNewestFirst();
    void deadServicesAreNotFound();
    void nameOfADeadServiceStaysInTheList();
    void deadServiceComesBackUnderItsName();
    void nameHasAtMost127Units();
    void pingIsAnsweredWithNothing();
    void unknownCodeIsAnsweredWithItsStatus();
    void wrongRequestIsRefused_data();
    void wrongRequestIsRefused();
};

void TestServiceDirectory::serviceIsFoundOnceItWasAdded_data()
{
    QTest::addColumn<int>("sdk");
    for (const int sdk : {27, 28, 29})
        QTest::addRow("%d", sdk) << sdk;
}

void TestServiceDirectory::serviceIsFoundOnceItWasAdded()
{
    QFETCH(int, sdk);
    World world(sdk);
    const QByteArray name = string16(QStringLiteral("alien"));
    for (const quint32 code : {Get, Check}) {
        const ServiceDirectory::Answer missing = world.call(code, name);
        QCOMPARE(missing.status, 0);
        QCOMPARE(missing.data, word(0));
        QVERIFY(!missing.handle);
    }

    const ServiceDirectory::Answer added = world.add(QStringLiteral("alien"), 5);
    QCOMPARE(world.lastError(), QString());
    QCOMPARE(added.status, 0);
    QCOMPARE(added.data, word(0));
    QCOMPARE(world.handles(), QStringList{QStringLiteral("keep 5")});
    QCOMPARE(world.changes(), QStringList{QStringLiteral("registered alien")});

    for (const quint32 code : {Get, Check}) {
        const ServiceDirectory::Answer found = world.call(code, name);
        QCOMPARE(found.status, 0);
        QVERIFY(found.handle);
        QCOMPARE(*found.handle, 5U);
    }
}

void TestServiceDirectory::servicesAreListedOneACall_data()
{
    serviceIsFoundOnceItWasAdded_data();
}

void TestServiceDirectory::servicesAreListedOneACall()
{
    QFETCH(int, sdk);
    World world(sdk);
    world.add(QStringLiteral("one"), 1);
    world.add(QStringLiteral("four"), 2);
    const auto list = [&world, sdk](qint32 index) {
        return world.call(List, word(index) + (sdk >= 28 ? word(0xf) : QByteArray()));
    };
    QCOMPARE(list(0).data,
        QByteArray::fromHex("04000000"
                            "66006f007500720000000000"));
    QCOMPARE(list(1).data,
        QByteArray::fromHex("03000000"
                            "6f006e0065000000"));
    QCOMPARE(list(2).status, -1);
    QCOMPARE(world.lastError(), QString());
}

void TestServiceDirectory::nameRegisteredAgainGoesToTheNewcomer()
{
    World world(27);
    world.add(QStringLiteral("alien"), 5);
    world.add(QStringLiteral("alien"), 6);
    QCOMPARE(*world.call(Check, string16(QStringLiteral("alien"))).handle, 6U);
    QCOMPARE(world.handles(),
        (QStringList{
            QStringLiteral("keep 5"), QStringLiteral("keep 6"), QStringLiteral("release 5")}));
}

void TestServiceDirectory::nameRegisteredAgainKeepsItsPlaceAndPriority()
{
    World world(28);
    world.add(QStringLiteral("old"), 1, 8);
    world.add(QStringLiteral("new"), 2, 8);
    world.add(QStringLiteral("old"), 3, 1);
    const QStringList both{QStringLiteral("new"), QStringLiteral("old")};
    QCOMPARE(world.names(8), both);
    QCOMPARE(world.names(1), QStringList());
}

void TestServiceDirectory::listHasTheNewestFirst()
{
    World world(29);
    for (const char *name : {"one", "two", "three"})
        world.add(QString::fromLatin1(name), 1);
    QCOMPARE(world.names(),
        (QStringList{QStringLiteral("three"), QStringLiteral("two"), QStringLiteral("one")}));
}

void TestServiceDirectory::deadServicesAreNotFound()
{
    World world(27);
    world.add(QStringLiteral("one"), 5);
    world.add(QStringLiteral("two"), 6);
    world.add(QStringLiteral("three"), 5);
    world.directory().handleDied(5);
    for (const quint32 code : {Get, Check}) {
        const ServiceDirectory::Answer answer = world.call(code, string16(QStringLiteral("one")));
        QCOMPARE(answer.status, 0);
        QCOMPARE(answer.data, word(0));
        QVERIFY(!answer.handle);
        QVERIFY(world.call(code, string16(QStringLiteral("two"))).handle);
        QVERIFY(!world.call(code, string16(QStringLiteral("three"))).handle);
    }
    QCOMPARE(world.handles().mid(3),
        (QStringList{QStringLiteral("release 5"), QStringLiteral("release 5")}));
    QCOMPARE(world.changes().mid(3),
        (QStringList{QStringLiteral("died three"), QStringLiteral("died one")}));
    world.directory().handleDied(5);
    QCOMPARE(world.handles().size(), 5);
}

void TestServiceDirectory::nameOfADeadServiceStaysInTheList()
{
    World world(27);
    world.add(QStringLiteral("one"), 5);
    world.add(QStringLiteral("two"), 6);
    world.directory().handleDied(5);
    QCOMPARE(world.names(), (QStringList{QStringLiteral("two"), QStringLiteral("one")}));
}

void TestServiceDirectory::deadServiceComesBackUnderItsName()
{
    World world(27);
    world.add(QStringLiteral("one"), 5);
    world.add(QStringLiteral("two"), 6);
    world.directory().handleDied(5);
    world.add(QStringLiteral("one"), 7);
    QCOMPARE(*world.call(Get, string16(QStringLiteral("one"))).handle, 7U);
    QCOMPARE(world.names(), (QStringList{QStringLiteral("two"), QStringLiteral("one")}));
    QCOMPARE(world.handles().mid(2),
        (QStringList{QStringLiteral("release 5"), QStringLiteral("keep 7")}));
}

void TestServiceDirectory::nameHasAtMost127Units()
{
    World world(27);
    const QString longest(127, QLatin1Char('n'));
    QCOMPARE(world.add(longest, 5).status, 0);
    QCOMPARE(world.add(longest + QLatin1Char('n'), 6).status, -1);
    QVERIFY2(world.lastError().startsWith(QLatin1String("name of 128 units")),
        qPrintable(world.lastError()));
    QCOMPARE(world.names(), QStringList{longest});
}

void TestServiceDirectory::pingIsAnsweredWithNothing()
{
    World world(29);
    const ServiceDirectory::Answer answer = world.directory().transact({Ping, {}, {}, 42});
    QCOMPARE(answer.status, 0);
    QCOMPARE(answer.data, QByteArray());
    QVERIFY(!answer.handle);
    QCOMPARE(world.lastError(), QString());
}

void TestServiceDirectory::unknownCodeIsAnsweredWithItsStatus()
{
    World world(29);
    QCOMPARE(world.call(5, string16(QStringLiteral("alien"))).status, -1);
    QCOMPARE(world.lastError(), QString());
}

void TestServiceDirectory::wrongRequestIsRefused_data()
{
    QTest::addColumn<int>("sdk");
    QTest::addColumn<quint32>("code");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QVector<quint64>>("objects");
    QTest::addColumn<QString>("error");
    const QByteArray name = string16(QStringLiteral("alien"));
    const auto offset = [&name](int sdk) {
        return QVector<quint64>{quint64(header(sdk).size() + name.size())};
    };
    QTest::newRow("no header") << 27 << Check << name << QVector<quint64>()
                               << QStringLiteral("strict mode word is 0x00000005");
    QTest::newRow("another interface")
        << 27 << Check << (word(0x400000) + string16(QStringLiteral("android.os.IBinder")) + name)
        << QVector<quint64>() << QStringLiteral("interface is \"android.os.IBinder\"");
    QTest::newRow("check with a word too many")
        << 27 << Check << (header(27) + name + word(0)) << QVector<quint64>()
        << QStringLiteral("4 bytes left unread");
    QTest::newRow("27 with the dump priority")
        << 27 << Add << (header(27) + name + remoteObject(5) + addTail(28)) << offset(27)
        << QStringLiteral("4 bytes left unread");
    QTest::newRow("28 without the dump priority")
        << 28 << Add << (header(28) + name + remoteObject(5) + addTail(27)) << offset(28)
        << QStringLiteral("4 bytes wanted");
    QTest::newRow("add with a null object")
        << 27 << Add
        << (header(27) + name + QByteArray::fromHex("852a6273").leftJustified(24, '\0')
               + addTail(27))
        << QVector<quint64>() << QStringLiteral("service without an object");
    QTest::newRow("add with an object that was not recorded")
        << 27 << Add << (header(27) + name + remoteObject(5) + addTail(27)) << QVector<quint64>()
        << QStringLiteral("object that the driver did not record");
    QTest::newRow("add without a name")
        << 27 << Add << (header(27) + string16(QString()) + remoteObject(5) + addTail(27))
        << QVector<quint64>{quint64(header(27).size()) + 8}
        << QStringLiteral("service without a name");
    QTest::newRow("28 list without priorities")
        << 28 << List << (header(28) + word(0)) << QVector<quint64>()
        << QStringLiteral("4 bytes wanted");
    QTest::newRow("ping with data")
        << 27 << Ping << word(0) << QVector<quint64>() << QStringLiteral("4 bytes left unread");
}

void TestServiceDirectory::wrongRequestIsRefused()
{
    QFETCH(int, sdk);
    QFETCH(quint32, code);
    QFETCH(QByteArray, data);
    QFETCH(QVector<quint64>, objects);
    QFETCH(QString, error);
    World world(sdk);
    const ServiceDirectory::Answer answer = world.directory().transact({code, data, objects, 42});
    QCOMPARE(answer.status, -1);
    QVERIFY2(world.lastError().startsWith(error), qPrintable(world.lastError()));
    QCOMPARE(world.handles(), QStringList());
    QCOMPARE(world.changes(), QStringList());
}

QTEST_APPLESS_MAIN(TestServiceDirectory)
#include "tst_servicedirectory.moc"
