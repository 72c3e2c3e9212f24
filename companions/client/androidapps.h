// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>
#include <QVector>

/// One thing of an app that can be started. All texts are the app's own: see shownName().
struct AndroidLauncher
{
    QString desktopFile; ///< absolute path
    QString name;
    QString icon; ///< path, or a name in the icon theme
    QString version;
    bool isHidden = false; ///< not in the home screen's grid

    /// The class that Android starts for it, from the desktop entry; empty when that cannot be
    /// read.
    QString className() const;
};

/// An app with its launchers.
struct AndroidApp
{
    QString package;
    QVector<AndroidLauncher> launchers;

    /// The name of its first launcher, or the package when that has none.
    QString name() const;
    QString version() const;
};

/// What a person's word for an app means.
struct NamedApp
{
    enum class Kind {
        Found,
        Unknown, ///< nothing is called so
        Doubtful, ///< several apps are called so, or one or more nearly
    };

    Kind kind = Kind::Unknown;
    /// When it is found.
    AndroidApp app;
    /// The one launcher that was named, as an index into the app's; -1 when the app was.
    int launcher = -1;
    /// When it is doubtful: what may have been meant.
    QVector<AndroidApp> candidates;
};

/// Looks for a package, a desktop file (its path or its name, with or without ".desktop") and the
/// name of a launcher, in this order; letter case counts only where it decides between launchers.
/// A part of a name is never taken for the name: it makes candidates.
NamedApp findApp(const QVector<AndroidApp> &apps, const QString &name);
