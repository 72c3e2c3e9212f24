// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/daemon/daemonfixture.h"

#include <QObject>
#include <QStringList>
#include <QVector>

#include <memory>

constexpr quint32 launcherAdded = 1;
constexpr quint32 launchersComplete = 2;
constexpr quint32 packageRemoved = 3;

/// A launcher as Android announces it, and where its files should lie.
struct Launcher
{
    QString packageName;
    QString className;
    QString caption;
    QString version;
    QByteArray icon;

    QString fileName() const;
    QString entryPath() const;
    QString iconPath() const;
    QString settingsPath() const;

    QByteArray payload() const;
};

/// Two launchers of one package, and one of another.
Launcher clockLauncher();
Launcher alarmLauncher();
Launcher mapLauncher();

/// The desktop entry and the settings entry that a launcher should get.
QByteArray entryText(const Launcher &launcher);
QByteArray settingsText(const Launcher &launcher);

/// Every file that the daemon makes, in order of the path.
QStringList generatedFiles();
QStringList filesOf(const QVector<Launcher> &launchers);
/// Inode and time of last change: a file that was written again has another pair.
QStringList identities(const QStringList &files);

/// A test class whose functions announce launchers to the daemon. Each begins with an
/// active runtime and no generated file.
class AnnouncementTest : public QObject
{
    Q_OBJECT

protected:
    /// Starts the daemon and waits for its service.
    bool startServed();
    FakeBinder::Answer send(quint32 code, const QByteArray &payload = {});
    /// Announces it; true when the daemon accepted.
    bool announce(const Launcher &launcher);

    std::unique_ptr<DaemonFixture> m_world;

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
};
