// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// What lies behind the gbinder library of the parity program: one Android service named
/// "peer", which answers every call as it was told to and shows what it received. There are
/// two of these, one behind the fake library and one behind the real one.
namespace Wire {

struct Parcel
{
    std::string bytes;
    std::vector<size_t> offsets; ///< where the objects begin
};

/// What a call into a local object gave.
struct Answer
{
    bool hasReply = false;
    int status = 0; ///< when there is no reply
    std::string bytes; ///< of the reply
};

/// Before the first gbinder call. The real library takes its protocol from /etc/gbinder.conf.
void start(const std::string &protocol);
/// What "peer" answers from now on.
void setReply(const Parcel &reply);
/// How many milliseconds "peer" takes for an answer from now on; -1: until its death.
void delayReplies(int milliseconds);
/// Kills "peer" in the middle of its calls.
void killPeer();
/// The last request that "peer" received.
Parcel lastRequest();
/// Calls the local object that was handed over last in a request.
Answer call(uint32_t code, const std::string &request);

} // namespace Wire
