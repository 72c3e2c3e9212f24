// SPDX-License-Identifier: BSD-3-Clause
#include "config/apkconfig.h"

#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

namespace {

// The volume of the user's home, as the runtime knows it.
const QString &volume()
{
    static const QString name = QStringLiteral("/storage/8ff87de4-0b37-4799-b09a-82773e869e07");
    return name;
}

} // namespace

class TestRuntimePath : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hostPathIsTranslated_data();
    void hostPathIsTranslated();
    void everyStepOfAHomePathIsLogged();
    void otherPathsAreLoggedTwice_data();
    void otherPathsAreLoggedTwice();
    void urlFollowsTheTranslatedPath_data();
    void urlFollowsTheTranslatedPath();
};

void TestRuntimePath::hostPathIsTranslated_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("runtime");
    const auto row = [](const char *name, const char *host, const QString &runtime) {
        QTest::newRow(name) << QString::fromUtf8(host) << runtime;
    };

    row("download", "/home/user/Downloads/a.apk", volume() + QLatin1String("/Downloads/a.apk"));
    row("shared storage", "/home/user/android_storage/Download/a.apk",
        QStringLiteral("/storage/emulated/0/Download/a.apk"));
    row("shared storage twice", "/home/user/android_storage/x/android_storage/y",
        QStringLiteral("/storage/emulated/0/x/storage/emulated/0/y"));
    row("shared storage is a bare prefix", "/home/user/android_storageX",
        QStringLiteral("/storage/emulated/0X"));
    row("shared storage not first", "/home/user/x/android_storage/y",
        volume() + QLatin1String("/x/android_storage/y"));
    row("home alone", "/home/user", volume());
    row("home with a slash", "/home/user/", volume() + QLatin1String("/"));
    row("/home itself", "/home", volume() + QLatin1String("/home"));
    row("/home/ without a user", "/home/", volume());
    row("/home//x", "/home//x", volume() + QLatin1String("/x"));
    row("home in a home", "/home/user/home/other/a", volume() + QLatin1String("/home/other/a"));
    row("/homestead", "/homestead/a", volume() + QLatin1String("/homestead/a"));
    row("medium in a home", "/home/run/media/user/SD", volume() + QLatin1String("/media/user/SD"));
    row("line feed in the user's name", "/home/us\ner/a", volume() + QLatin1String("/a"));
    row("medium", "/run/media/user/SDCARD/a.apk", QStringLiteral("/storage/SDCARD/a.apk"));
    row("medium's user alone", "/run/media/user", QStringLiteral("/storage"));
    row("/run/media/ alone", "/run/media/", QStringLiteral("/storage"));
    row("/run/media without a slash", "/run/media", QStringLiteral("/run/media"));
    row("home on a medium", "/run/media/user/home/x", QStringLiteral("/storage/home/x"));
    row("/run/mediafoo", "/run/mediafoo/a", QStringLiteral("/run/mediafoo/a"));
    row("/opt", "/opt/a", QStringLiteral("/opt/a"));
    row("other case", "/Home/user/a", QStringLiteral("/Home/user/a"));
    row("other case of a medium", "/run/Media/user/a", QStringLiteral("/run/Media/user/a"));
    row("relative", "home/user/a", QStringLiteral("home/user/a"));
    row("empty", "", QStringLiteral(""));
    row("file URL", "file:///home/user/a.apk", volume() + QLatin1String("/a.apk"));
    row("short file URL", "file:/home/user/a.apk", volume() + QLatin1String("/a.apk"));
    row("file URL of a medium", "file:///run/media/user/SD/a", QStringLiteral("/storage/SD/a"));
    row("file URL of another path", "file:///opt/a", QStringLiteral("/opt/a"));
    row("escapes in a file URL", "file:///opt/a%20b%C3%A4", QStringLiteral("/opt/a b\u00e4"));
    row("blanks in a file URL", "file:///opt/a b", QStringLiteral("/opt/a b"));
    row("escapes in a path", "/opt/a%20b", QStringLiteral("/opt/a%20b"));
    row("file URL in other case", "FILE:///home/user/a", QStringLiteral("FILE:///home/user/a"));
    row("other scheme", "https://example.com/home/user",
        QStringLiteral("https://example.com/home/user"));
}

void TestRuntimePath::hostPathIsTranslated()
{
    QFETCH(QString, host);
    QFETCH(QString, runtime);
    QCOMPARE(ApkConfig::runtimePath(host), runtime);
}

void TestRuntimePath::everyStepOfAHomePathIsLogged()
{
    const LogCapture log;
    ApkConfig::runtimePath(QStringLiteral("file:///home/user/android_storage/a"));
    QCOMPARE(log.lines(),
        QStringList({
            QStringLiteral("debug com.tovra.lumd.config Orig path:  "
                           "\"file:///home/user/android_storage/a\""),
            QStringLiteral("debug com.tovra.lumd.config Removed home: \"/android_storage/a\""),
            QStringLiteral("debug com.tovra.lumd.config Final path:  \"/storage/emulated/0/a\""),
        }));
}

void TestRuntimePath::otherPathsAreLoggedTwice_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("runtime");

    QTest::newRow("medium") << QStringLiteral("/run/media/u/SD") << QStringLiteral("/storage/SD");
    QTest::newRow("unchanged") << QStringLiteral("/opt/a") << QStringLiteral("/opt/a");
}

void TestRuntimePath::otherPathsAreLoggedTwice()
{
    QFETCH(QString, host);
    QFETCH(QString, runtime);

    const LogCapture log;
    ApkConfig::runtimePath(host);
    QCOMPARE(log.lines(),
        QStringList({
            QStringLiteral("debug com.tovra.lumd.config Orig path:  \"%1\"").arg(host),
            QStringLiteral("debug com.tovra.lumd.config Final path:  \"%1\"").arg(runtime),
        }));
}

void TestRuntimePath::urlFollowsTheTranslatedPath_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<QByteArray>("url");
    const auto row = [](const char *host, const char *url) {
        QTest::newRow(host) << QString::fromUtf8(host) << QByteArray(url);
    };

    row("/opt/a", "file:///opt/a");
    row("/opt/a b#c?d%20", "file:///opt/a%20b%23c%3Fd%2520");
    row("/home/user/a", "file:///storage/8ff87de4-0b37-4799-b09a-82773e869e07/a");
    row("file:///run/media/user/SD/a%20b", "file:///storage/SD/a%20b");
    row("https://example.com/a?b#c", "https://example.com/a?b#c");
    row("market://details?id=com.example", "market://details?id=com.example");
    row("https://example.com/a b", "https://example.com/a%20b");
    row("relative/a", "relative/a");
    row("", "");
}

void TestRuntimePath::urlFollowsTheTranslatedPath()
{
    QFETCH(QString, host);
    QFETCH(QByteArray, url);
    QCOMPARE(ApkConfig::runtimeUrl(host).toEncoded(), url);
}

LUM_TEST_MAIN(TestRuntimePath)
#include "tst_runtimepath.moc"
