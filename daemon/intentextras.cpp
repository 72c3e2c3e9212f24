// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/intentextras.h"

#include <QDBusArgument>
#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>

namespace {

template <typename Type> bool is(const QVariant &value)
{
    return value.userType() == qMetaTypeId<Type>();
}

/// What variants in variants hold in the end.
QVariant innermost(QVariant value)
{
    while (is<QDBusVariant>(value))
        value = value.value<QDBusVariant>().variant();
    return value;
}

} // namespace

QVariantMap withoutDescriptors(const QVariantMap &extras)
{
    QVariantMap kept;
    for (auto extra = extras.constBegin(); extra != extras.constEnd(); ++extra) {
        const QVariant value = innermost(*extra);
        if (is<QDBusUnixFileDescriptor>(value))
            continue;
        if (!is<QDBusArgument>(value))
            kept.insert(extra.key(), *extra);
        else if (is<QDBusVariant>(*extra))
            kept.insert(extra.key(), QVariant::fromValue(QDBusVariant()));
        else
            kept.insert(extra.key(), QVariant::fromValue(QDBusArgument()));
    }
    return kept;
}
