// SPDX-License-Identifier: BSD-3-Clause
#include "timedate.h"

#include "tests/support/testmain.h"

#include <QDBusVariant>
#include <QFile>

namespace {

const QString link = QStringLiteral("/etc/localtime");

QDBusMessage answer(const QString &zone)
{
    return Timedate::zoneQuestion().createReply(QVariant::fromValue(QDBusVariant(zone)));
}

QDBusMessage noAnswer()
{
    return Timedate::zoneQuestion().createErrorReply(QDBusError::NoReply, QStringLiteral("none"));
}

} // namespace

class TestTimedate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answerIsTaken_data();
    void answerIsTaken();
    void linkIsTakenWhereThereIsNoAnswer_data();
    void linkIsTakenWhereThereIsNoAnswer();
    void withoutEitherThereIsNoZone_data();
    void withoutEitherThereIsNoZone();
};

void TestTimedate::answerIsTaken_data()
{
    QTest::addColumn<QString>("zone");
    QTest::newRow("a zone") << QStringLiteral("Europe/Oslo");
    QTest::newRow("empty") << QStringLiteral("");
}

void TestTimedate::answerIsTaken()
{
    QFETCH(QString, zone);
    QVERIFY(QFile::link(QStringLiteral("/usr/share/zoneinfo/Asia/Tokyo"), link));
    QCOMPARE(Timedate::zoneOf(answer(zone)), zone);
    QVERIFY(!Timedate::zoneOf(answer(zone)).isNull());
    QVERIFY(QFile::remove(link));
}

void TestTimedate::linkIsTakenWhereThereIsNoAnswer_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("zone");
    QTest::newRow("absolute") << QStringLiteral("/usr/share/zoneinfo/Asia/Tokyo")
                              << QStringLiteral("Asia/Tokyo");
    QTest::newRow("relative") << QStringLiteral("../usr/share/zoneinfo/UTC")
                              << QStringLiteral("UTC");
    QTest::newRow("three names") << QStringLiteral("/usr/share/zoneinfo/America/Argentina/Salta")
                                 << QStringLiteral("America/Argentina/Salta");
    QTest::newRow("another place")
        << QStringLiteral("/opt/tz/zoneinfo/Asia/Tokyo") << QStringLiteral("Asia/Tokyo");
}

void TestTimedate::linkIsTakenWhereThereIsNoAnswer()
{
    QFETCH(QString, target);
    QFETCH(QString, zone);
    QVERIFY(QFile::link(target, link));
    QCOMPARE(Timedate::zoneOf(noAnswer()), zone);
    QVERIFY(QFile::remove(link));
}

void TestTimedate::withoutEitherThereIsNoZone_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("no link") << QString();
    QTest::newRow("a link to elsewhere") << QStringLiteral("/usr/share/other/Asia/Tokyo");
    QTest::newRow("the folder itself") << QStringLiteral("/usr/share/zoneinfo");
}

void TestTimedate::withoutEitherThereIsNoZone()
{
    QFETCH(QString, target);
    QVERIFY(target.isEmpty() || QFile::link(target, link));
    QVERIFY(Timedate::zoneOf(noAnswer()).isNull());
    QVERIFY(target.isEmpty() || QFile::remove(link));
}

LUM_TEST_MAIN(TestTimedate)
#include "tst_timedate.moc"
