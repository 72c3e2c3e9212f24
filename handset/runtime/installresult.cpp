// SPDX-License-Identifier: BSD-3-Clause
#include "installresult.h"

#include "androidparcelwriter.h"

namespace {

constexpr qint32 Succeeded = 1;
constexpr qint32 DuplicatePermission = -112;

constexpr qint32 BundleMagic = 0x4C444E42; // android.os.BaseBundle
enum ValueType : qint32 { StringValue = 0, BooleanValue = 9 }; // android.os.Parcel

QByteArray bundle(qint32 count, const AndroidParcelWriter &entries)
{
    AndroidParcelWriter writer;
    writer.writeInt32(entries.bytes().size() + int(sizeof(count)));
    writer.writeInt32(BundleMagic);
    writer.writeInt32(count);
    writer.append(entries.bytes());
    return writer.bytes();
}

/// Null where PackageManagerService.extrasForInstallResult makes none.
QByteArray extras(const InstallResult &result)
{
    AndroidParcelWriter entries;
    if (result.returnCode == Succeeded) {
        entries.writeString16(QStringLiteral("android.intent.extra.REPLACING"));
        entries.writeInt32(BooleanValue);
        entries.writeInt32(result.replaced ? 1 : 0);
        return bundle(1, entries);
    }
    if (result.returnCode != DuplicatePermission)
        return {};
    // by the keys' hashes, as android.util.ArrayMap keeps them
    entries.writeString16(QStringLiteral("android.content.pm.extra.FAILURE_EXISTING_PERMISSION"));
    entries.writeInt32(StringValue);
    entries.writeString16(result.existingPermission);
    entries.writeString16(QStringLiteral("android.content.pm.extra.FAILURE_EXISTING_PACKAGE"));
    entries.writeInt32(StringValue);
    entries.writeString16(result.existingPackage);
    return bundle(2, entries);
}

} // namespace

InstallResult InstallResult::failure(qint32 returnCode, const QString &message)
{
    InstallResult result;
    result.returnCode = returnCode;
    result.message = message;
    return result;
}

InstallResult InstallResult::fromApk(const QString &package, const QJsonObject &apk)
{
    const auto text = [&apk](const char *key) {
        return apk.value(QLatin1String(key)).toVariant().toString();
    };
    InstallResult result;
    result.returnCode = apk.value(QLatin1String("fail")).toInt(Succeeded);
    result.package = package;
    result.message = text("message");
    result.existingPermission = text("existingPermission");
    result.existingPackage = text("existingPackage");
    return result;
}

bool InstallResult::succeeded() const
{
    return returnCode == Succeeded;
}

QByteArray InstallResult::toParcel() const
{
    AndroidParcelWriter writer;
    writer.writeString16(package);
    writer.writeInt32(returnCode);
    writer.writeString16(message);
    const QByteArray bundle = extras(*this);
    writer.writeInt32(bundle.isNull() ? 0 : 1);
    writer.append(bundle);
    return writer.bytes();
}
