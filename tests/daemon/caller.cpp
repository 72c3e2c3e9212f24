// SPDX-License-Identifier: BSD-3-Clause
// A program of some user that calls the daemon, as the tests of the caller checks need it:
//
//     caller UID GID MANNER METHOD ARGUMENT...
//
// METHOD is one of the daemon's interface, "INTERFACE.NAME", or ".NAME" for no interface.
// An ARGUMENT is a string, but for "true" and "false", which are booleans, "{}", which is an empty
// map, and "@", which is an open descriptor.
// MANNER is "plain", "hidden" (it forbids others to look at its memory), "hasty" (it is gone
// before the answer), "becoming:UID:GID" (it has these effective ids once it is connected),
// "signal" (METHOD is a signal to the daemon), "owner" (it asks for the daemon's name instead),
// "listening" (it prints that word, and then the name of each signal of the daemon's monitor, and
// of the interface METHOD) or a connection's name, which is called in the daemon's place. It prints
// the result: "true", "false", "done" or an error's words.
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>

#include <grp.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

class Listener : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void onSignal(const QDBusMessage &message)
    {
        std::printf("%s\n", qPrintable(message.member()));
        std::fflush(stdout);
    }
};

namespace {

int listenTo(const QString &interface)
{
    Listener listener;
    QDBusConnection bus = QDBusConnection::systemBus();
    const QString path = QStringLiteral("/com/tovra/lumd/monitor");
    for (const QString &each : {QStringLiteral("com.tovra.lumd.Monitor1"),
             QStringLiteral("org.freedesktop.DBus.Properties"), interface})
        bus.connect(QString(), path, each, QString(), &listener, SLOT(onSignal(QDBusMessage)));
    // Answered when the bus knows what is listened to.
    bus.interface()->isServiceRegistered(QStringLiteral("com.tovra.lumd"));
    std::printf("listening\n");
    std::fflush(stdout);
    return QCoreApplication::exec();
}

// A member of "disk" beside its own group, which must not count.
bool become(uid_t uid, gid_t gid)
{
    if (getuid() == uid && getgid() == gid)
        return true;
    constexpr gid_t disk = 6;
    return setgroups(1, &disk) == 0 && setgid(gid) == 0 && setuid(uid) == 0;
}

// For a time: no groups but that one, and back to root whenever it likes.
bool appear(uid_t uid, gid_t gid)
{
    if (getuid() == uid && getgid() == gid)
        return true;
    return setgroups(0, nullptr) == 0 && setegid(gid) == 0 && seteuid(uid) == 0;
}

bool appearAs(const QList<QByteArray> &ids)
{
    return seteuid(getuid()) == 0
        && appear(static_cast<uid_t>(ids.at(1).toInt()), static_cast<gid_t>(ids.at(2).toInt()));
}

QVariant argumentOf(const QString &text)
{
    if (text == QLatin1String("true") || text == QLatin1String("false"))
        return text == QLatin1String("true");
    if (text == QLatin1String("{}"))
        return QVariantMap();
    if (text == QLatin1String("@"))
        return QVariant::fromValue(QDBusUnixFileDescriptor(STDIN_FILENO));
    return text;
}

QDBusMessage messageOf(const QString &manner, const QString &name)
{
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    const QString interface = dot < 0 ? QStringLiteral("com.tovra.lumd") : name.left(dot);
    const QString path = QStringLiteral("/com/tovra/lumd");
    const QString daemon = QStringLiteral("com.tovra.lumd");
    if (manner == QLatin1String("signal"))
        return QDBusMessage::createTargetedSignal(daemon, path, interface, name.mid(dot + 1));
    return QDBusMessage::createMethodCall(
        manner.startsWith(QLatin1Char(':')) ? manner : daemon, path, interface, name.mid(dot + 1));
}

QString resultOf(const QDBusMessage &reply)
{
    if (reply.type() != QDBusMessage::ReplyMessage)
        return reply.errorName() + QStringLiteral(": ") + reply.errorMessage();
    if (reply.arguments().isEmpty())
        return QStringLiteral("done");
    return reply.arguments().first().toString();
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 5)
        return EXIT_FAILURE;
    const auto uid = static_cast<uid_t>(std::atoi(argv[1]));
    const auto gid = static_cast<gid_t>(std::atoi(argv[2]));
    const QByteArray manner(argv[3]);
    const QList<QByteArray> later = manner.split(':');
    if (later.size() == 3 ? !appear(uid, gid) : !become(uid, gid))
        return EXIT_FAILURE;
    if (manner == "hidden")
        prctl(PR_SET_DUMPABLE, 0);

    QCoreApplication::setSetuidAllowed(true);
    const QCoreApplication application(argc, argv);
    if (manner == "listening")
        return listenTo(QString::fromUtf8(argv[4]));
    QDBusMessage message = messageOf(QString::fromLatin1(manner), QString::fromUtf8(argv[4]));
    for (int at = 5; at < argc; ++at)
        message << argumentOf(QString::fromUtf8(argv[at]));
    QDBusConnection bus = QDBusConnection::systemBus();
    if (later.size() == 3 && !appearAs(later))
        return EXIT_FAILURE;
    if (manner == "hasty" || manner == "signal") {
        bus.send(message);
        // Answered when the bus has passed on what came before.
        bus.interface()->isServiceRegistered(QStringLiteral("com.tovra.lumd"));
    } else if (manner == "owner") {
        const bool isOwner = bus.registerService(QStringLiteral("com.tovra.lumd"));
        std::printf("%s\n", isOwner ? "true" : "false");
    } else {
        std::printf("%s\n", qPrintable(resultOf(bus.call(message))));
    }
    std::fflush(stdout);
    // A process that hides cannot be looked through for leaks.
    _exit(EXIT_SUCCESS);
}

#include "caller.moc"
