// SPDX-License-Identifier: BSD-3-Clause
#include "companions/lumd-apps/app.h"

#include "companions/lumd-apps/lumdservice.h"
#include "companions/lumd-apps/plaintext.h"

#include <algorithm>

App::App(const AndroidApp &app, LumdService *service, QObject *parent)
    : QObject(parent), m_service(service), m_package(app.package)
{
    const LumdClient *const client = &service->client();
    connect(client, &LumdClient::startOnBootChanged, this,
        [this](const QString &package, bool isAllowed) {
            if (package == m_package)
                setStartOnBootKnown(isAllowed);
        });
    connect(
        client, &LumdClient::requestQueued, this, [this](const QString &kind, const QString &what) {
            if (kind == QLatin1String("remove") && what == m_package)
                setRemoval(Queued);
        });
    connect(client, &LumdClient::removeFinished, this, [this](const QString &package, bool isDone) {
        if (package != m_package)
            return;
        setRemoval(isDone ? Removing : Installed);
        if (!isDone)
            setRemark(qtTrId("lumd-apps-remove-failed"), true);
    });
    connect(service, &LumdService::stateChanged, this, &App::onState);
    update(app);
}

void App::update(const AndroidApp &app)
{
    QVector<AndroidLauncher> launchers = app.launchers;
    std::stable_partition(launchers.begin(), launchers.end(),
        [](const AndroidLauncher &launcher) { return !launcher.isHidden; });
    const AndroidLauncher first = launchers.value(0);
    m_name = shownText(first.name);
    if (m_name.trimmed().isEmpty())
        m_name = shownPackage();
    m_version = shownText(first.version);
    m_icon = first.icon.startsWith(QLatin1Char('/')) ? QUrl::fromLocalFile(first.icon) : QUrl();
    QStringList others;
    const QVector<AndroidLauncher> rest = launchers.mid(1);
    for (const AndroidLauncher &launcher : rest)
        others.append(shownText(launcher.name));
    m_otherLaunchers = others.join(QStringLiteral(", "));
    Q_EMIT changed();
}

void App::setSizes(const AppSize &size)
{
    m_knowsSizes = size.isKnown();
    const qint64 nothing = 0;
    m_codeSize = double(std::max(size.code, nothing));
    m_dataSize = double(std::max(size.data, nothing));
    m_cacheSize = double(std::max(size.cache, nothing));
    Q_EMIT sizesChanged();
}

void App::forgetSizes()
{
    setSizes({-1, 0, 0});
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
    m_service->client().fetchStartOnBoot(
        m_package, m_service->counted<bool>(this, [this](const Answer<bool> &answer) {
            if (!answer.error)
                setStartOnBootKnown(answer.value);
        }));
}

void App::launch()
{
    request(&LumdClient::launchApp, qtTrId("lumd-apps-launched"));
}

void App::stop()
{
    request(&LumdClient::stopApp, qtTrId("lumd-apps-stopped"));
}

void App::setStartOnBoot(bool isWanted)
{
    m_service->client().setStartOnBoot(m_package, isWanted,
        m_service->counted<Nothing>(this, [this](const auto &) { askForStartOnBoot(); }));
}

void App::clearCache()
{
    request(&LumdClient::clearCache, qtTrId("lumd-apps-cache-cleared"));
    Q_EMIT spaceChanged();
}

void App::clearData()
{
    request(&LumdClient::clearData, qtTrId("lumd-apps-data-cleared"));
    Q_EMIT spaceChanged();
}

void App::openSettings()
{
    request(&LumdClient::openSettings, qtTrId("lumd-apps-settings-opened"));
}

void App::remove()
{
    setRemoval(Removing);
    setRemark({}, false);
    m_service->client().removeApp(m_package,
        m_service->counted<bool>(
            this, [this](const Answer<bool> &answer) { onRemoveAnswered(answer); }));
}

void App::clearRemark()
{
    setRemark({}, false);
}

void App::request(Operation operation, const QString &doneRemark)
{
    const auto done = [this, doneRemark](const Answer<Nothing> &answer) {
        const bool isError = bool(answer.error);
        setRemark(isError ? qtTrId("lumd-apps-request-failed") : doneRemark, isError);
    };
    (m_service->client().*operation)(m_package, m_service->counted<Nothing>(this, done));
}

void App::onState()
{
    // Nothing is heard of a removal whose runtime went away in the middle.
    if (m_removal == Removing && !m_service->isRuntimeReady())
        setRemoval(Installed);
    else if (m_removal == Queued && m_service->isRuntimeReady())
        setRemoval(Removing);
}

void App::onRemoveAnswered(const Answer<bool> &answer)
{
    if (!answer.error && answer.value)
        return;
    setRemoval(Installed);
    setRemark(
        answer.error ? qtTrId("lumd-apps-request-failed") : qtTrId("lumd-apps-remove-refused"),
        true);
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
