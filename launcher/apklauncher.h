// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QMetaType>
#include <QString>

/// One way to start an Android app: an activity that the app offers to home screens.
struct ApkLauncher
{
    QString caption; ///< the label shown to the user
    QByteArray icon; ///< an encoded image, kept as delivered
    QString packageName; ///< the Android package
    QString className; ///< the activity's class within the package
    QString packageVersion; ///< the package's version, as text
};

Q_DECLARE_METATYPE(ApkLauncher)

/// A launcher is the same whenever package and class are, whatever else has changed.
bool operator==(const ApkLauncher &left, const ApkLauncher &right);
