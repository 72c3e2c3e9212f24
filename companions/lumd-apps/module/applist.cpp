// SPDX-License-Identifier: BSD-3-Clause
#include "companions/lumd-apps/applist.h"

#include "companions/lumd-apps/lumdservice.h"
#include "companions/lumd-apps/plaintext.h"

#include <QDBusArgument>

namespace {

// Announcements come in hundreds when the runtime comes up.
constexpr int collectingTime = 200; // milliseconds

QVector<App::Launcher> launchersIn(const QDBusArgument &argument)
{
    QVector<App::Launcher> launchers;
    argument.beginArray();
    while (!argument.atEnd()) {
        QString desktopFile;
        App::Launcher launcher;
        argument.beginStructure();
        argument >> desktopFile >> launcher.name >> launcher.icon >> launcher.version
            >> launcher.isHidden;
        argument.endStructure();
        launchers.append(launcher);
    }
    argument.endArray();
    return launchers;
}

QHash<QString, QVector<App::Launcher>> packagesIn(const QDBusArgument &argument)
{
    QHash<QString, QVector<App::Launcher>> packages;
    argument.beginMap();
    while (!argument.atEnd()) {
        QString package;
        argument.beginMapEntry();
        argument >> package;
        packages.insert(package, launchersIn(argument));
        argument.endMapEntry();
    }
    argument.endMap();
    return packages;
}

} // namespace

AppList::AppList(LumdService *service, QObject *parent)
    : QAbstractListModel(parent),
      m_service(service)
{
    m_readSoon.setSingleShot(true);
    m_readSoon.setInterval(collectingTime);
    connect(&m_readSoon, &QTimer::timeout, this, &AppList::read);
    connect(service, &LumdService::launchersChanged, &m_readSoon, qOverload<>(&QTimer::start));
    connect(service, &LumdService::presenceChanged, this, &AppList::onPresence);
    connect(service, &LumdService::propertiesChanged, this, &AppList::onProperties);
    connect(service, &LumdService::installFinished, this, &AppList::measure);
    connect(service, &LumdService::packageRemoved, this, &AppList::measure);
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

void AppList::onProperties()
{
    const bool isReady = m_service->properties().value(QStringLiteral("Ready")).toBool();
    if (isReady == m_wasReady)
        return;
    m_wasReady = isReady;
    // Another runtime, other sizes; a runtime that is down tells none.
    for (App *const app : qAsConst(m_apps))
        app->forgetSizes();
}

void AppList::read()
{
    if (m_isReading) {
        m_readSoon.start();
        return;
    }
    m_isReading = true;
    m_service->callMonitor(QStringLiteral("ListApps"), this, [this](const QDBusMessage &reply) {
        m_isReading = false;
        onRead(reply);
    });
}

void AppList::onRead(const QDBusMessage &reply)
{
    if (reply.signature() != QLatin1String("a{sa(ssssb)}")
        || m_service->presence() != LumdService::Presence::Present)
        return;
    take(packagesIn(reply.arguments().value(0).value<QDBusArgument>()));
    setRead(true);
}

void AppList::take(const Launchers &launchers)
{
    for (int row = m_apps.size() - 1; row >= 0; --row) {
        App *const app = m_apps.at(row);
        const QVector<App::Launcher> found = launchers.value(app->package());
        if (!found.isEmpty()) {
            app->setLaunchers(found);
            Q_EMIT dataChanged(index(row), index(row));
            continue;
        }
        beginRemoveRows({}, row, row);
        m_apps.removeAt(row);
        endRemoveRows();
        app->deleteLater();
    }
    add(launchers);
    Q_EMIT countChanged();
}

void AppList::add(const Launchers &launchers)
{
    QSet<QString> known;
    for (const App *const app : qAsConst(m_apps))
        known.insert(app->package());
    QVector<App *> added;
    for (auto it = launchers.cbegin(); it != launchers.cend(); ++it) {
        if (it->isEmpty() || known.contains(it.key()))
            continue;
        auto *const app = new App(it.key(), m_service, this);
        app->setLaunchers(*it);
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
    m_service->callPatiently(
        QStringLiteral("getAndroidAppDataUsage"), this, [this](const QDBusMessage &reply) {
            m_isMeasuring = false;
            onTotal(reply);
        });
}

void AppList::onTotal(const QDBusMessage &reply)
{
    const qint64 bytes = reply.arguments().value(0).toLongLong();
    // lumd answers 0 when it cannot tell.
    const bool isKnown = reply.type() == QDBusMessage::ReplyMessage && bytes > 0;
    m_totalText = isKnown ? qtTrId("lumd-apps-total").arg(shownBytes(bytes)) : QString();
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
        m_service->call(QStringLiteral("getAppSize"), {app->package()}, this,
            [this, app](const QDBusMessage &reply) {
                m_isAskingSizes = false;
                if (app && reply.signature() == QLatin1String("(xxx)")) {
                    const auto sizes = reply.arguments().value(0).value<QDBusArgument>();
                    qint64 code = 0;
                    qint64 data = 0;
                    qint64 cache = 0;
                    sizes.beginStructure();
                    sizes >> code >> data >> cache;
                    sizes.endStructure();
                    app->setSizes(code, data, cache);
                }
                askNextSizes();
            });
    }
}
