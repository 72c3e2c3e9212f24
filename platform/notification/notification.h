// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QObject>
#include <QString>
#include <QVariantMap>

/// A notification to the user, shown by the org.freedesktop.Notifications server of the
/// session bus. It lives on there after this object has gone.
class Notification : public QObject
{
    Q_OBJECT

public:
    /// The urgency levels of the Desktop Notifications standard.
    enum Urgency { Low = 0, Normal = 1, Critical = 2 };

    explicit Notification(QObject *parent = nullptr);

    void setAppName(const QString &name);
    void setAppIcon(const QString &icon);
    void setIcon(const QString &icon);
    /// A transient notification is not kept once it has been shown.
    void setIsTransient(bool transient);
    void setUrgency(Urgency urgency);
    void setPreviewSummary(const QString &summary);
    void setPreviewBody(const QString &body);

    /// Hands the notification over and never waits. Without a server it is lost; while there is
    /// no bus that takes it, it is kept for 10 seconds, and then dropped with a warning.
    void publish();

private:
    QString m_appName;
    QString m_appIcon;
    QString m_icon;
    QString m_summary;
    QString m_body;
    QVariantMap m_hints;
};
