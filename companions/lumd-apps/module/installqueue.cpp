// SPDX-License-Identifier: BSD-3-Clause
#include "companions/lumd-apps/installqueue.h"

#include "companions/lumd-apps/lumdservice.h"
#include "companions/lumd-apps/plaintext.h"

#include <QFileInfo>

InstallQueue::InstallQueue(LumdService *service, QObject *parent)
    : QObject(parent), m_service(service)
{
    connect(&service->client(), &LumdClient::installFinished, this, &InstallQueue::onFinished);
    connect(service, &LumdService::presenceChanged, this, &InstallQueue::onPresence);
    connect(&service->client(), &LumdClient::requestQueued, this,
        [this](const QString &kind, const QString &what) {
            if (kind == QLatin1String("install") && what == m_path && isBusy()) {
                m_isKept = true;
                set(Waiting);
            }
        });
    connect(service, &LumdService::stateChanged, this, [this] {
        if (m_state == Waiting && m_service->isRuntimeReady())
            set(Installing);
    });
}

QString InstallQueue::title() const
{
    switch (m_state) {
    case Idle:
        break;
    case HandingOver:
        return qtTrId("lumd-apps-install-handing-over");
    case Waiting:
        return qtTrId("lumd-apps-install-waiting");
    case Installing:
        return qtTrId("lumd-apps-install-running");
    case Installed:
        return qtTrId("lumd-apps-install-done");
    case Failed:
        return qtTrId("lumd-apps-install-failed");
    }
    return {};
}

QString InstallQueue::explanation() const
{
    return m_state == Waiting ? qtTrId("lumd-apps-install-explain-waiting") : m_explanation;
}

QString InstallQueue::fileName() const
{
    return shownText(QFileInfo(m_path).fileName());
}

void InstallQueue::install(const QList<QUrl> &files)
{
    m_files += files;
    if (m_state == Idle)
        begin();
    else
        Q_EMIT changed();
}

void InstallQueue::goOn()
{
    if (!isBusy())
        begin();
}

void InstallQueue::begin()
{
    m_package.clear();
    m_path.clear();
    m_isKept = false;
    m_isHanded = false;
    if (m_files.isEmpty()) {
        set(Idle);
        return;
    }
    const QUrl file = m_files.takeFirst();
    m_path = file.isLocalFile() ? file.toLocalFile() : file.toDisplayString();
    if (!file.isLocalFile()) {
        set(Failed, qtTrId("lumd-apps-install-explain-remote"));
        return;
    }
    if (!QFileInfo(m_path).isReadable()) {
        set(Failed, qtTrId("lumd-apps-install-explain-unreadable"));
        return;
    }
    set(HandingOver);
    onPresence();
}

void InstallQueue::hand()
{
    m_isHanded = true;
    m_service->client().installFile(m_path,
        m_service->counted<bool>(this, [this](const Answer<bool> &answer) { onAnswered(answer); }));
}

void InstallQueue::onAnswered(const Answer<bool> &answer)
{
    if (!isBusy())
        return;
    if (answer.error)
        set(Failed, qtTrId("lumd-apps-request-failed"));
    else if (!answer.value)
        set(Failed, qtTrId("lumd-apps-install-explain-refused"));
    else if (!m_isKept)
        set(Installing);
}

void InstallQueue::onFinished(const QString &package, bool isSuccess, const QString &message)
{
    // The result of an install of somebody else's may come first.
    if (m_state != Installing && m_state != Waiting)
        return;
    m_package = package;
    set(isSuccess ? Installed : Failed, isSuccess ? QString() : shownText(message));
}

void InstallQueue::onPresence()
{
    switch (m_service->presence()) {
    case LumdService::Presence::Unknown:
        return;
    case LumdService::Presence::Present:
        if (m_state == HandingOver && !m_isHanded)
            hand();
        return;
    case LumdService::Presence::Absent:
        if (isBusy())
            set(Failed,
                m_isHanded ? qtTrId("lumd-apps-install-explain-lost")
                           : qtTrId("lumd-apps-explain-no-daemon"));
        return;
    case LumdService::Presence::Refused:
        if (isBusy())
            set(Failed, qtTrId("lumd-apps-explain-refused"));
        return;
    case LumdService::Presence::Outdated:
        if (isBusy())
            set(Failed, qtTrId("lumd-apps-explain-outdated"));
        return;
    }
}

void InstallQueue::set(State state, const QString &explanation)
{
    m_state = state;
    m_explanation = explanation;
    Q_EMIT changed();
}
