// SPDX-License-Identifier: BSD-3-Clause
// How lumctl takes its command line. No bus is there.
#include "tests/companions/lumctlrun.h"
#include "tests/daemon/appfixture.h"
#include "tests/support/testmain.h"

#include <QJsonDocument>

class TestLumctlUsage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void wrongUseIsTold_data();
    void wrongUseIsTold();
    void withoutACommandTheCommandsAreShown();
};

void TestLumctlUsage::initTestCase()
{
    AppFixture::installCatalogues();
}

void TestLumctlUsage::wrongUseIsTold_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *line, const char *text) {
        QTest::newRow(line) << words(line) << QStringLiteral("lumctl: ") + QString::fromUtf8(text);
    };
    row("dance", "There is no command \u201cdance\u201d (see --help)");
    row("info", "Usage: lumctl info NAME (see --help)");
    row("info a b", "Usage: lumctl info NAME (see --help)");
    row("install", "Usage: lumctl install FILE... (see --help)");
    row("status --loud", "Unknown option 'loud'. (see --help)");
    row("status --timeout 0", "--timeout takes a number of seconds, 1 at least (see --help)");
    row("status --timeout soon", "--timeout takes a number of seconds, 1 at least (see --help)");
    row("autostart a maybe", "Behind the name comes on or off");
    row("runtime dance", "runtime takes start, stop, enable, disable or status");
    row("intent", "An intent needs an --action");
    row("intent --action a --class b", "--class counts only together with --package");
    row("intent --action a --extra int:k=x",
        "\u201cint:k=x\u201d is no extra: TYPE:KEY=VALUE, where TYPE is bool, int, long, double or "
        "string");
    row("intent --action a --extra int:=1",
        "\u201cint:=1\u201d is no extra: TYPE:KEY=VALUE, where TYPE is bool, int, long, double or "
        "string");
    row("clear-data a", "Without a terminal to ask on, clear-data needs --yes");
}

void TestLumctlUsage::wrongUseIsTold()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, text);
    QCOMPARE(lumctl(arguments), QStringList({text, QStringLiteral("exit 2")}));
    const QJsonObject document = lumctlJson(arguments);
    QCOMPARE(
        document.value(QStringLiteral("error")).toObject().value(QStringLiteral("kind")).toString(),
        QStringLiteral("usage"));
    QCOMPARE(document.value(QStringLiteral("exit")).toInt(), 2);
}

void TestLumctlUsage::withoutACommandTheCommandsAreShown()
{
    const QString usage = QStringLiteral("Usage: lumctl COMMAND [OPTION...] [ARGUMENT...]");
    for (const char *line : {"", "--timeout 5"}) {
        const QStringList arguments =
            QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
        const QStringList lines = lumctl(arguments);
        QCOMPARE(lines.first(), usage);
        QCOMPARE(lines.filter(QStringLiteral("  runtime ")).size(), 1);
        QCOMPARE(lines.filter(QStringLiteral("complete-names")).size(), 0);
        QCOMPARE(lines.last(), QStringLiteral("exit 2"));
        QCOMPARE(QJsonDocument(lumctlJson(arguments)).toJson(QJsonDocument::Compact),
            QStringLiteral("{\"error\":{\"kind\":\"usage\",\"message\":\"%1 (see --help)\"},"
                           "\"exit\":2}")
                .arg(usage)
                .toUtf8());
    }
    const QStringList help = lumctl(words("--help"));
    QCOMPARE(help.first(), usage);
    QCOMPARE(help.last(), QStringLiteral("exit 0"));
    QCOMPARE(lumctl(words("--version")),
        QStringList({QStringLiteral("lumctl " LUMD_VERSION), QStringLiteral("exit 0")}));
}

LUM_TEST_MAIN(TestLumctlUsage)
#include "tst_lumctlusage.moc"
