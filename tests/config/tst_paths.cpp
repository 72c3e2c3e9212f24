// SPDX-License-Identifier: BSD-3-Clause
#include "config/paths.h"

#include "tests/support/testmain.h"

class TestPaths : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void otherProgramsFindTheFilesThere();
};

// Home screen, settings and package scripts have these by heart.
void TestPaths::otherProgramsFindTheFilesThere()
{
    QCOMPARE(Paths::applications, "/usr/share/applications/");
    QCOMPARE(Paths::icons, "/var/lib/lumd/");
    QCOMPARE(Paths::settingsEntries, "/usr/share/tovra-settings/entries/");
    QCOMPARE(Paths::partnerSpace, "/usr/share/lumd/partnerspace/");
}

LUM_TEST_MAIN(TestPaths)
#include "tst_paths.moc"
