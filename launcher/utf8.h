// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>

#include <string>
#include <string_view>

/// Text as it lies on the disk, in UTF-8. Most of it is plain ASCII, and then nothing has to be
/// decoded.
namespace Utf8 {

inline std::string_view view(const QByteArray &bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

bool isAscii(std::string_view bytes);

/// Bytes whose order is that of QString, by UTF-16 code units, for the text in @p bytes, which
/// must be valid UTF-8. Plain ASCII comes back as it is.
std::string sortKey(std::string_view bytes);

/// Whether @p left comes before @p right in that order.
inline bool isBefore(std::string_view left, std::string_view right)
{
    return isAscii(left) && isAscii(right) ? left < right : sortKey(left) < sortKey(right);
}

} // namespace Utf8
