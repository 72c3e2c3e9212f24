// SPDX-License-Identifier: BSD-3-Clause
#include "services/activityservice.h"

#include "androidintent.h"
#include "appcatalogue.h"
#include "windowlist.h"

namespace {

// android.app.ActivityManager, START_...
enum StartResult : qint32 { Started = 0, IntentNotResolved = -91 };

/// Reads the mark of a part that nobody here sends.
void readAbsent(AndroidParcel &request, const char *what)
{
    if (request.readInt32() != 0)
        request.fail(QStringLiteral("start with %1").arg(QLatin1String(what)));
}

} // namespace

ActivityService::ActivityService(int sdk, EventLog *log, AppCatalogue *apps, WindowList *windows)
    : AndroidService(
          QStringLiteral("activity"), QStringLiteral("android.app.IActivityManager"), sdk, log),
      m_apps(apps),
      m_windows(windows)
{
    add("startActivity", {3, 6, 7},
        [this](AndroidParcel &request) { return startActivity(request); });
    add("forceStopPackage", {72, 77, 68},
        [this](AndroidParcel &request) { return forceStopPackage(request); });
}

AndroidService::Call ActivityService::startActivity(AndroidParcel &request)
{
    const AndroidParcel::Binder caller = request.readBinder();
    const QString callingPackage = request.readString16();
    if (!request.readBool())
        request.fail(QStringLiteral("start without an Intent"));
    const AndroidIntent intent = AndroidIntent::read(request, sdk());
    const QString resolvedType = request.readString16();
    const AndroidParcel::Binder resultTo = request.readBinder();
    const QString resultWho = request.readString16();
    const qint32 requestCode = request.readInt32();
    const qint32 startFlags = request.readInt32();
    readAbsent(request, "profiler info");
    readAbsent(request, "options");
    return {{{QStringLiteral("caller"), describe(caller)},
                {QStringLiteral("callingPackage"), describe(callingPackage)},
                {QStringLiteral("intent"), intent.record},
                {QStringLiteral("resolvedType"), describe(resolvedType)},
                {QStringLiteral("resultTo"), describe(resultTo)},
                {QStringLiteral("resultWho"), describe(resultWho)},
                {QStringLiteral("requestCode"), requestCode},
                {QStringLiteral("startFlags"), startFlags}},
        [this, package = intent.package](AndroidReply &reply) {
            const bool found = resolves(package);
            if (found && !package.isEmpty())
                m_windows->open(package);
            reply.writeNoException();
            reply.writeInt32(found ? Started : IntentNotResolved);
        },
        intent.damage};
}

AndroidService::Call ActivityService::forceStopPackage(AndroidParcel &request)
{
    const QString package = request.readString16();
    readUser(request);
    return {{{QStringLiteral("package"), describe(package)}}, [this, package](AndroidReply &reply) {
                m_windows->close(package);
                reply.writeNoException();
            }};
}

bool ActivityService::resolves(const QString &package) const
{
    // without a package Android's own chooser comes up; the settings are always there
    return package.isEmpty() || package == QLatin1String("com.android.settings")
        || m_apps->contains(package);
}
