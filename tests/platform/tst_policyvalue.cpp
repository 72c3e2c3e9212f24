// SPDX-License-Identifier: BSD-3-Clause
#include <policyvalue.h>

#include "tests/support/testmain.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

namespace {

/// All texts have one time, as those of a package with clamped times.
void setPolicy(const QByteArray &text)
{
    QFile file(QStringLiteral("/etc/lumd/platform/policy.conf"));
    const auto time = QDateTime::fromSecsSinceEpoch(1000000000);
    if (!QDir().mkpath(QStringLiteral("/etc/lumd/platform")) || !file.open(QIODevice::WriteOnly)
        || file.write(text) != text.size() || !file.flush()
        || !file.setFileTime(time, QFileDevice::FileModificationTime))
        qFatal("cannot write the policy");
}

} // namespace

class TestPolicyValue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void missingFileGivesNoValue();
    void valueIsFoundByItsNumber_data();
    void valueIsFoundByItsNumber();
    void valueIsReadAtEachCall();
};

void TestPolicyValue::missingFileGivesNoValue()
{
    QVERIFY(!Quillfin::PolicyValue::keyValue(6).isValid());
}

void TestPolicyValue::valueIsFoundByItsNumber_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isValid");
    QTest::addColumn<bool>("value");
    QTest::newRow("true") << QByteArray("[policy]\n5=false\n6=true\n") << true << true;
    QTest::newRow("false") << QByteArray("[policy]\n5=true\n6=false\n") << true << false;
    QTest::newRow("0") << QByteArray("[policy]\n6=0\n") << true << false;
    QTest::newRow("1") << QByteArray("[policy]\n6=1\n") << true << true;
    QTest::newRow("True") << QByteArray("[policy]\n6=True\n") << true << true;
    for (const char *word : {"no", "off", "yes", "2", "01", "true false", "\"true, 1\""})
        QTest::newRow(word) << QByteArray("[policy]\n6=") + word + '\n' << true << false;
    QTest::newRow("list") << QByteArray("[policy]\n6=true, true\n") << true << false;
    QTest::newRow("empty") << QByteArray("[policy]\n6=\n") << true << false;
    QTest::newRow("another number") << QByteArray("[policy]\n66=true\n") << false << false;
    QTest::newRow("another group") << QByteArray("[other]\n6=true\n") << false << false;
    QTest::newRow("no group") << QByteArray("6=true\n") << false << false;
    QTest::newRow("no ini file") << QByteArray("\0\xff[[", 4) << false << false;
}

void TestPolicyValue::valueIsFoundByItsNumber()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, isValid);
    QFETCH(bool, value);
    setPolicy(text);
    QCOMPARE(Quillfin::PolicyValue::keyValue(6).isValid(), isValid);
    QCOMPARE(Quillfin::PolicyValue::keyValue(6).toBool(), value);
}

void TestPolicyValue::valueIsReadAtEachCall()
{
    for (int i = 0; i < 3; ++i) {
        setPolicy("[policy]\n6=1\n");
        QCOMPARE(Quillfin::PolicyValue::keyValue(6).toBool(), true);
        setPolicy("[policy]\n6=0\n");
        QCOMPARE(Quillfin::PolicyValue::keyValue(6).toBool(), false);
    }
    QVERIFY(QFile::remove(QStringLiteral("/etc/lumd/platform/policy.conf")));
    QVERIFY(!Quillfin::PolicyValue::keyValue(6).isValid());
}

LUM_TEST_MAIN(TestPolicyValue)
#include "tst_policyvalue.moc"
