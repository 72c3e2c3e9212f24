// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QDBusAbstractAdaptor>

/// Answers for /com/tovra/lumd in the place of Qt, whose text names every object below. Programs
/// compare what they find with what they have on record: this is that text, to the byte.
class Introspection : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.DBus.Introspectable")

public:
    explicit Introspection(QObject *parent);

public Q_SLOTS:
    QString Introspect() const; // clazy:exclude=const-signal-or-slot
};
