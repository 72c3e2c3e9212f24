// SPDX-License-Identifier: BSD-3-Clause
#include "daemon/filerights.h"

#include <array>
#include <limits>

#include <grp.h>
#include <linux/capability.h>
#include <pwd.h>
#include <sys/fsuid.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// The kernel's own number for users and groups that it cannot tell.
constexpr uid_t nobody = 65534;

// setgroups() of the C library changes all threads of the process, the system call this one.
#ifdef SYS_setgroups32
constexpr long setGroupsCall = SYS_setgroups32;
#else
constexpr long setGroupsCall = SYS_setgroups;
#endif

// An id that is none changes nothing, and tells the one in force.
uid_t fileUser()
{
    return static_cast<uid_t>(setfsuid(static_cast<uid_t>(-1)));
}

gid_t fileGroup()
{
    return static_cast<gid_t>(setfsgid(static_cast<gid_t>(-1)));
}

std::vector<gid_t> ownGroups()
{
    std::vector<gid_t> groups(static_cast<std::size_t>(qMax(0, getgroups(0, nullptr))));
    if (getgroups(static_cast<int>(groups.size()), groups.data()) < 0)
        qFatal("Cannot read the groups of the process");
    return groups;
}

bool setOwnGroups(const std::vector<gid_t> &groups)
{
    return syscall(setGroupsCall, groups.size(), groups.data()) == 0;
}

using CapabilitySets = std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3>;
constexpr int wordBits = std::numeric_limits<__u32>::digits;

CapabilitySets capabilitySets()
{
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    CapabilitySets sets = {};
    if (syscall(SYS_capget, &header, sets.data()) != 0)
        qFatal("Cannot read the capabilities of the process");
    return sets;
}

quint64 effectiveCapabilities()
{
    const CapabilitySets sets = capabilitySets();
    return sets[0].effective | quint64(sets[1].effective) << wordBits;
}

bool setEffectiveCapabilities(quint64 capabilities)
{
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    CapabilitySets sets = capabilitySets();
    sets[0].effective = static_cast<quint32>(capabilities);
    sets[1].effective = static_cast<quint32>(capabilities >> wordBits);
    return syscall(SYS_capset, &header, sets.data()) == 0;
}

std::vector<gid_t> listedGroups(const passwd &user)
{
    int count = 0;
    getgrouplist(user.pw_name, user.pw_gid, nullptr, &count);
    std::vector<gid_t> groups(static_cast<std::size_t>(count));
    // The list may have become longer in between.
    if (getgrouplist(user.pw_name, user.pw_gid, groups.data(), &count) == -1)
        return {};
    groups.resize(static_cast<std::size_t>(count));
    return groups;
}

} // namespace

FileRights FileRights::ofUser(uid_t user, const std::optional<QVector<uint>> &groups)
{
    FileRights rights = {user, nobody, {}};
    if (groups)
        rights.groups.assign(groups->cbegin(), groups->cend());
    else if (const passwd *const listed = getpwuid(user))
        rights.groups = listedGroups(*listed);
    // Each of the groups gives the same rights; the process's own one must not stay.
    if (!rights.groups.empty())
        rights.group = rights.groups.front();
    return rights;
}

FileRights FileRights::ofNobody()
{
    return {nobody, nobody, {}};
}

BorrowedRights::BorrowedRights(const FileRights &rights)
    : m_own({fileUser(), fileGroup(), ownGroups()}),
      m_capabilities(effectiveCapabilities()),
      m_dumpable(prctl(PR_GET_DUMPABLE)),
      m_areInForce(take(rights))
{
    if (!m_areInForce)
        giveBack();
}

BorrowedRights::~BorrowedRights()
{
    if (m_areInForce)
        giveBack();
}

// Without capabilities: one of them leads through /proc into the folders of other processes.
bool BorrowedRights::take(const FileRights &rights)
{
    if (!setOwnGroups(rights.groups))
        return false;
    setfsgid(rights.group);
    setfsuid(rights.user);
    return fileGroup() == rights.group && fileUser() == rights.user && setEffectiveCapabilities(0);
}

void BorrowedRights::giveBack() const
{
    // The user comes first, since that changes capabilities; groups are set by one of these.
    setfsuid(m_own.user);
    const bool hasCapabilities = setEffectiveCapabilities(m_capabilities);
    setfsgid(m_own.group);
    if (!hasCapabilities || fileUser() != m_own.user || fileGroup() != m_own.group
        || (ownGroups() != m_own.groups && !setOwnGroups(m_own.groups)))
        qFatal("Cannot give the process its own rights back");
    // The kernel has taken that away with the change of ids.
    if (m_dumpable == 1)
        prctl(PR_SET_DUMPABLE, 1);
}
