// SPDX-License-Identifier: BSD-3-Clause
#include "directoryworld.h"
#include "wirebytes.h"

#include <QtTest>

using namespace Wire;
using namespace Directory;

class TestServiceDirectoryNames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nameRegisteredAgainGoesToTheNewcomer();
    void nameRegisteredAgainKeepsItsPlaceAndPriority();
    void listHasTheNewestFirst();
    void deadServicesAreNotFound();
    void nameOfADeadServiceStaysInTheList();
    void deadServiceComesBackUnderItsName();
    void nameHasAtMost127Units();
};

void TestServiceDirectoryNames::nameRegisteredAgainGoesToTheNewcomer()
{
    World world(27);
    world.add(QStringLiteral("alien"), 5);
    world.add(QStringLiteral("alien"), 6);
    QCOMPARE(*world.call(Check, string16(QStringLiteral("alien"))).handle, 6U);
    QCOMPARE(world.handles(),
        (QStringList{
            QStringLiteral("keep 5"), QStringLiteral("keep 6"), QStringLiteral("release 5")}));
}

void TestServiceDirectoryNames::nameRegisteredAgainKeepsItsPlaceAndPriority()
{
    World world(28);
    world.add(QStringLiteral("old"), 1, 8);
    world.add(QStringLiteral("new"), 2, 8);
    world.add(QStringLiteral("old"), 3, 1);
    const QStringList both{QStringLiteral("new"), QStringLiteral("old")};
    QCOMPARE(world.names(8), both);
    QCOMPARE(world.names(1), QStringList());
}

void TestServiceDirectoryNames::listHasTheNewestFirst()
{
    World world(29);
    for (const char *name : {"one", "two", "three"})
        world.add(QString::fromLatin1(name), 1);
    QCOMPARE(world.names(),
        (QStringList{QStringLiteral("three"), QStringLiteral("two"), QStringLiteral("one")}));
}

void TestServiceDirectoryNames::deadServicesAreNotFound()
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

void TestServiceDirectoryNames::nameOfADeadServiceStaysInTheList()
{
    World world(27);
    world.add(QStringLiteral("one"), 5);
    world.add(QStringLiteral("two"), 6);
    world.directory().handleDied(5);
    QCOMPARE(world.names(), (QStringList{QStringLiteral("two"), QStringLiteral("one")}));
}

void TestServiceDirectoryNames::deadServiceComesBackUnderItsName()
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

void TestServiceDirectoryNames::nameHasAtMost127Units()
{
    World world(27);
    const QString longest(127, QLatin1Char('n'));
    QCOMPARE(world.add(longest, 5).status, 0);
    QCOMPARE(world.add(longest + QLatin1Char('n'), 6).status, -1);
    QVERIFY2(world.lastError().startsWith(QLatin1String("name of 128 units")),
        qPrintable(world.lastError()));
    QCOMPARE(world.names(), QStringList{longest});
}

QTEST_APPLESS_MAIN(TestServiceDirectoryNames)
#include "tst_servicedirectorynames.moc"
