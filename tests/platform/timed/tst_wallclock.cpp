// SPDX-License-Identifier: BSD-3-Clause
#include <timed-qt5/wallclock.h>

#include "tests/support/testmain.h"

using Maemo::Timed::WallClock::Info;

class TestWallClock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void zoneIsKept_data();
    void zoneIsKept();
    void unknownZoneIsEmpty();
    void infoTravelsInAVariant();
};

void TestWallClock::zoneIsKept_data()
{
    QTest::addColumn<QString>("zone");
    QTest::newRow("zone") << QStringLiteral("Europe/Helsinki");
    QTest::newRow("empty") << QStringLiteral("");
}

void TestWallClock::zoneIsKept()
{
    QFETCH(QString, zone);
    QCOMPARE(Info(zone).humanReadableTz(), zone);
}

void TestWallClock::unknownZoneIsEmpty()
{
    QVERIFY(Info().humanReadableTz().isEmpty());
}

void TestWallClock::infoTravelsInAVariant()
{
    const QVariant variant = QVariant::fromValue(Info(QStringLiteral("UTC")));
    QCOMPARE(variant.value<Info>().humanReadableTz(), QStringLiteral("UTC"));
    QCOMPARE(
        QString::fromLatin1(variant.typeName()), QStringLiteral("Maemo::Timed::WallClock::Info"));
}

LUM_TEST_MAIN(TestWallClock)
#include "tst_wallclock.moc"
