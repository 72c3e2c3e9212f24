// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/utf8.h"

bool Utf8::isAscii(std::string_view bytes)
{
    unsigned char seen{};
    for (const char byte : bytes)
        seen |= static_cast<unsigned char>(byte);
    return seen < 0x80;
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
