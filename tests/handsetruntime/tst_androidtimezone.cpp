// SPDX-License-Identifier: BSD-3-Clause
#include "androidtimezone.h"

#include <QtTest>

class TestAndroidTimeZone : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void zoneIsWhatAndroidMakesOfIt_data();
    void zoneIsWhatAndroidMakesOfIt();
};

void TestAndroidTimeZone::zoneIsWhatAndroidMakesOfIt_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("zone");
    const auto row = [](const char *id, const char *zone) {
        QTest::newRow(id) << QString::fromLatin1(id) << QString::fromLatin1(zone);
    };
    row("Europe/Helsinki", "Europe/Helsinki");
    row("America/Argentina/Buenos_Aires", "America/Argentina/Buenos_Aires");
    row("Etc/GMT+5", "Etc/GMT+5");
    row("UTC", "UTC");
    row("GMT", "GMT");
    row("No/Such_Zone", "GMT");
    row("europe/helsinki", "GMT");
    row("Europe", "GMT");
    row("posix/Europe/Helsinki", "GMT");
    row("../zoneinfo/UTC", "GMT");
    row("/usr/share/zoneinfo/UTC", "GMT");
    row("GMT+5:30", "GMT+05:30");
    row("GMT-0530", "GMT-05:30");
    row("GMT+9", "GMT+09:00");
    row("GMT+24", "GMT");
    row("GMT+1:60", "GMT");
    row("UTC+01:00", "GMT");
}

void TestAndroidTimeZone::zoneIsWhatAndroidMakesOfIt()
{
    QFETCH(QString, id);
    QFETCH(QString, zone);
    QCOMPARE(androidTimeZone(id), zone);
}

QTEST_APPLESS_MAIN(TestAndroidTimeZone)
#include "tst_androidtimezone.moc"
