// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"

#include <QLoggingCategory>

#include <thread>

namespace {

Q_LOGGING_CATEGORY(binder, "com.tovra.lumd.binder", QtWarningMsg)
Q_LOGGING_CATEGORY(parcel, "com.tovra.lumd.parcel", QtWarningMsg)
Q_LOGGING_CATEGORY(foreign, "org.example", QtWarningMsg)

} // namespace

class TestLogCapture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLineIsLevelCategoryAndText();
    void debugLinesOfOtherCategoriesStayOff();
    void byDefaultTheCategoriesDecide();
    void oneCategoryIsFoundByItsWholeName();
    void takingEmptiesTheRecord();
    void listenerIsToldOfEachLine();
    void otherThreadsAreRecorded();
    void afterItsEndMessagesGoWhereTheyWentBefore();
};

void TestLogCapture::aLineIsLevelCategoryAndText()
{
    const LogCapture log;
    qCDebug(binder) << "Connected to" << QStringLiteral("alien");
    qCWarning(binder, "died");
    qCCritical(parcel) << "Couldn't read result";
    qWarning("poll failed");
    QCOMPARE(log.lines(),
        (QStringList{QStringLiteral("debug com.tovra.lumd.binder Connected to \"alien\""),
            QStringLiteral("warning com.tovra.lumd.binder died"),
            QStringLiteral("critical com.tovra.lumd.parcel Couldn't read result"),
            QStringLiteral("warning default poll failed")}));
}

void TestLogCapture::debugLinesOfOtherCategoriesStayOff()
{
    const LogCapture log;
    qCDebug(foreign, "not seen");
    QCOMPARE(log.lines(), QStringList());
}

void TestLogCapture::byDefaultTheCategoriesDecide()
{
    const LogCapture log(LogCapture::Level::Default);
    qCDebug(binder, "not seen");
    qCWarning(binder, "seen");
    QCOMPARE(log.lines(), QStringList{QStringLiteral("warning com.tovra.lumd.binder seen")});
}

void TestLogCapture::oneCategoryIsFoundByItsWholeName()
{
    const LogCapture log;
    qCWarning(binder, "about com.tovra.lumd.parcel here");
    qCWarning(parcel, "one");
    QCOMPARE(log.lines(QStringLiteral("com.tovra.lumd.parcel")),
        QStringList{QStringLiteral("warning com.tovra.lumd.parcel one")});
    QCOMPARE(log.lines(QStringLiteral("com.tovra.lumd")), QStringList());
}

void TestLogCapture::takingEmptiesTheRecord()
{
    LogCapture log;
    qCWarning(binder, "one");
    QCOMPARE(log.take(), QStringList{QStringLiteral("warning com.tovra.lumd.binder one")});
    QCOMPARE(log.lines(), QStringList());
    qCWarning(binder, "two");
    log.clear();
    QCOMPARE(log.take(), QStringList());
}

void TestLogCapture::listenerIsToldOfEachLine()
{
    LogCapture log;
    QStringList heard;
    log.setListener([&heard](const QString &line) { heard.append(line); });
    qCDebug(binder, "a");
    qCWarning(parcel, "b");
    QCOMPARE(heard, log.lines());
    QCOMPARE(heard.size(), 2);
    log.setListener({});
    qCDebug(binder, "c");
    QCOMPARE(heard.size(), 2);
}

void TestLogCapture::otherThreadsAreRecorded()
{
    const LogCapture log;
    std::thread([] { qCWarning(binder, "from afar"); }).join();
    QCOMPARE(log.lines(), QStringList{QStringLiteral("warning com.tovra.lumd.binder from afar")});
}

void TestLogCapture::afterItsEndMessagesGoWhereTheyWentBefore()
{
    static QStringList seen;
    const auto record = [](QtMsgType, const QMessageLogContext &, const QString &text) {
        seen.append(text);
    };
    const QtMessageHandler before = qInstallMessageHandler(record);
    {
        const LogCapture log;
        qCDebug(binder, "captured");
    }
    qCWarning(binder, "let through");
    qCDebug(binder, "off again");
    qInstallMessageHandler(before);
    QCOMPARE(seen, QStringList{QStringLiteral("let through")});
}

LUM_TEST_MAIN(TestLogCapture)
#include "tst_logcapture.moc"
