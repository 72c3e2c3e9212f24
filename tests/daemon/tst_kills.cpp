// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/announcementtest.h"
#include "tests/daemon/killafter.h"
#include "tests/support/testmain.h"

#include <QMap>

#include <random>

namespace {

constexpr int launcherCount = 4;
// Of an announcement of all of them, roughly: the last kills come when all has been written.
constexpr int changes = launcherCount * 15;

/// Kills in one test function, of which there are eight; LUMD_KILLS says how many in all.
int kills()
{
    constexpr int functions = 8;
    const int all = qEnvironmentVariableIntValue("LUMD_KILLS");
    return (all > 0 ? all : 200) / functions;
}

/// The launchers as the runtime announces them in that round: each time with other bytes, enough
/// of them that one write does not do.
QVector<Launcher> announced(int round)
{
    QVector<Launcher> all;
    for (int i = 0; i < launcherCount; ++i) {
        const QString number = QString::number(round);
        all.append({QStringLiteral("org.example.app%1").arg(i % 3),
            QStringLiteral("org.example.Main%1").arg(i), QStringLiteral("App ") + number, number,
            QByteArray(50000 + round, 'a' + char(round % 26))});
    }
    return all;
}

QMap<QString, QByteArray> contentsOf(const QVector<Launcher> &launchers)
{
    QMap<QString, QByteArray> contents;
    for (const Launcher &launcher : launchers) {
        contents.insert(launcher.entryPath(), entryText(launcher));
        contents.insert(launcher.iconPath(), launcher.icon);
        contents.insert(launcher.settingsPath(), settingsText(launcher));
    }
    return contents;
}

} // namespace

/// Eight times the same, so that none takes long.
class TestKills : public AnnouncementTest
{
    Q_OBJECT

private Q_SLOTS:
    void filesAreWhole1() { filesAreWhole(1); }
    void filesAreWhole2() { filesAreWhole(2); }
    void filesAreWhole3() { filesAreWhole(3); }
    void filesAreWhole4() { filesAreWhole(4); }
    void filesAreWhole5() { filesAreWhole(5); }
    void filesAreWhole6() { filesAreWhole(6); }
    void filesAreWhole7() { filesAreWhole(7); }
    void filesAreWhole8() { filesAreWhole(8); }

private:
    void filesAreWhole(unsigned int seed);
    void listIsComplete(int round);
    void killWhileAnnouncing(int round);

    std::mt19937 m_random;
    int m_leftovers = 0; ///< kills that left something behind
};

void TestKills::filesAreWhole(unsigned int seed)
{
    m_random.seed(seed);
    for (int round = 0; round < kills(); ++round) {
        QVERIFY(startServed());
        listIsComplete(2 * round);
        if (QTest::currentTestFailed())
            return;
        killWhileAnnouncing(2 * round);
        if (QTest::currentTestFailed())
            return;
        m_world->renew();
    }
    qInfo("%d kills, %d of which left a temporary file", kills(), m_leftovers);
}

void TestKills::listIsComplete(int round)
{
    const QVector<Launcher> all = announced(round);
    for (const Launcher &launcher : all)
        QVERIFY(announce(launcher));
    QCOMPARE(send(launchersComplete).status, 0);
    QCOMPARE(generatedFiles(), filesOf(all));
    const QMap<QString, QByteArray> contents = contentsOf(all);
    for (auto file = contents.cbegin(); file != contents.cend(); ++file)
        QVERIFY2(fileContents(file.key()) == file.value(), qPrintable(file.key()));
}

void TestKills::killWhileAnnouncing(int round)
{
    const auto random = [this](int limit) { return int(m_random() % unsigned(limit)); };
    const int change = 1 + random(changes);
    {
        const KillAfter killer(m_world->daemon->processId(), change, random(100));
        for (const Launcher &launcher : announced(round + 1)) {
            if (!announce(launcher))
                break;
        }
    }
    QVERIFY(m_world->daemon->waitForExit());
    if (generatedFiles() != filesOf(announced(round)))
        ++m_leftovers;
    const QMap<QString, QByteArray> before = contentsOf(announced(round));
    const QMap<QString, QByteArray> after = contentsOf(announced(round + 1));
    for (auto file = before.cbegin(); file != before.cend(); ++file) {
        const QByteArray contents = fileContents(file.key());
        QVERIFY2(contents == file.value() || contents == after.value(file.key()),
            qPrintable(QStringLiteral("%1 in round %2").arg(file.key()).arg(round)));
    }
}

LUM_TEST_MAIN(TestKills)
#include "tst_kills.moc"
