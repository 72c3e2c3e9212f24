// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/caller.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusReply>
#include <QFileInfo>
#include <QVariantMap>

namespace {

constexpr uint root = 0;

} // namespace

std::optional<BusCredentials> BusCredentials::fromReply(const QDBusMessage &reply)
{
    const QVariantMap entries = QDBusReply<QVariantMap>(reply).value();
    const QVariant user = entries.value(QStringLiteral("UnixUserID"));
    if (user.userType() != QMetaType::UInt)
        return std::nullopt;
    BusCredentials credentials;
    credentials.user = user.toUInt();
    const QVariant groups = entries.value(QStringLiteral("UnixGroupIDs"));
    if (groups.isValid())
        credentials.groups = qdbus_cast<QVector<uint>>(groups);
    return credentials;
}

ProcessOwner ProcessOwner::ofProcess(uint processId)
{
    const QFileInfo folder(QStringLiteral("/proc/%1").arg(processId));
    return {folder.ownerId(), folder.groupId(), folder.owner(), folder.group()};
}

bool Caller::isPrivileged() const
{
    if (!credentials || credentials->user != process.user)
        return false;
    if (process.userName == QLatin1String("root"))
        return true;
    const bool isOfGroup = process.groupName == QLatin1String("privileged")
        || process.groupName == QLatin1String("disk");
    return isOfGroup && (!credentials->groups || credentials->groups->contains(process.group));
}

std::optional<FileRights> Caller::fileRights() const
{
    // By number root is root, under whatever name the list of users has it.
    const bool isRoot = credentials && credentials->user == root && process.user == root;
    if (isRoot || isPrivileged())
        return std::nullopt;
    // A process that connected as root has given that up since.
    if (!credentials || credentials->user == root)
        return FileRights::ofNobody();
    return FileRights::ofUser(credentials->user, credentials->groups);
}
