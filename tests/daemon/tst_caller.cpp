// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/caller.h"

#include "tests/support/testmain.h"

#include <QDBusArgument>
#include <QDBusMessage>

#include <unistd.h>

namespace {

constexpr uint disk = 6;
constexpr uint nemo = 1001;
constexpr uint nobody = 65534;

QDBusMessage question()
{
    return QDBusMessage::createMethodCall(
        QStringLiteral("a.b"), QStringLiteral("/"), QStringLiteral("a.b"), QStringLiteral("Get"));
}

QDBusMessage answer(const QVariantMap &entries)
{
    return question().createReply(QVariant(entries));
}

BusCredentials of(uint user, const QVector<uint> &groups)
{
    return {user, groups};
}

BusCredentials withGroupsUntold(uint user)
{
    return {user, std::nullopt};
}

ProcessOwner rootsProcess()
{
    return {0, 0, QStringLiteral("root"), QStringLiteral("root")};
}

ProcessOwner nemosProcess()
{
    return {nemo, nemo, QStringLiteral("nemo"), QStringLiteral("nemo")};
}

ProcessOwner nemosProcessOf(const char *group)
{
    return {nemo, disk, QStringLiteral("nemo"), QString::fromLatin1(group)};
}

ProcessOwner noProcess()
{
    return {uint(-2), uint(-2), {}, {}};
}

} // namespace

Q_DECLARE_METATYPE(Caller)

class TestCaller : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answerWithoutAUserTellsNothing_data();
    void answerWithoutAUserTellsNothing();
    void userAndGroupsAreRead();
    void groupsThatAreNotToldAreNotThere();
    void groupsThatAreNoneAreNotTakenForUntold();
    void ownerIsThatOfTheProcess();
    void processThatIsGoneHasNoOwner();
    void bothViewsMustAgree_data();
    void bothViewsMustAgree();
    void filesAreOpenedWithTheCallersRights_data();
    void filesAreOpenedWithTheCallersRights();
};

void TestCaller::answerWithoutAUserTellsNothing_data()
{
    QTest::addColumn<QDBusMessage>("reply");
    QTest::newRow("no answer") << question().createErrorReply(
        QDBusError::NoReply, QStringLiteral("Did not receive a reply"));
    QTest::newRow("error") << question().createErrorReply(
        QStringLiteral("org.freedesktop.DBus.Error.NameHasNoOwner"), QStringLiteral("gone"));
    QTest::newRow("no connection") << QDBusMessage();
    QTest::newRow("nothing") << question().createReply();
    QTest::newRow("another type") << question().createReply(QVariant(0U));
    QTest::newRow("no entries") << answer({});
    QTest::newRow("no user") << answer({{QStringLiteral("ProcessID"), 1U}});
    QTest::newRow("user that is a text")
        << answer({{QStringLiteral("UnixUserID"), QStringLiteral("0")}});
    QTest::newRow("user of another width")
        << answer({{QStringLiteral("UnixUserID"), QVariant::fromValue(quint64(0))}});
    QTest::newRow("user in lower case") << answer({{QStringLiteral("unixuserid"), 0U}});
}

void TestCaller::answerWithoutAUserTellsNothing()
{
    QFETCH(QDBusMessage, reply);
    QVERIFY(!BusCredentials::fromReply(reply));
}

void TestCaller::userAndGroupsAreRead()
{
    const auto credentials = BusCredentials::fromReply(answer({
        {QStringLiteral("UnixUserID"), nemo},
        {QStringLiteral("UnixGroupIDs"), QVariant::fromValue(QVector<uint>{disk, nemo})},
        {QStringLiteral("ProcessID"), 1U},
    }));
    QVERIFY(credentials);
    QCOMPARE(credentials->user, nemo);
    QVERIFY(credentials->groups);
    QCOMPARE(*credentials->groups, (QVector<uint>{disk, nemo}));
}

void TestCaller::groupsThatAreNotToldAreNotThere()
{
    const auto credentials =
        BusCredentials::fromReply(answer({{QStringLiteral("UnixUserID"), nemo}}));
    QVERIFY(credentials);
    QVERIFY(!credentials->groups);
}

void TestCaller::groupsThatAreNoneAreNotTakenForUntold()
{
    const auto credentials = BusCredentials::fromReply(
        answer({{QStringLiteral("UnixUserID"), nemo}, {QStringLiteral("UnixGroupIDs"), 6U}}));
    QVERIFY(credentials);
    QVERIFY(credentials->groups);
    QVERIFY(credentials->groups->isEmpty());
}

void TestCaller::ownerIsThatOfTheProcess()
{
    const ProcessOwner owner = ProcessOwner::ofProcess(uint(getpid()));
    QCOMPARE(owner.user, uint(geteuid()));
    QCOMPARE(owner.group, uint(getegid()));
    QCOMPARE(owner.userName, QStringLiteral("root"));
    QCOMPARE(owner.groupName, QStringLiteral("root"));
}

void TestCaller::processThatIsGoneHasNoOwner()
{
    const ProcessOwner owner = ProcessOwner::ofProcess(0);
    QCOMPARE(owner.user, noProcess().user);
    QCOMPARE(owner.group, noProcess().group);
    QCOMPARE(owner.userName, QString());
    QCOMPARE(owner.groupName, QString());
}

void TestCaller::bothViewsMustAgree_data()
{
    QTest::addColumn<Caller>("caller");
    QTest::addColumn<bool>("isPrivileged");
    const auto row = [](const QByteArray &title, const ProcessOwner &process,
                         const std::optional<BusCredentials> &credentials, bool isPrivileged) {
        QTest::newRow(title.constData()) << Caller{process, credentials} << isPrivileged;
    };
    row("root", rootsProcess(), of(0, {0}), true);
    row("root, groups untold", rootsProcess(), withGroupsUntold(0), true);
    row("root, other groups", rootsProcess(), of(0, {nemo}), true);
    row("root, no answer", rootsProcess(), {}, false);
    row("became root", rootsProcess(), of(nemo, {nemo}), false);
    row("became root, of root's group", rootsProcess(), of(nemo, {0, nemo}), false);
    row("was root", nemosProcess(), of(0, {0}), false);
    row("nemo", nemosProcess(), of(nemo, {nemo}), false);
    for (const char *group : {"disk", "privileged"}) {
        const ProcessOwner process = nemosProcessOf(group);
        row(group, process, of(nemo, {disk, nemo}), true);
        row(group + QByteArrayLiteral(", groups untold"), process, withGroupsUntold(nemo), true);
        row(group + QByteArrayLiteral(", not among the groups"), process, of(nemo, {nemo}), false);
        row(group + QByteArrayLiteral(", no groups"), process, of(nemo, {}), false);
        row(group + QByteArrayLiteral(", another user"), process, of(nobody, {disk, nemo}), false);
        row(group + QByteArrayLiteral(", was root"), process, of(0, {disk}), false);
        row(group + QByteArrayLiteral(", no answer"), process, {}, false);
    }
    row("of the group beside its own", nemosProcess(), of(nemo, {disk, nemo}), false);
    row("root of another group", {0, disk, QStringLiteral("root"), QStringLiteral("disk")},
        of(0, {0}), true);
    row("gone", noProcess(), {}, false);
    row("gone, was root", noProcess(), of(0, {0}), false);
}

void TestCaller::bothViewsMustAgree()
{
    QFETCH(Caller, caller);
    QFETCH(bool, isPrivileged);
    QCOMPARE(caller.isPrivileged(), isPrivileged);
    // Root's own rights go to nobody else.
    QCOMPARE(!caller.fileRights(), isPrivileged);
}

void TestCaller::filesAreOpenedWithTheCallersRights_data()
{
    QTest::addColumn<Caller>("caller");
    QTest::addColumn<uint>("user");
    QTest::addColumn<QVector<uint>>("groups");
    const auto row = [](const char *title, const ProcessOwner &process,
                         const std::optional<BusCredentials> &credentials, uint user,
                         const QVector<uint> &groups) {
        QTest::newRow(title) << Caller{process, credentials} << user << groups;
    };
    row("nemo", nemosProcess(), of(nemo, {disk, nemo}), nemo, {disk, nemo});
    row("became root", rootsProcess(), of(nemo, {nemo}), nemo, {nemo});
    row("became another", nemosProcess(), of(disk, {disk}), disk, {disk});
    row("gone", noProcess(), of(nemo, {nemo}), nemo, {nemo});
    row("was root", nemosProcess(), of(0, {0}), nobody, {});
    row("gone, was root", noProcess(), of(0, {0}), nobody, {});
    row("no answer", nemosProcess(), {}, nobody, {});
    row("root, no answer", rootsProcess(), {}, nobody, {});
}

void TestCaller::filesAreOpenedWithTheCallersRights()
{
    QFETCH(Caller, caller);
    QFETCH(uint, user);
    QFETCH(QVector<uint>, groups);
    const std::optional<FileRights> rights = caller.fileRights();
    QVERIFY(rights);
    QCOMPARE(rights->user, user);
    QCOMPARE(rights->groups, std::vector<gid_t>(groups.cbegin(), groups.cend()));
    QCOMPARE(rights->group, groups.isEmpty() ? nobody : groups.first());
}

LUM_TEST_MAIN(TestCaller)
#include "tst_caller.moc"
