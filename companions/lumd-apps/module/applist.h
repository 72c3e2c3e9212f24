// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "companions/lumd-apps/app.h"

#include <QAbstractListModel>
#include <QPointer>
#include <QTimer>
#include <QVector>

class LumdService;

/// The Android apps, one row each, in no order; AppOrder sorts them. It follows lumd: read anew
/// when a launcher changes, at most once at a time.
class AppList : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(bool isRead READ isRead NOTIFY isReadChanged)
    Q_PROPERTY(QString totalText READ totalText NOTIFY totalChanged)

public:
    enum Role {
        AppRole = Qt::UserRole, ///< the App; it belongs to this list
        SearchRole, ///< name and package, to be searched
        NameRole, ///< for sorting
    };

    explicit AppList(LumdService *service, QObject *parent = nullptr);

    int count() const { return m_apps.size(); }
    /// lumd has told of its apps since it is there.
    bool isRead() const { return m_isRead; }
    /// What the data of all apps take up, in words; empty while that is not known.
    QString totalText() const { return m_totalText; }
    /// The App of that package, or null.
    Q_INVOKABLE App *find(const QString &package) const;
    /// Measures the total anew.
    Q_INVOKABLE void measure();

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();
    void isReadChanged();
    void totalChanged();

private:
    void onPresence();
    void onState();
    void read();
    void take(const QVector<AndroidApp> &apps);
    void add(const QVector<AndroidApp> &apps);
    void clear();
    void setRead(bool isRead);
    void onTotal(const Answer<quint64> &answer);
    void queueSizes(App *app);
    void askNextSizes();

    LumdService *m_service;
    QVector<App *> m_apps;
    QTimer m_readSoon;
    bool m_isRead = false;
    bool m_wasReady = false;
    bool m_isMeasuring = false;
    QString m_totalText;
    QVector<QPointer<App>> m_sizeQueue;
    bool m_isAskingSizes = false;
};
