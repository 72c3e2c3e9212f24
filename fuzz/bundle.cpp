// SPDX-License-Identifier: BSD-3-Clause
#include "fuzz/referenceparcel.h"
#include "fuzz/setup.h"
#include "tests/binder/androidpeer.h"

// A bundle, whatever the bytes, must come out as the slow reading has it, without a byte read that
// is not the message's; and so must what lies behind it.
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static AndroidPeer peer;
    const QByteArray bytes = Fuzz::bytes(data, size);
    ReferenceParcel reference(bytes);
    const QVariantMap expected = reference.bundle();
    const qint32 expectedBehind = reference.int32();
    if (reference.isTooLong())
        return 0;
    peer.receive(bytes, [&](AlienBinderParcel &parcel) {
        Fuzz::require(isSameBundle(parcel.readBundle(), expected));
        Fuzz::require(parcel.readInt32() == expectedBehind);
    });
    Fuzz::require(FakeBinder::errors().isEmpty());
    FakeBinder::clearRequests();
    FakeBinder::clearLedger();
    return 0;
}
