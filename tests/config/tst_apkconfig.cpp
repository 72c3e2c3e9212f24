// SPDX-License-Identifier: BSD-3-Clause
#include "config/apkconfig.h"

#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

#include <QTextCodec>

namespace {
constexpr char rootVariable[] = "ANDROID_DATA_ROOT";
}

class TestApkConfig : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { qunsetenv(rootVariable); }

    void valuesOfThePathsAreFixed();
    void everyPathFollowsTheDataRoot_data();
    void everyPathFollowsTheDataRoot();
    void dataRootIsUtf8WhateverTheLocale();
    void defaultRootIsTakenInSilence();
    void customRootIsLogged_data();
    void customRootIsLogged();
    void unknownPathIsNullWithAWarning_data();
    void unknownPathIsNullWithAWarning();
    void environmentIsReadOnlyAtConstruction();
};

void TestApkConfig::valuesOfThePathsAreFixed()
{
    QCOMPARE(static_cast<int>(DataRoot), 1);
    QCOMPARE(static_cast<int>(AppDir), 2);
    QCOMPARE(static_cast<int>(IncomingDir), 3);
    QCOMPARE(static_cast<int>(PackagedDir), 4);
    QCOMPARE(static_cast<int>(AppDataDir), 5);
}

void TestApkConfig::everyPathFollowsTheDataRoot_data()
{
    QTest::addColumn<bool>("isSet");
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QString>("root");

    QTest::newRow("unset") << false << QByteArray() << QStringLiteral("/home/.android");
    QTest::newRow("set") << true << QByteArray("/data/android") << QStringLiteral("/data/android");
    QTest::newRow("empty") << true << QByteArray("") << QStringLiteral("");
    QTest::newRow("trailing slash") << true << QByteArray("/data/") << QStringLiteral("/data/");
    QTest::newRow("relative") << true << QByteArray("data") << QStringLiteral("data");
    QTest::newRow("UTF-8") << true << QByteArray("/d\xc3\xa4ta") << QStringLiteral("/d\u00e4ta");
    QTest::newRow("placeholders") << true << QByteArray("/%1/%2") << QStringLiteral("/%1/%2");
}

void TestApkConfig::everyPathFollowsTheDataRoot()
{
    QFETCH(bool, isSet);
    QFETCH(QByteArray, variable);
    QFETCH(QString, root);
    if (isSet)
        qputenv(rootVariable, variable);

    const ApkConfig config;
    QCOMPARE(config.path(DataRoot), root);
    QCOMPARE(config.path(AppDir), root + QLatin1String("/data/app/"));
    QCOMPARE(config.path(IncomingDir), root + QLatin1String("/data/aas-staging/app/incoming/"));
    QCOMPARE(config.path(PackagedDir), root + QLatin1String("/data/aas-staging/app/packaged/"));
    QCOMPARE(config.path(AppDataDir), root + QLatin1String("/data/data/"));
}

void TestApkConfig::dataRootIsUtf8WhateverTheLocale()
{
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    qputenv(rootVariable, "/d\xc3\xa4ta");
    QCOMPARE(ApkConfig().path(DataRoot), QStringLiteral("/d\u00e4ta"));
}

void TestApkConfig::defaultRootIsTakenInSilence()
{
    const LogCapture log;
    const ApkConfig config;
    QCOMPARE(config.path(DataRoot), QStringLiteral("/home/.android"));
    QCOMPARE(log.lines(), QStringList());
}

void TestApkConfig::customRootIsLogged_data()
{
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QString>("shown");

    QTest::newRow("set") << QByteArray("/data/android") << QStringLiteral("\"/data/android\"");
    QTest::newRow("empty") << QByteArray("") << QStringLiteral("\"\"");
}

void TestApkConfig::customRootIsLogged()
{
    QFETCH(QByteArray, variable);
    QFETCH(QString, shown);
    qputenv(rootVariable, variable);

    const LogCapture log;
    const ApkConfig config;
    QCOMPARE(log.lines(),
        QStringList(QLatin1String("debug com.tovra.lumd.config "
                                  "Using custom path for apps + data:  ")
            + shown));
}

void TestApkConfig::unknownPathIsNullWithAWarning_data()
{
    QTest::addColumn<int>("value");

    QTest::newRow("below the first") << 0;
    QTest::newRow("behind the last") << 6;
    QTest::newRow("negative") << -1;
}

void TestApkConfig::unknownPathIsNullWithAWarning()
{
    QFETCH(int, value);

    const ApkConfig config;
    const LogCapture log(LogCapture::Level::Default);
    QVERIFY(config.path(static_cast<SymbolicPath>(value)).isNull());
    QCOMPARE(log.lines(),
        QStringList(QStringLiteral("warning com.tovra.lumd.config Cannot handle symbolic path: %1")
                .arg(value)));
}

void TestApkConfig::environmentIsReadOnlyAtConstruction()
{
    qputenv(rootVariable, "/first");
    const ApkConfig config;
    qputenv(rootVariable, "/second");
    const ApkConfig &original = config;
    const ApkConfig copy(original);
    QCOMPARE(config.path(DataRoot), QStringLiteral("/first"));
    QCOMPARE(copy.path(AppDir), QStringLiteral("/first/data/app/"));
}

LUM_TEST_MAIN(TestApkConfig)
#include "tst_apkconfig.moc"
