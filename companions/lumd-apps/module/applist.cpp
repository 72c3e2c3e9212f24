// SPDX-License-Identifier: BSD-3-Clause
#include "companions/lumd-apps/applist.h"

#include "companions/lumd-apps/lumdservice.h"
#include "companions/lumd-apps/plaintext.h"

namespace {

// Announcements come in hundreds when the runtime comes up.
constexpr int collectingTime = 200; // milliseconds

} // namespace

AppList::AppList(LumdService *service, QObject *parent)
    : QAbstractListModel(parent), m_service(service)
{
    m_readSoon.setSingleShot(true);
    m_readSoon.setInterval(collectingTime);
    connect(&m_readSoon, &QTimer::timeout, this, &AppList::read);
    const auto readSoon = qOverload<>(&QTimer::start);
    const LumdClient *const client = &service->client();
    connect(client, &LumdClient::launcherChanged, &m_readSoon, readSoon);
    connect(client, &LumdClient::launcherGone, &m_readSoon, readSoon);
    connect(client, &LumdClient::packageRemoved, &m_readSoon, readSoon);
    connect(client, &LumdClient::installFinished, this, &AppList::measure);
    connect(client, &LumdClient::packageRemoved, this, &AppList::measure);
    connect(service, &LumdService::presenceChanged, this, &AppList::onPresence);
    connect(service, &LumdService::stateChanged, this, &AppList::onState);
}

App *AppList::find(const QString &package) const
{
    for (App *const app : m_apps) {
        if (app->package() == package)
            return app;
    }
    return nullptr;
}

int AppList::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_apps.size();
}

QVariant AppList::data(const QModelIndex &index, int role) const
{
    App *const app = m_apps.value(index.row());
    if (app == nullptr)
        return {};
    switch (role) {
    case AppRole:
        return QVariant::fromValue(app);
    case SearchRole:
        return QString(app->name() + QLatin1Char('\n') + app->package());
    case NameRole:
        return app->name();
    default:
        return {};
    }
}

QHash<int, QByteArray> AppList::roleNames() const
{
    return {{AppRole, "app"}, {SearchRole, "search"}, {NameRole, "name"}};
}

void AppList::onPresence()
{
    if (m_service->presence() == LumdService::Presence::Present) {
        read();
        measure();
        return;
    }
    clear();
    setRead(false);
    m_totalText.clear();
    Q_EMIT totalChanged();
}

void AppList::onState()
{
    const bool isReady = m_service->isRuntimeReady();
    if (isReady == m_wasReady)
        return;
    m_wasReady = isReady;
    // Another runtime, other sizes; a runtime that is down tells none.
    for (App *const app : qAsConst(m_apps))
        app->forgetSizes();
}

void AppList::read()
{
    using Apps = QVector<AndroidApp>;
    m_service->client().listApps(m_service->counted<Apps>(this, [this](const Answer<Apps> &answer) {
        if (answer.error || m_service->presence() != LumdService::Presence::Present)
            return;
        take(answer.value);
        setRead(true);
    }));
}

void AppList::take(const QVector<AndroidApp> &apps)
{
    QHash<QString, AndroidApp> found;
    for (const AndroidApp &app : apps)
        found.insert(app.package, app);
    for (int row = m_apps.size() - 1; row >= 0; --row) {
        App *const app = m_apps.at(row);
        const auto it = found.constFind(app->package());
        if (it != found.constEnd()) {
            app->update(*it);
            found.erase(it);
            Q_EMIT dataChanged(index(row), index(row));
            continue;
        }
        beginRemoveRows({}, row, row);
        m_apps.removeAt(row);
        endRemoveRows();
        app->deleteLater();
    }
    add(QVector<AndroidApp>(found.cbegin(), found.cend()));
    Q_EMIT countChanged();
}

void AppList::add(const QVector<AndroidApp> &apps)
{
    QVector<App *> added;
    for (const AndroidApp &found : apps) {
        auto *const app = new App(found, m_service, this);
        connect(app, &App::sizesAskedFor, this, [this, app] { queueSizes(app); });
        connect(app, &App::spaceChanged, this, [this, app] {
            queueSizes(app);
            measure();
        });
        added.append(app);
    }
    if (added.isEmpty())
        return;
    beginInsertRows({}, m_apps.size(), m_apps.size() + added.size() - 1);
    m_apps += added;
    endInsertRows();
}

void AppList::clear()
{
    beginResetModel();
    for (App *const app : qAsConst(m_apps))
        app->deleteLater();
    m_apps.clear();
    endResetModel();
    Q_EMIT countChanged();
}

void AppList::setRead(bool isRead)
{
    m_isRead = isRead;
    Q_EMIT isReadChanged();
}

void AppList::measure()
{
    if (m_isMeasuring || m_service->presence() != LumdService::Presence::Present)
        return;
    m_isMeasuring = true;
    // Not counted: it takes its time by design.
    m_service->client().fetchDataUsage([this](const Answer<quint64> &answer) {
        m_isMeasuring = false;
        onTotal(answer);
    });
}

void AppList::onTotal(const Answer<quint64> &answer)
{
    // lumd answers 0 when it cannot tell.
    const bool isKnown = !answer.error && answer.value > 0;
    m_totalText =
        isKnown ? qtTrId("lumd-apps-total").arg(shownBytes(qint64(answer.value))) : QString();
    Q_EMIT totalChanged();
}

void AppList::queueSizes(App *app)
{
    if (!m_sizeQueue.contains(app))
        m_sizeQueue.append(app);
    askNextSizes();
}

void AppList::askNextSizes()
{
    // One at a time: lumd serves calls in order, and what the user does must not wait for 500.
    while (!m_isAskingSizes && !m_sizeQueue.isEmpty()) {
        const QPointer<App> app = m_sizeQueue.takeFirst();
        if (!app)
            continue;
        m_isAskingSizes = true;
        m_service->client().fetchSize(app->package(),
            m_service->counted<AppSize>(this, [this, app](const Answer<AppSize> &answer) {
                m_isAskingSizes = false;
                if (app && !answer.error)
                    app->setSizes(answer.value);
                askNextSizes();
            }));
    }
}
