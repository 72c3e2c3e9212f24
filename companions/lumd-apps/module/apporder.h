// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QSortFilterProxyModel>

/// The rows of an AppList by name as the user's language sorts them, those that contain a text.
class AppOrder : public QSortFilterProxyModel
{
    Q_OBJECT
    Q_PROPERTY(QString searched READ searched WRITE setSearched NOTIFY searchedChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    explicit AppOrder(QAbstractItemModel *apps, QObject *parent = nullptr);

    /// Looked for in name and package; empty for all.
    QString searched() const { return m_searched; }
    void setSearched(const QString &text);
    int count() const { return rowCount(); }

Q_SIGNALS:
    void searchedChanged();
    void countChanged();

private:
    QString m_searched;
};
