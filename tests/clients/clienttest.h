// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/binder/runtimetest.h"
#include "tests/support/fakegbinder/fakebinder.h"
#include "tests/support/fakegbinder/parcelwriter.h"

/// Installs a runtime of that Android SDK level. Once in a process: the level that was found
/// first stays. False when the file cannot be written.
bool installRuntime(int sdkLevel);

/// A parcel as lumd writes it.
inline FakeBinder::ParcelWriter body()
{
    return FakeBinder::ParcelWriter(FakeBinder::ParcelWriter::Style::Gbinder);
}

/// A call as text: "SERVICE INTERFACE CODE FLAGS: BYTES [OFFSETS]", with the bytes and the
/// offsets of the payload alone.
QString callText(const FakeBinder::Request &request);
QString callText(
    const char *service, const char *interface, quint32 code, const FakeBinder::ParcelWriter &body);

/// The calls that lumd made since the last look.
QStringList takeCalls();

/// The first local object that the last call handed over; 0 for none.
quint32 handedOver();

/// The base of tests of a client. The runtime is stopped behind each function, which must
/// leave nothing behind on the gbinder side then.
class ClientTest : public RuntimeTest
{
    Q_OBJECT

protected:
    /// Lets the service answer every call from now on so. The links of before are gone.
    void answerWith(const QString &service, const FakeBinder::Reply &reply);

protected Q_SLOTS:
    void cleanup();
};
