// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/daemon/daemonfixture.h"
#include "tests/support/notificationserver.h"

/// The two kinds of short message to the user.
enum class Remark { Notice, Warning };

/// The daemon with all that comes with apps: the runtime's image and its Android level, the
/// user's bus with a notification server, and the services that packages go to.
struct AppFixture : DaemonFixture
{
    AppFixture();

    /// Puts the built catalogues where the daemon looks for them, before its start.
    static void installCatalogues();

    /// Makes both services appear and the unit "active", and waits until the daemon is
    /// connected to both; false when it does not get there.
    bool bringUpRuntime();

    /// The same with services that the test has registered.
    bool connectToRuntime();
    /// Makes the daemon see the unit in that state; false when it does not.
    bool see(const QString &state);
    /// Registers one of the services and waits until the daemon is connected to it.
    bool bringUp(const QString &service);
    /// Waits until the daemon is connected to a service that is registered.
    bool waitForLink(const QString &service);
    /// Kills the daemon, takes the unit down without telling, and puts a new daemon in place.
    void renew();

    /// The lines of the daemon's own category so far, without "com.tovra.lumd.daemon":
    /// "debug Installing \"a\"".
    QStringList daemonLines() const;
    /// Requests to that service with that code so far.
    QVector<FakeBinder::Request> requests(const QString &service, quint32 code);
    /// How often the daemon asked systemd to start the runtime.
    int starts() const;

    /// Asks for an install, which must be refused with these words behind the first line and
    /// reach nobody: neither the user nor the runtime, which comes up afterwards, having been
    /// started for it `expectedStarts` times.
    void expectFailure(const QString &path, const QStringList &words, int expectedStarts = 1);

    PrivateBus userBus{PrivateBus::Kind::User, 1000};
    NotificationServer notifications{userBus.address()};
};

/// Rows of a test function: unit states, and how often a request asks systemd for a start then,
/// in the columns "state" and "starts".
void addStatesAndStarts();

/// The result of a method that gives a boolean; an error's words in place of a result.
QString resultOf(const QDBusMessage &reply);

/// In the folder that apk files are staged in, as the host and as the runtime sees it.
QString incoming(const QString &name = {});
QString incomingInRuntime(const QString &name);
/// In the folder of the apk files that packages deliver.
QString packaged(const QString &name = {});
/// The line for a copy into that folder that failed.
QString couldNotCopy(const QString &path, const QString &name);
/// In the folder of the partner space's markers.
QString marker(const QString &name = {});
/// Every entry of a folder but "." and "..", in order of the name.
QStringList entries(const QString &folder);
/// Owner and mode, as "0:0 644".
QString rights(const QString &path);

/// The body of a request to install on Android level 27; 0 for no observer.
QByteArray installBody(const QString &path, quint32 observer);
/// The body of a request to uninstall; 0 for no observer.
QByteArray uninstallBody(const QString &package, quint32 observer = 0);
/// The packages or paths that these requests begin with.
QStringList names(const QVector<FakeBinder::Request> &requests);

/// The text of a notification without names, as NotificationServer::texts() gives it.
QString remark(Remark kind, const QString &body);

/// Codes of the Android services, by the level that the fixture sets up (27).
constexpr quint32 installCode = 60;
constexpr quint32 uninstallCode = 64;
constexpr quint32 launchCode = 1; // of "alien"
constexpr quint32 startActivityCode = 3;
constexpr quint32 hasWindowCode = 103; // of "SurfaceFlinger"
