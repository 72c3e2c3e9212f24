// SPDX-License-Identifier: BSD-3-Clause
#include "clients/alienintent.h"

#include "tests/binder/androidpeer.h"
#include "tests/clients/clienttest.h"
#include "tests/support/logcapture.h"
#include "tests/support/testmain.h"
#include "tests/support/text.h"

#include <QtTest>

#include <optional>

using FakeBinder::ParcelWriter;
// A column of a table begins as an empty value.
using Intent = std::optional<AlienIntent>;
Q_DECLARE_METATYPE(Intent)

namespace {

const QString action = QStringLiteral("android.intent.action.VIEW");
const QString empty = QStringLiteral("");

/// An intent and its bytes before and behind the identifier, which came with a later release.
void row(
    const char *name, const AlienIntent &intent, const ParcelWriter &head, const ParcelWriter &tail)
{
    QTest::newRow(name) << Intent(intent) << head.bytes() << tail.bytes();
}

ParcelWriter headOf(const QString &data, const QString &type)
{
    ParcelWriter writer = body().string16(action);
    if (data.isEmpty())
        writer.int32(0);
    else
        writer.int32(1).string16(data);
    return writer.string16(type);
}

ParcelWriter plainHead()
{
    return headOf(QString(), QString());
}

/// What stands behind the component in most intents.
ParcelWriter closed(ParcelWriter writer)
{
    return writer.int32(0).int32(0).int32(0).int32(0).int32(-2).int32(-1);
}

ParcelWriter plainTail()
{
    return closed(body().int32(0).nullString16().nullString16());
}

void dataRows()
{
    row("action alone", AlienIntent(action), plainHead(), plainTail());

    AlienIntent intent(action);
    intent.data = QUrl(QStringLiteral("https://example.org/a?b=c#d"));
    row("data", intent, headOf(QStringLiteral("https://example.org/a?b=c#d"), QString()),
        plainTail());
    intent.data = QUrl(QStringLiteral(u"file:///a%20b%25/\u00e4"));
    row("data with escapes", intent, headOf(QStringLiteral(u"file:///a b%25/\u00e4"), QString()),
        plainTail());
    intent.data = QUrl(QString());
    row("empty data", intent, plainHead(), plainTail());
    intent.data = QUrl(QStringLiteral("http://a:99999/"));
    row("data that is no URL", intent, plainHead(), plainTail());

    intent = AlienIntent(action);
    intent.type = QStringLiteral("image/png");
    row("type", intent, headOf(QString(), intent.type), plainTail());
    intent.type = empty;
    row("empty type", intent, headOf(QString(), empty), plainTail());
}

void targetRows()
{
    AlienIntent intent(action);
    intent.flags = -1;
    row("flags", intent, plainHead(), closed(body().int32(-1).nullString16().nullString16()));

    intent = AlienIntent(action);
    intent.package = QStringLiteral("com.foo");
    row("package", intent, plainHead(),
        closed(body().int32(0).string16(intent.package).nullString16()));

    intent = AlienIntent(action);
    intent.componentPackage = QStringLiteral("com.foo");
    intent.componentClass = QStringLiteral("com.foo.Main");
    row("component", intent, plainHead(),
        closed(body()
                .int32(0)
                .nullString16()
                .string16(intent.componentPackage)
                .string16(intent.componentClass)));
    intent.componentClass = QString();
    row("component without a class", intent, plainHead(),
        closed(body().int32(0).nullString16().string16(intent.componentPackage).nullString16()));
    intent.componentClass = QStringLiteral("com.foo.Main");
    intent.componentPackage = empty;
    row("empty component", intent, plainHead(),
        closed(body().int32(0).nullString16().string16(empty)));
    intent.componentPackage = QString();
    row("null component", intent, plainHead(), plainTail());
}

void contentRows()
{
    AlienIntent intent(action);
    intent.categories = QStringList{QStringLiteral("b"), QString(), QStringLiteral("a")};
    row("categories", intent, plainHead(),
        body()
            .int32(0)
            .nullString16()
            .nullString16()
            .int32(0)
            .string16List(intent.categories)
            .int32(0)
            .int32(0)
            .int32(-2)
            .int32(-1));

    intent = AlienIntent(action);
    intent.contentUserHint = 10;
    row("content user hint", intent, plainHead(),
        body()
            .int32(0)
            .nullString16()
            .nullString16()
            .int32(0)
            .int32(0)
            .int32(0)
            .int32(0)
            .int32(10)
            .int32(-1));

    intent = AlienIntent(action);
    intent.extras = {{QStringLiteral("b"), 5}, {QStringLiteral("a"), QStringLiteral("x")}};
    ParcelWriter tail = body().int32(0).nullString16().nullString16();
    tail.int32(0).int32(0).int32(0).int32(0).int32(-2);
    // The bundle: 4 bytes for the count, 20 and 16 for the entries.
    tail.int32(40).raw("BNDL").int32(2);
    tail.string16(QStringLiteral("a")).int32(0).string16(QStringLiteral("x"));
    tail.string16(QStringLiteral("b")).int32(1).int32(5);
    row("extras", intent, plainHead(), tail);

    row("null action", AlienIntent(QString()), body().nullString16().int32(0).nullString16(),
        plainTail());
}

} // namespace

// The level is fixed for a process, and each test function has a process of its own.
class TestAlienIntent : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newIntentHasItsDefaults();
    void layoutOfSdk26_data() { rows(); }
    void layoutOfSdk26() { check(26, false); }
    void layoutOfSdk27_data() { rows(); }
    void layoutOfSdk27() { check(27, false); }
    void layoutOfSdk28_data() { rows(); }
    void layoutOfSdk28() { check(28, false); }
    void layoutOfSdk29_data() { rows(); }
    void layoutOfSdk29() { check(29, true); }
    void layoutOfSdk30_data() { rows(); }
    void layoutOfSdk30() { check(30, true); }
    void unsupportedExtraIsSaidAndLeavesItsKey();

private:
    static void rows()
    {
        QTest::addColumn<Intent>("intent");
        QTest::addColumn<QByteArray>("head");
        QTest::addColumn<QByteArray>("tail");
        dataRows();
        targetRows();
        contentRows();
    }

    void check(int level, bool hasIdentifier)
    {
        QFETCH(Intent, intent);
        QFETCH(QByteArray, head);
        QFETCH(QByteArray, tail);
        QVERIFY(installRuntime(level));
        LogCapture log;
        const FakeBinder::Request request =
            m_peer.send([&intent](AlienBinderParcel &parcel) { intent->writeToParcel(&parcel); });
        const QByteArray identifier = hasIdentifier ? body().string16(empty).bytes() : QByteArray();
        QCOMPARE(request.payload.toHex(' '), (head + identifier + tail).toHex(' '));
        // The layout has no word to say about the level.
        QCOMPARE(log.lines(), QStringList());
    }

    AndroidPeer m_peer;
};

void TestAlienIntent::newIntentHasItsDefaults()
{
    const AlienIntent intent(action);
    QCOMPARE(intent.action, action);
    QVERIFY(intent.data.isEmpty());
    QVERIFY(intent.type.isNull());
    QVERIFY(intent.package.isNull());
    QVERIFY(intent.componentPackage.isNull());
    QVERIFY(intent.componentClass.isNull());
    QCOMPARE(intent.flags, 0);
    QVERIFY(intent.categories.isEmpty());
    QVERIFY(intent.extras.isEmpty());
    QCOMPARE(intent.contentUserHint, -2);
}

void TestAlienIntent::unsupportedExtraIsSaidAndLeavesItsKey()
{
    QVERIFY(installRuntime(28));
    AlienIntent intent(action);
    intent.extras = {{QStringLiteral("a"), QStringList{QStringLiteral("x")}}};
    LogCapture log;
    const FakeBinder::Request request =
        m_peer.send([&intent](AlienBinderParcel &parcel) { intent.writeToParcel(&parcel); });
    const QByteArray bundle =
        body().int32(12).raw("BNDL").int32(1).string16(QStringLiteral("a")).bytes();
    QCOMPARE(request.payload.right(bundle.size()).toHex(' '), bundle.toHex(' '));
    QCOMPARE(log.lines(),
        texts({"critical com.tovra.lumd.parcel Unsupported write bundle type! QStringList"}));
}

LUM_TEST_MAIN(TestAlienIntent)
#include "tst_alienintent.moc"
