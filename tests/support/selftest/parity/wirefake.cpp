// SPDX-License-Identifier: BSD-3-Clause
#include "wire.h"

#include "tests/support/fakegbinder/fakebinder.h"

namespace {

FakeBinder::Reply nextReply;

} // namespace

void Wire::start(const std::string &protocol)
{
    FakeBinder::setProtocol(
        protocol == "aidl2" ? FakeBinder::Protocol::Aidl2 : FakeBinder::Protocol::Aidl);
    FakeBinder::registerService(
        QStringLiteral("peer"), [](const FakeBinder::Request &) { return nextReply; });
}

void Wire::setReply(const Parcel &reply)
{
    nextReply.bytes = QByteArray::fromStdString(reply.bytes);
    nextReply.offsets.clear();
    for (const size_t offset : reply.offsets)
        nextReply.offsets.append(int(offset));
}

void Wire::delayReplies(int milliseconds)
{
    nextReply.delay = milliseconds;
}

void Wire::killPeer()
{
    FakeBinder::killService(QStringLiteral("peer"));
}

Wire::Parcel Wire::lastRequest()
{
    const FakeBinder::Request request = FakeBinder::requests().last();
    return {request.bytes.toStdString(),
        std::vector<size_t>(request.offsets.cbegin(), request.offsets.cend())};
}

Wire::Answer Wire::call(uint32_t code, const std::string &request)
{
    FakeBinder::Call call;
    call.code = code;
    call.payload = QByteArray::fromStdString(request);
    for (const FakeBinder::Request &sent : FakeBinder::requests()) {
        if (sent.localObjects.isEmpty())
            continue;
        const FakeBinder::Answer answer =
            FakeBinder::transactObject(sent.localObjects.last(), call);
        return {answer.hasReply, answer.delivered ? answer.status : -EBADMSG,
            answer.bytes.toStdString()};
    }
    return {};
}
