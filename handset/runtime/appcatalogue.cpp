// SPDX-License-Identifier: BSD-3-Clause
#include "appcatalogue.h"

#include "nullabletext.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>
#include <QSet>

#include <algorithm>
#include <utility>

namespace {

constexpr int FirstApplicationUid = 10000; // android.os.Process

/// The text of a key, null where the key is missing or JSON's null.
QString text(const QJsonObject &json, const char *key)
{
    const QJsonValue value = json.value(QLatin1String(key));
    return value.isString() ? QLatin1String("") + value.toString() : QString();
}

qint64 bytes(const QJsonObject &json, const char *key)
{
    return qint64(json.value(QLatin1String(key)).toDouble());
}

bool readIcon(const QJsonObject &launcher, const QString &folder, QByteArray *icon, QString *error)
{
    const QString encoded = text(launcher, "iconBase64");
    if (!encoded.isNull()) {
        *icon = QByteArrayLiteral("") + QByteArray::fromBase64(encoded.toLatin1());
        return true;
    }
    const QString name = text(launcher, "icon");
    if (name.isNull())
        return true;
    QFile file(QDir(folder).absoluteFilePath(name));
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("%1: %2").arg(file.fileName(), file.errorString());
        return false;
    }
    *icon = file.readAll();
    return true;
}

} // namespace

AndroidApp AndroidApp::fromJson(const QJsonObject &json, const QString &iconFolder, QString *error)
{
    AndroidApp app;
    app.version = text(json, "version");
    const QJsonArray launchers = json.value(QLatin1String("launchers")).toArray();
    for (const QJsonValue &value : launchers) {
        const QJsonObject entry = value.toObject();
        Launcher launcher{text(entry, "class"), text(entry, "caption"), {}};
        if (!readIcon(entry, iconFolder, &launcher.icon, error))
            return {};
        app.launchers.append(launcher);
    }
    app.uid = json.value(QLatin1String("uid")).toInt();
    app.codeBytes = bytes(json, "codeBytes");
    app.dataBytes = bytes(json, "dataBytes");
    app.cacheBytes = bytes(json, "cacheBytes");
    app.powerSaveWhitelisted = json.value(QLatin1String("powerSaveWhitelisted")).toBool();
    app.package = text(json, "package");
    if (app.package.isEmpty() || app.package.contains(QLatin1Char('/'))) {
        *error = QStringLiteral("\"%1\" is no package name").arg(app.package);
        return {};
    }
    return app;
}

QJsonObject AndroidApp::toJson() const
{
    QJsonArray entries;
    for (const Launcher &launcher : launchers) {
        QJsonObject entry{{QStringLiteral("class"), nullableText(launcher.className)},
            {QStringLiteral("caption"), nullableText(launcher.caption)}};
        if (!launcher.icon.isNull()) {
            entry.insert(
                QStringLiteral("iconBase64"), QString::fromLatin1(launcher.icon.toBase64()));
        }
        entries.append(entry);
    }
    return {{QStringLiteral("package"), package},
        {QStringLiteral("version"), nullableText(version)}, {QStringLiteral("uid"), uid},
        {QStringLiteral("launchers"), entries}, {QStringLiteral("codeBytes"), codeBytes},
        {QStringLiteral("dataBytes"), dataBytes}, {QStringLiteral("cacheBytes"), cacheBytes},
        {QStringLiteral("powerSaveWhitelisted"), powerSaveWhitelisted}};
}

AppCatalogue::AppCatalogue(QString folder)
    : m_folder(std::move(folder)), m_firstNewUid(FirstApplicationUid)
{
}

QStringList AppCatalogue::load()
{
    m_apps.clear();
    QStringList problems;
    const QFileInfoList files =
        QDir(m_folder).entryInfoList({QStringLiteral("*.json")}, QDir::Files, QDir::Name);
    for (const QFileInfo &info : files) {
        QFile file(info.filePath());
        QString error;
        AndroidApp app;
        if (!file.open(QIODevice::ReadOnly)) {
            error = file.errorString();
        } else {
            QJsonParseError parseError;
            const QJsonObject json = QJsonDocument::fromJson(file.readAll(), &parseError).object();
            if (parseError.error != QJsonParseError::NoError)
                error = parseError.errorString();
            else
                app = AndroidApp::fromJson(json, m_folder, &error);
        }
        if (error.isEmpty())
            m_apps.insert(app.package, app);
        else
            problems.append(QStringLiteral("%1: %2").arg(info.filePath(), error));
    }
    const QList<AndroidApp> found = m_apps.values();
    for (const AndroidApp &app : found) {
        if (app.uid == 0 && !add(app))
            problems.append(QStringLiteral("%1: could not be written").arg(fileOf(app.package)));
    }
    return problems;
}

int AppCatalogue::uid(const QString &package) const
{
    return contains(package) ? m_apps.value(package).uid : -1;
}

int AppCatalogue::newUid() const
{
    QSet<int> taken;
    for (const AndroidApp &app : m_apps)
        taken.insert(app.uid);
    int uid = m_firstNewUid;
    while (taken.contains(uid))
        ++uid;
    return uid;
}

void AppCatalogue::change(const QString &package, const std::function<void(AndroidApp &)> &change)
{
    if (!contains(package))
        return;
    change(m_apps[package]);
    add(m_apps.value(package));
}

bool AppCatalogue::add(AndroidApp app)
{
    const int known = m_apps.value(app.package).uid;
    if (known != 0)
        app.uid = known;
    else if (app.uid == 0)
        app.uid = newUid();
    m_apps.insert(app.package, app);
    QSaveFile file(fileOf(app.package));
    return QDir().mkpath(m_folder) && file.open(QIODevice::WriteOnly)
        && file.write(QJsonDocument(app.toJson()).toJson()) >= 0 && file.commit();
}

bool AppCatalogue::remove(const QString &package)
{
    m_firstNewUid = std::max(m_firstNewUid, m_apps.take(package).uid + 1);
    const QString path = fileOf(package);
    return !QFile::exists(path) || QFile::remove(path);
}

QString AppCatalogue::fileOf(const QString &package) const
{
    return QDir(m_folder).filePath(package + QLatin1String(".json"));
}
