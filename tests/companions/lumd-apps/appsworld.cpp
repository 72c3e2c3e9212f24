// SPDX-License-Identifier: BSD-3-Clause
#include "appsworld.h"

#include "tests/support/fakegbinder/parcelreader.h"
#include "tests/support/fakegbinder/parcelwriter.h"
#include "tests/support/testnamespace.h"

#include <QAccessible>
#include <QBuffer>
#include <QDBusConnection>
#include <QDir>
#include <QGuiApplication>
#include <QMetaEnum>
#include <QPainter>
#include <QPalette>
#include <QQmlContext>
#include <QQmlEngine>
#include <QScreen>

#include <csignal>

using FakeBinder::ParcelReader;
using FakeBinder::ParcelWriter;
using FakeBinder::Reply;
using FakeBinder::Request;

namespace {

const QString service = QStringLiteral("com.tovra.lumd");
const QString launcherService = QStringLiteral("alien.launcher");

/// Lets nobody but the bus itself send to the owner of a name.
const char *refusal = R"(<busconfig>
  <policy context="mandatory">
    <deny send_destination="NAME"/>
  </policy>
</busconfig>
)";

/// A picture as an app brings it: a coloured field with a letter.
QByteArray iconOf(const QString &package, const QString &caption)
{
    constexpr int side = 96;
    constexpr int fullCircle = 360;
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromHsv(int(qHash(package) % fullCircle), 150, 190));
    painter.drawRoundedRect(image.rect().adjusted(4, 4, -4, -4), 20, 20);
    QFont font;
    font.setPixelSize(side / 2);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(image.rect(), Qt::AlignCenter, caption.left(1));
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

FakeBinder::Call announcement(quint32 code, const QByteArray &payload)
{
    FakeBinder::Call call;
    call.code = code;
    call.interface = QStringLiteral("alien.applications.IAlienNativeLauncherService");
    call.payload = payload;
    return call;
}

FakeBinder::Call result(quint32 code, const char *interface, const QByteArray &payload)
{
    FakeBinder::Call call;
    call.code = code;
    call.interface = QLatin1String("android.content.pm.") + QLatin1String(interface);
    call.payload = payload;
    return call;
}

/// Not QQuickWindow's own: the offscreen platform keeps no image for that.
QImage shot(QQuickWindow *window)
{
    return window->screen()
        ->grabWindow(window->winId())
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

bool contains(QAccessibleInterface *interface, const QString &text)
{
    if (interface == nullptr || interface->state().invisible)
        return false;
    if (interface->text(QAccessible::Name).contains(text))
        return true;
    for (int i = 0; i < interface->childCount(); ++i) {
        if (contains(interface->child(i), text))
            return true;
    }
    return false;
}

} // namespace

AppsWorld::AppsWorld()
{
    const QDir built(QStringLiteral(APPS_CATALOGUES));
    for (const QString &name : built.entryList({QStringLiteral("*.qm")}))
        makeFile(
            QStringLiteral("/usr/share/translations/") + name, fileContents(built.filePath(name)));
    setLanguage(QStringLiteral("en"));
    setTotal(0);
    m_world.systemd.setFollowsRequests(false);
    m_world.android->registerService(
        QStringLiteral("storagestats"), [this](const Request &r) { return answerSizes(r); });
    m_world.android->registerService(
        QStringLiteral("deviceidle"), [this](const Request &r) { return answerAllowList(r); });
    m_module = std::make_unique<AppsModule>();
}

void AppsWorld::qmlEngineAvailable(QQmlEngine *engine)
{
    m_engine = engine;
    engine->rootContext()->setContextProperty(QStringLiteral("world"), this);
    connect(engine, &QQmlEngine::warnings, this, [this](const QList<QQmlError> &warnings) {
        for (const QQmlError &warning : warnings)
            m_complaints.append(warning.toString());
    });
}

bool AppsWorld::start()
{
    return m_world.start();
}

void AppsWorld::refuse(const QString &name)
{
    makeFile(QStringLiteral("/run/dbus/system_bus_socket.policy"),
        QByteArray(refusal).replace("NAME", name.toUtf8()));
    m_world.systemBus.signal(SIGHUP);
}

bool AppsWorld::startRefused()
{
    refuse(service);
    m_world.daemon->start();
    return m_world.daemon->waitForBusName();
}

bool AppsWorld::startOutdated()
{
    m_outdated = std::make_unique<QObject>();
    QDBusConnection bus =
        QDBusConnection::connectToBus(QDBusConnection::SystemBus, QStringLiteral("outdated"));
    return bus.registerObject(QStringLiteral("/com/tovra/lumd"), m_outdated.get())
        && bus.registerService(service);
}

void AppsWorld::killDaemon()
{
    m_world.daemon->kill();
}

void AppsWorld::halt()
{
    m_world.daemon->signal(SIGSTOP);
}

void AppsWorld::goOn()
{
    m_world.daemon->signal(SIGCONT);
}

bool AppsWorld::bringUp()
{
    m_world.android->registerService(QStringLiteral("package"), [this](const Request &request) {
        return request.code == uninstallCode && m_failsRemovals
            ? Reply::failure(-1)
            : Reply::data(ParcelWriter().int32(0).bytes());
    });
    m_world.android->registerService(QStringLiteral("alien"));
    return m_world.see(QStringLiteral("activating")) && m_world.connectToRuntime()
        && m_world.bringUp(QStringLiteral("activity"))
        && m_world.android->waitForPublished(launcherService);
}

bool AppsWorld::see(const QString &state)
{
    return m_world.see(state);
}

bool AppsWorld::takeDown()
{
    for (const char *const name : {"package", "alien", "activity"})
        m_world.android->killService(QLatin1String(name));
    return m_world.see(QStringLiteral("inactive"));
}

void AppsWorld::setUnitFileState(const QString &state)
{
    m_world.systemd.setUnitFileState(state);
}

QStringList AppsWorld::systemdCalls() const
{
    return m_world.systemd.callTexts();
}

bool AppsWorld::announce(const QString &package, const QString &caption, const QString &className,
    const QString &version)
{
    const Launcher launcher{package, className, caption, version, iconOf(package, caption)};
    return m_world.android
        ->transact(launcherService, announcement(launcherAdded, launcher.payload()))
        .delivered;
}

bool AppsWorld::announceMany(int count)
{
    for (int i = 0; i < count; ++i) {
        const Launcher launcher{QStringLiteral("org.many.app%1").arg(i), QStringLiteral(".Main"),
            QStringLiteral("App %1").arg(i, 3, 10, QLatin1Char('0')), QStringLiteral("1"),
            QByteArrayLiteral("no picture")};
        if (!m_world.android
                ->transact(launcherService, announcement(launcherAdded, launcher.payload()))
                .delivered)
            return false;
    }
    return true;
}

bool AppsWorld::announceGone(const QString &package)
{
    return m_world.android
        ->transact(
            launcherService, announcement(packageRemoved, ParcelWriter().string16(package).bytes()))
        .delivered;
}

void AppsWorld::setSizes(const QString &package, double code, double data, double cache)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_sizes.insert(package, {qint64(code), qint64(data + cache), qint64(cache)});
}

void AppsWorld::setTotal(double bytes)
{
    QDir().mkpath(QStringLiteral("/home/.android"));
    TestNamespace::replaceProgram(QStringLiteral("/usr/bin/du"),
        "#!/bin/sh\nprintf '" + QByteArray::number(qint64(bytes)) + "\\tfolder\\n'\n");
}

Reply AppsWorld::answerSizes(const Request &request)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    ParcelReader reader(request.payload);
    reader.string16(); // the volume
    const QVector<qint64> sizes = m_sizes.value(reader.string16(), {0, 0, 0});
    return Reply::data(
        ParcelWriter().int32(0).int32(1).int64(sizes[0]).int64(sizes[1]).int64(sizes[2]).bytes());
}

Reply AppsWorld::answerAllowList(const Request &request)
{
    // android.os.IDeviceIdleController on Android level 27
    constexpr quint32 allow = 1;
    constexpr quint32 isAllowed = 13;
    const std::lock_guard<std::mutex> lock(m_mutex);
    const QString name = ParcelReader(request.payload).string16();
    if (request.code == isAllowed)
        return Reply::data(
            ParcelWriter().int32(0).int32(m_allowed.count(name) > 0 ? 1 : 0).bytes());
    if (request.code == allow)
        m_allowed.insert(name);
    else
        m_allowed.erase(name);
    return Reply::data(ParcelWriter().int32(0).bytes());
}

int AppsWorld::requests(const QString &serviceName, int code, const QString &name)
{
    const auto found = m_world.requests(serviceName, quint32(code));
    return name.isEmpty() ? found.size() : int(names(found).count(name));
}

bool AppsWorld::finishInstall(int resultCode, const QString &package, const QString &message)
{
    const auto requested = m_world.requests(QStringLiteral("package"), installCode);
    if (requested.isEmpty())
        return false;
    const QByteArray payload =
        ParcelWriter().string16(package).int32(resultCode).string16(message).int32(0).bytes();
    return m_world.android
        ->transactObject(
            requested.last().localObjects.value(0), result(2, "IPackageInstallObserver2", payload))
        .delivered;
}

QUrl AppsWorld::makeApk(const QString &name)
{
    const QString path = QStringLiteral("/run/apps/") + name;
    makeFile(path, "apk");
    return QUrl::fromLocalFile(path);
}

bool AppsWorld::installElsewhere(const QUrl &apk)
{
    const QDBusMessage reply =
        DaemonFixture::call(QStringLiteral("installFile"), {apk.toLocalFile()});
    return reply.arguments().value(0).toBool();
}

void AppsWorld::forbidChanges()
{
    // Who goes by the name of root is privileged.
    TestNamespace::replaceProgram(QStringLiteral("/etc/passwd"), "nemo:x:0:0::/:/bin/sh\n");
}

void AppsWorld::setDark(bool isDark)
{
    const auto pick = [isDark](const char *light, const char *dark) {
        return QColor(QLatin1String(isDark ? dark : light));
    };
    QPalette palette(pick("#eff0f1", "#2a2e32"), pick("#eff0f1", "#2a2e32"));
    const QColor text = pick("#232629", "#fcfcfc");
    palette.setColor(QPalette::Base, pick("#fcfcfc", "#1b1e20"));
    palette.setColor(QPalette::AlternateBase, pick("#f3f4f5", "#232629"));
    for (const QPalette::ColorRole role :
        {QPalette::Text, QPalette::WindowText, QPalette::ButtonText, QPalette::ToolTipText})
        palette.setColor(role, text);
    for (const QPalette::ColorRole role :
        {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, pick("#7f868b", "#8a9094"));
    palette.setColor(QPalette::Highlight, pick("#2a76b5", "#2f81c4"));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    QGuiApplication::setPalette(palette);
}

void AppsWorld::setLanguage(const QString &language)
{
    QLocale::setDefault(QLocale(language));
    m_texts.reset();
    m_texts = std::make_unique<Window::Texts>();
    if (m_engine != nullptr)
        m_engine->retranslate();
}

QString AppsWorld::accessible(QQuickItem *item) const
{
    // Controls that exist learn of a screen reader; the offscreen platform keeps none in mind.
    QAccessible::setActive(true);
    QAccessibleInterface *const interface = QAccessible::queryAccessibleInterface(item);
    if (interface == nullptr)
        return {};
    const QMetaEnum roles = QMetaEnum::fromType<QAccessible::Role>();
    return QLatin1String(roles.valueToKey(interface->role())) + QLatin1Char('|')
        + interface->text(QAccessible::Name);
}

QString AppsWorld::accessibleDescription(QQuickItem *item) const
{
    QAccessibleInterface *const interface = QAccessible::queryAccessibleInterface(item);
    return interface == nullptr ? QString() : interface->text(QAccessible::Description);
}

bool AppsWorld::isReadOut(QQuickWindow *window, const QString &text) const
{
    QAccessible::setActive(true);
    return contains(QAccessible::queryAccessibleInterface(window), text);
}

QStringList AppsWorld::complaints()
{
    return std::exchange(m_complaints, {});
}

int AppsWorld::draw(QQuickWindow *window, const QString &name) const
{
    const QImage image = shot(window);
    const QDir pictures(qEnvironmentVariable("LUMD_PICTURES", QStringLiteral(PICTURES)));
    if (!pictures.mkpath(QStringLiteral(".")) || !image.save(pictures.filePath(name)))
        return 0;
    std::set<QRgb> colours;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            colours.insert(image.pixel(x, y));
    }
    return int(colours.size());
}

QString AppsWorld::digest(QQuickWindow *window) const
{
    const QImage image = shot(window);
    return QString::number(qHash(QByteArray::fromRawData(
        reinterpret_cast<const char *>(image.constBits()), int(image.sizeInBytes()))));
}
