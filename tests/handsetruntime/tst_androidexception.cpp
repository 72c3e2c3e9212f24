// SPDX-License-Identifier: BSD-3-Clause
#include "androidexception.h"
#include "androidparcelwriter.h"
#include "wirebytes.h"

#include <QtTest>

using namespace Wire;

class TestAndroidException : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writerPadsAsAndroidDoes();
    void exceptionIsWritten_data();
    void exceptionIsWritten();
};

void TestAndroidException::writerPadsAsAndroidDoes()
{
    AndroidParcelWriter writer;
    writer.writeInt32(-2);
    writer.writeInt64(Q_INT64_C(0x0807060504030201));
    writer.writeString16(QString());
    writer.writeString16(QStringLiteral(""));
    writer.writeString16(QStringLiteral("ab"));
    writer.writeByteArray(QByteArray());
    writer.writeByteArray(QByteArrayLiteral("abcde"));
    QCOMPARE(writer.bytes().toHex(),
        QByteArray("feffffff"
                   "0102030405060708"
                   "ffffffff"
                   "0000000000000000"
                   "020000006100620000000000"
                   "ffffffff"
                   "050000006162636465000000"));
}

void TestAndroidException::exceptionIsWritten_data()
{
    QTest::addColumn<int>("sdk");
    QTest::addColumn<QString>("stackTrace");
    QTest::addColumn<QByteArray>("expected");
    const QByteArray head = word(-1) + string16(QStringLiteral("no"));
    const QString trace = QStringLiteral("\tat a");
    QTest::newRow("27 has no stack trace") << 27 << trace << head;
    QTest::newRow("27 without one") << 27 << QString() << head;
    for (const int sdk : {28, 29}) {
        QTest::addRow("%d without a stack trace", sdk) << sdk << QString() << head + word(0);
        // its size counts the word that says it
        QTest::addRow("%d with a stack trace", sdk)
            << sdk << trace << head + word(20) + string16(trace);
    }
}

void TestAndroidException::exceptionIsWritten()
{
    QFETCH(int, sdk);
    QFETCH(QString, stackTrace);
    QFETCH(QByteArray, expected);
    const QString message = QStringLiteral("no");
    const auto written = [sdk, &stackTrace](const AndroidException &exception) {
        return exception.toParcel(sdk, stackTrace).toHex();
    };
    QCOMPARE(written(AndroidException::of(AndroidException::Security, message)), expected.toHex());

    const QByteArray behindCode = expected.mid(4);
    QCOMPARE(written(AndroidException::of(AndroidException::ServiceSpecific, message)),
        (word(-8) + behindCode + word(0)).toHex());

    const QByteArray behindMessage = expected.mid(4 + string16(message).size());
    const QByteArray cause = string16(QStringLiteral("android.os.ParcelableException"))
        + string16(QStringLiteral("a.E")) + string16(message);
    QCOMPARE(written(AndroidException::parcelable(QStringLiteral("a.E"), message)),
        (word(-9) + string16(QStringLiteral("a.E: no")) + behindMessage + word(4 + cause.size())
            + cause)
            .toHex());
}

QTEST_APPLESS_MAIN(TestAndroidException)
#include "tst_androidexception.moc"
