// SPDX-License-Identifier: BSD-3-Clause
#include "companions/lumd-apps/apporder.h"

#include "companions/lumd-apps/applist.h"

AppOrder::AppOrder(QAbstractItemModel *apps, QObject *parent) : QSortFilterProxyModel(parent)
{
    setSourceModel(apps);
    setSortRole(AppList::NameRole);
    setSortLocaleAware(true);
    setSortCaseSensitivity(Qt::CaseInsensitive);
    setFilterRole(AppList::SearchRole);
    setFilterCaseSensitivity(Qt::CaseInsensitive);
    setDynamicSortFilter(true);
    sort(0);
    connect(this, &QAbstractItemModel::rowsInserted, this, &AppOrder::countChanged);
    connect(this, &QAbstractItemModel::rowsRemoved, this, &AppOrder::countChanged);
    connect(this, &QAbstractItemModel::modelReset, this, &AppOrder::countChanged);
}

void AppOrder::setSearched(const QString &text)
{
    if (text == m_searched)
        return;
    m_searched = text;
    setFilterFixedString(text);
    Q_EMIT searchedChanged();
    Q_EMIT countChanged();
}
