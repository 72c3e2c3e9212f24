// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "companions/lumd-apps/appsmodule.h"
#include "companions/lumd-apps/window.h"
#include "tests/daemon/announcementtest.h"
#include "tests/daemon/appfixture.h"

#include <QQuickItem>
#include <QQuickWindow>

#include <atomic>
#include <mutex>
#include <set>

class QQmlEngine;

/// What the tests in QML see as "world": the daemon and its neighbours, what they were asked for,
/// and a look at the window from outside. The functions that give a bool wait for what they do and
/// give false when it does not come about.
class AppsWorld : public QObject
{
    Q_OBJECT

public:
    AppsWorld();

    // The daemon.
    Q_INVOKABLE bool start();
    /// The bus lets nobody send to the owner of that name any more.
    Q_INVOKABLE void refuse(const QString &name);
    /// Starts it behind a bus policy that lets nobody in.
    Q_INVOKABLE bool startRefused();
    /// Serves com.tovra.lumd without its monitor object, in the daemon's place.
    Q_INVOKABLE bool startOutdated();
    Q_INVOKABLE void killDaemon();
    /// It stops to answer, as one that hangs.
    Q_INVOKABLE void halt();
    Q_INVOKABLE void goOn();

    // The runtime.
    Q_INVOKABLE bool bringUp();
    Q_INVOKABLE bool see(const QString &state);
    /// Its services go, too.
    Q_INVOKABLE bool takeDown();
    Q_INVOKABLE void setUnitFileState(const QString &state);
    Q_INVOKABLE QStringList systemdCalls() const;

    // Android.
    Q_INVOKABLE bool announce(const QString &package, const QString &caption,
        const QString &className = QStringLiteral(".Main"),
        const QString &version = QStringLiteral("1.0"));
    Q_INVOKABLE bool announceMany(int count);
    Q_INVOKABLE bool announceGone(const QString &package);
    Q_INVOKABLE void setSizes(const QString &package, double code, double data, double cache);
    Q_INVOKABLE void setTotal(double bytes);
    /// How often that service got that request for that package or path; "" for any.
    Q_INVOKABLE int requests(const QString &service, int code, const QString &name);
    Q_INVOKABLE bool finishInstall(int result, const QString &package, const QString &message);
    /// Android fails each removal from now on, or does as asked again.
    Q_INVOKABLE void failRemovals(bool fail) { m_failsRemovals = fail; }

    // Files and the policy.
    /// Nobody but the privileged may install and remove.
    Q_INVOKABLE void forbidChanges();
    Q_INVOKABLE QUrl makeApk(const QString &name);
    /// Another program asks for it.
    Q_INVOKABLE bool installElsewhere(const QUrl &apk);
    Q_INVOKABLE QString pathInRuntime(const QString &name) const { return incomingInRuntime(name); }

    // The look.
    Q_INVOKABLE void setDark(bool isDark);
    Q_INVOKABLE void setLanguage(const QString &language);
    /// "role|name" as a screen reader gets it; empty for what it does not get.
    Q_INVOKABLE QString accessible(QQuickItem *item) const;
    Q_INVOKABLE QString accessibleDescription(QQuickItem *item) const;
    /// Whether that text occurs among the names that a screen reader gets of the window.
    Q_INVOKABLE bool isReadOut(QQuickWindow *window, const QString &text) const;
    /// What the engine has complained of since the last call: binding loops, missing names.
    Q_INVOKABLE QStringList complaints();
    /// Keeps what the window shows, and gives how many colours it has.
    Q_INVOKABLE int draw(QQuickWindow *window, const QString &name) const;

    /// Changes with what the window shows.
    Q_INVOKABLE QString digest(QQuickWindow *window) const;

public Q_SLOTS:
    void qmlEngineAvailable(QQmlEngine *engine);

private:
    FakeBinder::Reply answerSizes(const FakeBinder::Request &request);
    FakeBinder::Reply answerAllowList(const FakeBinder::Request &request);

    AppFixture m_world;
    std::unique_ptr<QObject> m_outdated;
    std::unique_ptr<AppsModule> m_module;
    std::unique_ptr<Window::Texts> m_texts;
    QQmlEngine *m_engine = nullptr;
    QStringList m_complaints;
    std::mutex m_mutex;
    QHash<QString, QVector<qint64>> m_sizes;
    std::set<QString> m_allowed;
    std::atomic_bool m_failsRemovals{false};
};
