// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/apkmanager.h"

#include "tests/launcher/launcherreceiver.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testmain.h"

#include <memory>

using FakeBinder::ParcelWriter;

namespace {

const ApkLauncher &maps()
{
    static const ApkLauncher launcher{QStringLiteral("Maps"), "icon!", QStringLiteral("a.maps"),
        QStringLiteral("a.maps.Main"), QStringLiteral("1.2")};
    return launcher;
}

QByteArray fields(const QStringList &strings)
{
    ParcelWriter writer;
    for (const QString &string : strings)
        writer.string16(string);
    return writer.bytes();
}

QByteArray word(qint32 value)
{
    return ParcelWriter().int32(value).bytes();
}

} // namespace

class TestApkManagerBadInput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_runtime = std::make_unique<ActiveRuntime>(); }

    void announcementCutAtEveryByte();
    void lengthThatLies_data();
    void lengthThatLies();
    void announcementWithAnyBitTurnedIsStillOneSignal();

private:
    std::unique_ptr<ActiveRuntime> m_runtime;
};

void TestApkManagerBadInput::announcementCutAtEveryByte()
{
    const QStringList strings{
        maps().packageName, maps().className, maps().caption, maps().packageVersion};
    QVector<int> ends;
    for (int i = 1; i <= strings.size(); ++i)
        ends.append(fields(strings.mid(0, i)).size());
    const QByteArray whole = LauncherReceiver::announcement(maps());
    const int iconEnd = ends.last() + 4 + maps().icon.size();
    QVERIFY(iconEnd < whole.size());

    LauncherReceiver receiver;
    for (int size = 0; size <= whole.size(); ++size) {
        const QByteArray payload = whole.left(size);
        QCOMPARE(receiver.call(1, payload).status, 0);
        QCOMPARE(receiver.added.size(), 1);
        const ApkLauncher got = receiver.added.takeFirst();
        const QStringList read{got.packageName, got.className, got.caption, got.packageVersion};
        int complete = 0;
        while (complete < strings.size() && size >= ends.at(complete))
            ++complete;
        for (int i = 0; i < strings.size(); ++i) {
            QCOMPARE(read.at(i), i < complete ? strings.at(i) : QString());
            QCOMPARE(read.at(i).isNull(), i >= complete);
        }
        if (complete == strings.size()) {
            QCOMPARE(got.icon, size >= iconEnd ? maps().icon : QByteArray());
            continue;
        }
        // gbinder does not pass a string that it cannot read: its length and what is left of
        // it are taken for the icon.
        const int start = complete == 0 ? 0 : ends.at(complete - 1);
        const int length = strings.at(complete).size();
        const bool isLongEnough = size >= start + 4 + length;
        QCOMPARE(got.icon, isLongEnough ? payload.mid(start + 4, length) : QByteArray());
    }
    QCOMPARE(receiver.signalCount(), 0);
    QCOMPARE(FakeBinder::errors(), QStringList());
}

void TestApkManagerBadInput::lengthThatLies_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QStringList>("strings"); // those that are read; the others are null
    QTest::addColumn<QByteArray>("icon");

    const QStringList all{
        maps().packageName, maps().className, maps().caption, maps().packageVersion};
    constexpr qint32 least = -0x7fffffff - 1;
    for (int field = 0; field < all.size(); ++field) {
        const QByteArray before = fields(all.mid(0, field));
        const QByteArray behind = LauncherReceiver::announcement(maps()).mid(before.size() + 4);
        for (const qint32 length : {-2, 1000, 0x3fffffff, 0x40000000, 0x7fffffff, least})
            QTest::addRow("string %d of length %d", field, length)
                << before + word(length) + behind << QStringList(all.mid(0, field)) << QByteArray();
    }

    const QByteArray before = fields(all);
    const QByteArray eight("abcdefgh");
    for (const qint32 length : {0, -1, -2, least, 9, 1000, 0x7ffffffc, 0x7fffffff})
        QTest::addRow("icon of length %d", length)
            << before + word(length) + eight << all << QByteArray();
    QTest::newRow("icon shorter than its bytes")
        << before + word(3) + eight << all << eight.left(3);
    QTest::newRow("more behind the icon") << before + word(4) + eight << all << eight.left(4);
    QTest::newRow("two bytes of an icon's length")
        << before + QByteArray("ab") << all << QByteArray();
    QTest::newRow("nothing") << QByteArray() << QStringList() << QByteArray();
}

void TestApkManagerBadInput::lengthThatLies()
{
    QFETCH(QByteArray, payload);
    QFETCH(QStringList, strings);
    QFETCH(QByteArray, icon);

    LauncherReceiver receiver;
    QCOMPARE(receiver.call(1, payload).status, 0);
    QCOMPARE(receiver.signalCount(), 1);
    QCOMPARE(receiver.added.size(), 1);
    const ApkLauncher &got = receiver.added.first();
    QCOMPARE(got.packageName, strings.value(0));
    QCOMPARE(got.className, strings.value(1));
    QCOMPARE(got.caption, strings.value(2));
    QCOMPARE(got.packageVersion, strings.value(3));
    QCOMPARE(got.icon, icon);
}

void TestApkManagerBadInput::announcementWithAnyBitTurnedIsStillOneSignal()
{
    LauncherReceiver receiver;
    const QByteArray whole = LauncherReceiver::announcement(maps());
    int calls = 0;
    for (int position = 0; position + 4 <= whole.size(); position += 4) {
        for (int bit = 0; bit < 32; ++bit) {
            QByteArray payload = whole;
            const int byte = position + bit / 8;
            payload[byte] = static_cast<char>(payload.at(byte) ^ (1 << (bit % 8)));
            QCOMPARE(receiver.call(1, payload).status, 0);
            QCOMPARE(receiver.call(3, payload).status, 0);
            ++calls;
        }
    }
    QCOMPARE(receiver.added.size(), calls);
    QCOMPARE(receiver.removed.size(), calls);
    QCOMPARE(FakeBinder::errors(), QStringList());
}

LUM_TEST_MAIN(TestApkManagerBadInput)
#include "tst_apkmanagerbadinput.moc"
