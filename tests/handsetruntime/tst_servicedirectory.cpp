// SPDX-License-Identifier: BSD-3-Clause
#include "directoryworld.h"
#include "wirebytes.h"

#include <QtTest>

using namespace Wire;
using namespace Directory;

class TestServiceDirectory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void serviceIsFoundOnceItWasAdded_data();
    void serviceIsFoundOnceItWasAdded();
    void servicesAreListedOneACall_data();
    void servicesAreListedOneACall();
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
                               << QStringLiteral("14155972 bytes wanted");
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
