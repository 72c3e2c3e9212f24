// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

/// What the daemon's monitor tells on the private system bus while this object lives.
class MonitorRecorder : public QObject
{
    Q_OBJECT

public:
    MonitorRecorder();
    ~MonitorRecorder() override;

    /// Each signal so far, in order: InstallFinished("com.clock", true, "").
    /// PropertiesChanged(PendingChanges=1 Ready=true) for the properties of Monitor1.
    QStringList signalTexts() const { return m_texts; }
    void clear() { m_texts.clear(); }

    /// Calls a method of the monitor's object and waits for the reply or the error.
    static QDBusMessage call(
        const char *interface, const char *method, const QVariantList &arguments = {});
    /// All properties as the bus has them.
    static QVariantMap properties();
    /// One launcher a line, "package: desktopFile|name|icon|version|hidden"; or an error's words.
    static QStringList listApps();

public Q_SLOTS:
    void onSignal(const QDBusMessage &message);

private:
    QStringList m_texts;
};
