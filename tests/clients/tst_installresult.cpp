// SPDX-License-Identifier: BSD-3-Clause
#include "clients/installresult.h"

#include "tests/support/testmain.h"

#include <QCoreApplication>
#include <QMap>
#include <QTranslator>
#include <QtTest>

#include <limits>

namespace {

/// A language in which every text is its id in brackets.
class Brackets : public QTranslator
{
    Q_OBJECT

public:
    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *sourceText, const char *disambiguation,
        int n) const override
    {
        Q_UNUSED(context)
        Q_UNUSED(disambiguation)
        Q_UNUSED(n)
        return QLatin1Char('[') + QLatin1String(sourceText) + QLatin1Char(']');
    }
};

QMap<qint32, QString> knownIds()
{
    QMap<qint32, QString> ids;
    const auto add = [&ids](const char *id, const QVector<qint32> &codes) {
        for (const qint32 code : codes)
            ids.insert(code, QLatin1String(id));
    };
    add("Aborted", {-115, -22, -21});
    add("lumd-install-fail-incompat", {-113, -111, -17, -16, -14, -12, -9});
    add("lumd-install-fail-conflict", {-112, -25, -24, -13, -10, -8, -7, -6, -5, -1});
    add("lumd-install-fail-invalid",
        {-109, -108, -107, -106, -105, -104, -103, -102, -101, -100, -26, -23, -15, -11, -3, -2});
    add("lumd-install-fail-storage", {-20, -19, -18, -4});
    return ids;
}

QVector<qint32> codes()
{
    using Limits = std::numeric_limits<qint32>;
    QVector<qint32> codes{Limits::min(), -1000000, 1000000, Limits::max()};
    for (qint32 code = -120; code <= 5; ++code)
        codes.append(code);
    return codes;
}

} // namespace

class TestInstallResult : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyCodeHasItsText_data();
    void everyCodeHasItsText();
    void textIsTranslated_data() { everyCodeHasItsText_data(); }
    void textIsTranslated();
};

void TestInstallResult::everyCodeHasItsText_data()
{
    QTest::addColumn<qint32>("code");
    QTest::addColumn<QString>("id");
    const QMap<qint32, QString> ids = knownIds();
    QCOMPARE(ids.size(), 40);
    for (const qint32 code : codes())
        QTest::newRow(QByteArray::number(code).constData())
            << code << ids.value(code, QStringLiteral("lumd-install-fail-other"));
}

void TestInstallResult::everyCodeHasItsText()
{
    QFETCH(qint32, code);
    QFETCH(QString, id);
    // Without a translation a text is its id.
    QCOMPARE(installFailureText(code), id);
}

void TestInstallResult::textIsTranslated()
{
    QFETCH(qint32, code);
    QFETCH(QString, id);
    Brackets brackets;
    QVERIFY(QCoreApplication::installTranslator(&brackets));
    QCOMPARE(installFailureText(code), QLatin1Char('[') + id + QLatin1Char(']'));
}

LUM_TEST_MAIN(TestInstallResult)
#include "tst_installresult.moc"
