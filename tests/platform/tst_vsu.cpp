// SPDX-License-Identifier: BSD-3-Clause
#include <vsu.h>
#include <vsurepomanager.h>

#include "tests/support/testmain.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

namespace {

/// All texts have one time, as those of a package with clamped times.
void configure(const QByteArray &text)
{
    QFile file(QStringLiteral("/etc/lumd/platform/vsu.conf"));
    const auto time = QDateTime::fromSecsSinceEpoch(1000000000);
    if (!QDir().mkpath(QStringLiteral("/etc/lumd/platform")) || !file.open(QIODevice::WriteOnly)
        || file.write("[vsu]\n" + text) < 0 || !file.flush()
        || !file.setFileTime(time, QFileDevice::FileModificationTime))
        qFatal("cannot write the configuration");
}

} // namespace

class TestVsu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void missingFileGivesDefaults();
    void deviceModeIsANumber_data();
    void deviceModeIsANumber();
    void repositoriesAreLists_data();
    void repositoriesAreLists();
    void unknownFilterGivesNone();
    void fileIsReadAtEachCall();
};

void TestVsu::missingFileGivesDefaults()
{
    QCOMPARE(Vsu().deviceMode(), 0);
    for (const bool rnd : {false, true})
        QCOMPARE(VsuRepoManager().repos(rnd, 0), QStringList());
}

void TestVsu::deviceModeIsANumber_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("mode");
    QTest::newRow("absent") << QByteArray() << 0;
    QTest::newRow("2") << QByteArray("deviceMode=2\n") << 2;
    QTest::newRow("18") << QByteArray("deviceMode=18\n") << 18;
    QTest::newRow("negative") << QByteArray("deviceMode=-1\n") << -1;
    QTest::newRow("no number") << QByteArray("deviceMode=two\n") << 0;
}

void TestVsu::deviceModeIsANumber()
{
    QFETCH(QByteArray, text);
    QFETCH(int, mode);
    configure(text);
    QCOMPARE(Vsu().deviceMode(), mode);
}

void TestVsu::repositoriesAreLists_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("usual");
    QTest::addColumn<QStringList>("rnd");
    const QStringList none;
    const QStringList one{QStringLiteral("apps")};
    const QStringList two{QStringLiteral("apps"), QStringLiteral("jolly")};
    QTest::newRow("absent") << QByteArray() << none << none;
    QTest::newRow("one") << QByteArray("repos=apps\n") << one << none;
    QTest::newRow("two") << QByteArray("repos=apps, jolly\n") << two << none;
    QTest::newRow("both") << QByteArray("rndRepos=apps,jolly\nrepos=apps\n") << one << two;
}

void TestVsu::repositoriesAreLists()
{
    QFETCH(QByteArray, text);
    QFETCH(QStringList, usual);
    QFETCH(QStringList, rnd);
    configure(text);
    QCOMPARE(VsuRepoManager().repos(false, 0), usual);
    QCOMPARE(VsuRepoManager().repos(true, 0), rnd);
}

void TestVsu::unknownFilterGivesNone()
{
    configure("repos=apps\nrndRepos=rare\n");
    for (const bool rnd : {false, true})
        QCOMPARE(VsuRepoManager().repos(rnd, 1), QStringList());
}

void TestVsu::fileIsReadAtEachCall()
{
    for (int i = 0; i < 3; ++i) {
        configure("deviceMode=2\nrepos=apps\nrndRepos=rare\n");
        QCOMPARE(Vsu().deviceMode(), 2);
        QCOMPARE(VsuRepoManager().repos(false, 0), QStringList{QStringLiteral("apps")});
        QCOMPARE(VsuRepoManager().repos(true, 0), QStringList{QStringLiteral("rare")});
        configure("deviceMode=3\nrepos=toys\nrndRepos=lost\n");
        QCOMPARE(Vsu().deviceMode(), 3);
        QCOMPARE(VsuRepoManager().repos(false, 0), QStringList{QStringLiteral("toys")});
        QCOMPARE(VsuRepoManager().repos(true, 0), QStringList{QStringLiteral("lost")});
    }
}

LUM_TEST_MAIN(TestVsu)
#include "tst_vsu.moc"
