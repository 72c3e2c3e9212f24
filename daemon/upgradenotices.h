// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "userbus/userbus.h"

#include <QObject>
#include <QStringList>

#include <deque>
#include <functional>

class DesktopManager;

/// Tells the home screen that the runtime is being upgraded: launcher by launcher, each after
/// the answer to the one before, while the event loop goes on.
class UpgradeNotices : public QObject
{
    Q_OBJECT

public:
    using Done = std::function<void()>;

    /// @p desktopManager is not owned and must outlive this object.
    explicit UpgradeNotices(const DesktopManager &desktopManager, QObject *parent = nullptr);

    /// Tells of all launchers that there are when the ones before have been told of, and then
    /// calls @p done, which may be before this returns. A home screen that does not answer is
    /// given 25 seconds for each launcher; a bus that hangs ends the list.
    void notify(bool isUpgrading, const Done &done);

private:
    struct Turn
    {
        bool isUpgrading;
        Done done;
    };

    void beginTurn();
    void goOn();
    void endTurn();
    void onOutcome(UserBus::Outcome outcome);

    const DesktopManager &m_desktopManager;
    std::deque<Turn> m_turns;
    QStringList m_desktopFiles; // of the first turn, those not told of yet
};
