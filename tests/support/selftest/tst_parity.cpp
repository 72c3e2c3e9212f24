// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/testmain.h"

#include <QFile>
#include <QProcess>

/// The fake library against the real one, which runs on a binder driver in user space.
class TestParity : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fakeAndRealLibraryDoTheSame_data();
    void fakeAndRealLibraryDoTheSame();

private:
    static QStringList run(const QString &program, const QString &protocol);
};

void TestParity::fakeAndRealLibraryDoTheSame_data()
{
    QTest::addColumn<QString>("protocol");
    QTest::addColumn<QString>("firstRequest");
    const QString interface = QStringLiteral("0900000061002e0062002e00490050006500650072000000");
    QTest::newRow("Android 8 and 9")
        << QStringLiteral("aidl") << QStringLiteral("bytes 00004000") + interface;
    QTest::newRow("Android 10") << QStringLiteral("aidl2")
                                << QStringLiteral("bytes 00004000ffffffff") + interface;
}

void TestParity::fakeAndRealLibraryDoTheSame()
{
    QFETCH(QString, protocol);
    QFETCH(QString, firstRequest);
    QFile configuration(QStringLiteral("/etc/gbinder.conf"));
    QVERIFY(configuration.open(QIODevice::WriteOnly | QIODevice::Truncate));
    configuration.write(QStringLiteral("[Protocol]\n/dev/puddlejumper = %1\n"
                                       "[ServiceManager]\n/dev/puddlejumper = %1\n")
            .arg(protocol)
            .toUtf8());
    configuration.close();
    const QStringList real = run(QStringLiteral(PARITY_WITH_REAL), protocol);
    const QStringList fake = run(QStringLiteral(PARITY_WITH_FAKE), protocol);
    QVERIFY2(real.value(1).contains(firstRequest), qPrintable(real.value(1)));
    QVERIFY(real.size() > 100);
    for (int i = 0; i < real.size(); ++i)
        QCOMPARE(fake.value(i), real.at(i));
    QCOMPARE(fake.size(), real.size());
}

QStringList TestParity::run(const QString &program, const QString &protocol)
{
    QProcess process;
    process.start(program, {protocol});
    if (!process.waitForFinished() || process.exitCode() != 0)
        return {program, QString::fromUtf8(process.readAllStandardError())};
    QStringList lines = QString::fromUtf8(process.readAllStandardOutput()).split(QLatin1Char('\n'));
    // The real library's own messages.
    const QStringList messages = lines.filter(QStringLiteral("[gbinder]"));
    for (const QString &message : messages)
        lines.removeAll(message);
    return lines;
}

LUM_TEST_MAIN(TestParity)
#include "tst_parity.moc"
