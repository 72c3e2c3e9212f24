// SPDX-License-Identifier: BSD-3-Clause
// The program behind the "Exec" line of the generated desktop entries: starts one activity
// of an Android app through lumd.
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QTextStream>
#include <QVariantMap>

#include <limits>

namespace {

enum ExitCode { Launched = 0, NotLaunched = 1, BadArguments = 2 };

constexpr char service[] = "com.tovra.lumd";
constexpr char path[] = "/com/tovra/lumd";
// android.content.Intent
constexpr char mainAction[] = "android.intent.action.MAIN";
constexpr char launcherCategory[] = "android.intent.category.LAUNCHER";

int fail(ExitCode code, const QString &message)
{
    QTextStream(stderr) << "lumd-launcher: " << message << '\n';
    return code;
}

int launch(const QString &package, const QString &className)
{
    QDBusMessage message = QDBusMessage::createMethodCall(QLatin1String(service),
        QLatin1String(path), QLatin1String(service), QStringLiteral("launchIntent"));
    const QString noData;
    const QString noType;
    message << QString(QLatin1String(mainAction)) << noData << noType << package << className
            << QString(QLatin1String(launcherCategory)) << QVariantMap();
    // lumd answers when the windows of all launches before have come or been given up.
    constexpr int noDeadline = std::numeric_limits<int>::max();
    const QDBusMessage reply = QDBusConnection::systemBus().call(message, QDBus::Block, noDeadline);
    if (reply.type() == QDBusMessage::ErrorMessage)
        return fail(
            NotLaunched, QStringLiteral("cannot launch %1: %2").arg(package, reply.errorMessage()));
    return Launched;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3)
        return fail(BadArguments, QStringLiteral("usage: lumd-launcher APK PACKAGE/CLASS"));

    const QString &activity = arguments.at(2);
    const QString package = activity.section(QLatin1Char('/'), 0, 0);
    const QString className = activity.section(QLatin1Char('/'), 1);
    if (package.isEmpty() || className.isEmpty())
        return fail(BadArguments,
            QStringLiteral("\"%1\" is not a package and a class joined by a slash").arg(activity));
    return launch(package, className);
}
