// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/fakegbinder/fakebindertypes.h"

#include <QStringList>

/// The Android world behind the fake libgbinder, as a test of the same process drives it.
/// A new process starts with a world whose binder device is present, with protocol Aidl,
/// and with no service. Like libgbinder it hands a request to a local object whatever the
/// interface in its header says.
namespace FakeBinder {

/// Whether gbinder_servicemanager_new finds the binder device.
void setPresent(bool present);
void setProtocol(Protocol protocol);

/// Registers an Android service; a service of that name that lives is replaced without
/// dying. With no handler every call is answered with status 0 and an empty reply.
void registerService(
    const QString &name, const Handler &handler = {}, Notice notice = Notice::Deferred);
/// Takes the name away from the service manager; the service lives on for those who hold it.
void unregisterService(const QString &name);
/// Kills a registered service: its name goes, calls on it fail with GBINDER_STATUS_DEAD_OBJECT,
/// those too that are under way, and death handlers are called as `notice` says.
void killService(const QString &name, Notice notice = Notice::Deferred);
/// Calls the registration handlers for that name once more, registered or not.
void notifyRegistration(const QString &name, Notice notice = Notice::Deferred);
/// An Android object without a name, to be handed over in a parcel. Gives its id; in the
/// ledger it goes by `label`.
quint32 newRemoteObject(const QString &label, const Handler &handler = {});
/// Kills an object made by newRemoteObject.
void killRemoteObject(quint32 id, Notice notice = Notice::Deferred);

/// Makes gbinder_client_new give null for that service.
void failClients(const QString &service, bool fail = true);
/// Makes gbinder_client_new_request give null.
void failRequests(bool fail = true);
/// Makes gbinder_servicemanager_new_local_object give null.
void failLocalObjects(bool fail = true);
/// Makes gbinder_servicename_new give null.
void failServiceNames(bool fail = true);

/// The services that this process offers now, in the order of publication: those whose name
/// handle lives.
QVector<PublishedService> published();
/// Calls a published service. Runs its handler before it returns.
Answer transact(const QString &publishedName, const Call &call);
/// Calls a local object by its id (PublishedService::objectId, Request::localObjects).
Answer transactObject(quint32 objectId, const Call &call);

/// All requests of this process so far, in order.
QVector<Request> requests();
void clearRequests();

/// Every creation, reference, release, drop, handler added or removed, in order. A line is
/// the gbinder function's name without "gbinder_", and what it worked on:
///
///     servicemanager_new /dev/puddlejumper       servicemanager_unref /dev/puddlejumper
///     servicemanager_add_registration_handler alien 1     servicemanager_remove_handler 1
///     servicemanager_get_service_sync alien      (also when there is no such service)
///     remote_object_ref alien                    remote_object_unref alien
///     remote_object_add_death_handler alien 2    remote_object_remove_handler alien 2
///     client_new alien                           client_unref alien
///     client_new_request alien                   local_request_unref alien
///     client_transact_sync_reply alien 5         remote_reply_unref alien
///     client_transact_sync_oneway alien 5        (the number is the code)
///     client_transact alien 5                    client_cancel alien
///     servicemanager_new_local_object IFACE      local_object_drop IFACE
///     servicename_new alien.launcher             servicename_unref alien.launcher
///     local_object_new_reply IFACE               local_reply_unref IFACE
///     reader_read_object LABEL
///
/// A creation that failed ends in " failed": "client_new alien failed". Handler ids count from 1 in
/// one row for both kinds of handler. A release of NULL, which gbinder tolerates, leaves no line.
QStringList ledger();
void clearLedger();
/// The handles and handlers that live on, in the order in which they were made: for instance
/// "client alien", "remote_object alien 2" (two references), "death_handler alien 2",
/// "registration_handler alien 1", "local_object IFACE".
QStringList leaks();
/// Wrong uses, in order: a release or use of a handle that is gone already, a handle of
/// another kind, a handler removed twice, a writer for null, a read where libgbinder would leave
/// the message's memory (behind a byte array at the end whose padding is missing). Empty in a good
/// run.
QStringList errors();

} // namespace FakeBinder
