// SPDX-License-Identifier: BSD-3-Clause
#include <policyvalue.h>
#include <vsu.h>
#include <vsurepomanager.h>

#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QDir>
#include <QFile>

/// The settings as they are installed: with a comment each, and without an effect.
class TestConfiguration : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void blacklistFitsNoPackage();
    void environmentIsComments();
    void policyHasNoEffect();
    void repositoriesHaveNoEffect();
    void protocolIsThatOfAndroid10();
};

namespace {

QString shipped(const char *name)
{
    QFile file(QStringLiteral(CONFIGURATION "/") + QLatin1String(name));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QStringList linesBut(const char *name, const char *pattern)
{
    const QRegularExpression dropped(QLatin1String("^$|") + QLatin1String(pattern));
    QStringList lines;
    for (const QString &line : shipped(name).split(QLatin1Char('\n'))) {
        if (!dropped.match(line).hasMatch())
            lines.append(line);
    }
    return lines;
}

void install(const char *name, const QString &text)
{
    QFile file(QLatin1String("/etc/lumd/") + QLatin1String(name));
    if (text.isEmpty() || !QDir().mkpath(QStringLiteral("/etc/lumd/platform"))
        || !file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(text.toUtf8()) < 0)
        qFatal("cannot install %s", name);
}

/// The text with its settings in force: a mark of comments goes where no blank follows.
QString uncommented(QString text)
{
    return text.replace(QRegularExpression(QStringLiteral("(?<=\n);(?! )")), QString());
}

} // namespace

// A launcher whose package holds a slash is refused, so that such a line is a comment.
void TestConfiguration::blacklistFitsNoPackage()
{
    QVERIFY(!shipped("app-blacklist").isEmpty());
    QCOMPARE(linesBut("app-blacklist", "/"), QStringList());
}

void TestConfiguration::environmentIsComments()
{
    QVERIFY(!shipped("environment").isEmpty());
    QCOMPARE(linesBut("environment", "^#"), QStringList());
}

void TestConfiguration::policyHasNoEffect()
{
    const QString text = shipped("platform/policy.conf");
    install("platform/policy.conf", text);
    QVERIFY(!Quillfin::PolicyValue::keyValue(6).isValid());
    install("platform/policy.conf", uncommented(text));
    QCOMPARE(Quillfin::PolicyValue::keyValue(6), QVariant(false));
}

void TestConfiguration::repositoriesHaveNoEffect()
{
    const QString text = shipped("platform/vsu.conf");
    install("platform/vsu.conf", text);
    QCOMPARE(Vsu().deviceMode(), 0);
    QCOMPARE(VsuRepoManager().repos(false, 0), QStringList());
    QCOMPARE(VsuRepoManager().repos(true, 0), QStringList());
    install("platform/vsu.conf",
        uncommented(text)
            .replace(QLatin1String("Mode=0"), QLatin1String("Mode=2"))
            .replace(QLatin1String("epos="), QLatin1String("epos=one, two")));
    QCOMPARE(Vsu().deviceMode(), 2);
    QCOMPARE(VsuRepoManager().repos(false, 0), texts({"one", "two"}));
    QCOMPARE(VsuRepoManager().repos(true, 0), texts({"one", "two"}));
}

void TestConfiguration::protocolIsThatOfAndroid10()
{
    QCOMPARE(linesBut("gbinder.conf", "^#"),
        texts({"[Protocol]", "/dev/puddlejumper = aidl2", "[ServiceManager]",
            "/dev/puddlejumper = aidl2"}));
}

LUM_TEST_MAIN(TestConfiguration)
#include "tst_configuration.moc"
