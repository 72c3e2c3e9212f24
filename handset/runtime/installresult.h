// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/// How an installation went, as its observer is told.
struct InstallResult
{
    qint32 returnCode = 0; ///< android.content.pm.PackageManager, INSTALL_...
    QString package; ///< null where the apk could not be read
    QString message;
    bool replaced = false; ///< an older version was there
    /// What is defined already, and by whom, where the apk defines a permission anew.
    QString existingPermission;
    QString existingPackage;

    static InstallResult failure(qint32 returnCode, const QString &message = {});
    /// What an apk says that its installation shall come to.
    static InstallResult fromApk(const QString &package, const QJsonObject &apk);

    bool succeeded() const;
    /// The arguments of IPackageInstallObserver2.onPackageInstalled.
    QByteArray toParcel() const;
};
