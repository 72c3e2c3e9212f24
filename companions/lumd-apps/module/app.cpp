// SPDX-License-Identifier: BSD-3-Clause
#include "companions/lumd-apps/app.h"

#include "companions/lumd-apps/lumdservice.h"
#include "companions/lumd-apps/plaintext.h"

#include <algorithm>

App::App(const QString &package, LumdService *service, QObject *parent)
    : QObject(parent),
      m_service(service),
      m_package(package)
{
    connect(service, &LumdService::startOnBootChanged, this,
        [this](const QString &name, bool isAllowed) {
            if (name == m_package)
                setStartOnBootKnown(isAllowed);
        });
    connect(service, &LumdService::requestQueued, this,
        [this](const QString &kind, const QString &what) {
            if (kind == QLatin1String("remove") && what == m_package)
                setRemoval(Queued);
        });
    connect(service, &LumdService::removeFinished, this, [this](const QString &name, bool isDone) {
        if (name != m_package)
            return;
        setRemoval(isDone ? Removing : Installed);
        if (!isDone)
            setRemark(qtTrId("lumd-apps-remove-failed"), true);
    });
}

void App::setLaunchers(const QVector<Launcher> &launchers)
{
    QVector<Launcher> shown = launchers;
    std::stable_partition(
        shown.begin(), shown.end(), [](const Launcher &launcher) { return !launcher.isHidden; });
    const Launcher &first = shown.first();
    m_name = shownText(first.name);
    if (m_name.trimmed().isEmpty())
        m_name = shownPackage();
    m_version = shownText(first.version);
    m_icon = first.icon.startsWith(QLatin1Char('/')) ? QUrl::fromLocalFile(first.icon) : QUrl();
    QStringList others;
    for (auto it = shown.cbegin() + 1; it != shown.cend(); ++it)
        others.append(shownText(it->name));
    m_otherLaunchers = others.join(QStringLiteral(", "));
    Q_EMIT changed();
}

void App::setSizes(qint64 code, qint64 data, qint64 cache)
{
    // -1 says that the runtime could not be asked, three zeros that it is down.
    m_knowsSizes = code >= 0 && (code != 0 || data != 0 || cache != 0);
    const qint64 nothing = 0;
    m_codeSize = double(std::max(code, nothing));
    m_dataSize = double(std::max(data, nothing));
    m_cacheSize = double(std::max(cache, nothing));
    Q_EMIT sizesChanged();
}

void App::forgetSizes()
{
    setSizes(-1, 0, 0);
    m_knowsStartOnBoot = false;
    Q_EMIT startOnBootChanged();
}

QString App::shownPackage() const
{
    return shownText(m_package);
}

QString App::codeText() const
{
    return shownBytes(qint64(m_codeSize));
}

QString App::dataText() const
{
    return shownBytes(qint64(m_dataSize));
}

QString App::cacheText() const
{
    return shownBytes(qint64(m_cacheSize));
}

QString App::sizeText() const
{
    return m_knowsSizes ? shownBytes(qint64(m_codeSize + m_dataSize + m_cacheSize)) : QString();
}

void App::askForSizes()
{
    Q_EMIT sizesAskedFor();
}

void App::askForStartOnBoot()
{
    m_service->call(QStringLiteral("getAppStartOnBootup"), {m_package}, this,
        [this](const QDBusMessage &reply) {
            if (reply.type() == QDBusMessage::ReplyMessage)
                setStartOnBootKnown(reply.arguments().value(0).toBool());
        });
}

void App::launch()
{
    request(QStringLiteral("launchApp"), qtTrId("lumd-apps-launched"));
}

void App::stop()
{
    request(QStringLiteral("forceStopApp"), qtTrId("lumd-apps-stopped"));
}

void App::setStartOnBoot(bool isWanted)
{
    m_service->call(QStringLiteral("setAppStartOnBootup"), {m_package, isWanted}, this,
        [this](const QDBusMessage &) { askForStartOnBoot(); });
}

void App::clearCache()
{
    request(QStringLiteral("deleteAppCacheFiles"), qtTrId("lumd-apps-cache-cleared"));
    Q_EMIT spaceChanged();
}

void App::clearData()
{
    request(QStringLiteral("clearAppUserData"), qtTrId("lumd-apps-data-cleared"));
    Q_EMIT spaceChanged();
}

void App::openSettings()
{
    request(QStringLiteral("openAppSettings"), qtTrId("lumd-apps-settings-opened"));
}

void App::remove()
{
    setRemoval(Removing);
    setRemark({}, false);
    m_service->call(QStringLiteral("removeFile"), {m_package}, this,
        [this](const QDBusMessage &reply) { onRemoveAnswered(reply); });
}

void App::clearRemark()
{
    setRemark({}, false);
}

void App::request(const QString &method, const QString &doneRemark)
{
    m_service->call(method, {m_package}, this, [this, doneRemark](const QDBusMessage &reply) {
        const bool isError = reply.type() == QDBusMessage::ErrorMessage;
        setRemark(isError ? qtTrId("lumd-apps-request-failed") : doneRemark, isError);
    });
}

void App::onRemoveAnswered(const QDBusMessage &reply)
{
    const bool isError = reply.type() == QDBusMessage::ErrorMessage;
    if (!isError && reply.arguments().value(0).toBool())
        return;
    setRemoval(Installed);
    setRemark(
        isError ? qtTrId("lumd-apps-request-failed") : qtTrId("lumd-apps-remove-refused"), true);
}

void App::setRemoval(Removal removal)
{
    if (removal == m_removal)
        return;
    m_removal = removal;
    Q_EMIT removalChanged();
}

void App::setRemark(const QString &remark, bool isProblem)
{
    m_remark = remark;
    m_isProblem = isProblem;
    Q_EMIT remarkChanged();
}

void App::setStartOnBootKnown(bool isAllowed)
{
    m_knowsStartOnBoot = true;
    m_startOnBoot = isAllowed;
    Q_EMIT startOnBootChanged();
}
