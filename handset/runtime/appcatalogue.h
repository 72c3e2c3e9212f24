// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QVector>

#include <functional>

/// An app that is installed in the simulated Android. Strings may be null, and are
/// announced as Android's null then.
struct AndroidApp
{
    struct Launcher
    {
        QString className;
        QString caption;
        QByteArray icon;
    };
    QString package;
    QString version;
    int uid = 0; ///< its Linux user; 0 while it has none
    QVector<Launcher> launchers;
    qint64 codeBytes = 0;
    qint64 dataBytes = 0; ///< with the cache
    qint64 cacheBytes = 0;
    bool powerSaveWhitelisted = false;

    /// @param error says what is wrong where the result has an empty package.
    static AndroidApp fromJson(const QJsonObject &json, const QString &iconFolder, QString *error);
    /// With the icons inside.
    QJsonObject toJson() const;
};

/// The apps that are installed, each a file PACKAGE.json of one folder.
class AppCatalogue
{
public:
    explicit AppCatalogue(QString folder);

    /// Reads the folder anew. @return what was wrong, a line for each file left out.
    QStringList load();
    /// Sorted by package.
    QList<AndroidApp> apps() const { return m_apps.values(); }
    bool contains(const QString &package) const { return m_apps.contains(package); }
    AndroidApp app(const QString &package) const { return m_apps.value(package); }
    /// The app's Linux user, which it keeps while it is installed; -1 for an app that is not
    /// known.
    int uid(const QString &package) const;
    /// @return whether it is on the disk as well.
    bool add(AndroidApp app);
    bool remove(const QString &package);
    /// Changes an app that is known; of any other nothing is heard again.
    void change(const QString &package, const std::function<void(AndroidApp &)> &change);

private:
    QString fileOf(const QString &package) const;

    /// Settings.newUserIdLPw: the first that is free, behind all that were given back.
    int newUid() const;

    const QString m_folder;
    int m_firstNewUid;
    QMap<QString, AndroidApp> m_apps;
};
