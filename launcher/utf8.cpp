// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/utf8.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

bool Utf8::isAscii(std::string_view bytes)
{
    std::uint64_t word{};
    std::uint64_t seen = 0;
    while (bytes.size() >= sizeof(word)) {
        std::memcpy(&word, bytes.data(), sizeof(word));
        seen |= word;
        bytes.remove_prefix(sizeof(word));
    }
    return (seen & 0x8080808080808080U) == 0
        && std::none_of(bytes.begin(), bytes.end(), [](char byte) { return (byte & 0x80) != 0; });
}

std::string Utf8::sortKey(std::string_view bytes)
{
    std::string key(bytes);
    // Characters beyond the 16 bits (first byte f0 to f4) are made of surrogates, which come
    // before the last characters within them (first byte ee or ef).
    for (char &byte : key) {
        if (byte == '\xee' || byte == '\xef')
            byte = static_cast<char>(byte + 0x10);
    }
    return key;
}
