// SPDX-License-Identifier: BSD-3-Clause
#include "fuzz/setup.h"

#include <limits>

// The level is cached for the life of a process; from within the source it can be forgotten.
#include "config/sdkversion.cpp" // NOLINT(bugprone-suspicious-include)

namespace {

// What a C program would take for a number, but for the blanks of all scripts around it and the
// sign of mathematics.
qint32 decimal(const QByteArray &text)
{
    const QByteArray digits = QString::fromUtf8(text.constData(), text.size())
                                  .trimmed()
                                  .replace(QChar(0x2212), QLatin1Char('-'))
                                  .toUtf8();
    qint64 number = 0;
    int position = digits.startsWith('-') || digits.startsWith('+') ? 1 : 0;
    if (position == digits.size())
        return 0;
    for (; position < digits.size(); ++position) {
        if (digits[position] < '0' || digits[position] > '9')
            return 0;
        number = number * 10 + (digits[position] - '0');
        if (number > std::numeric_limits<qint32>::max() + qint64(digits.startsWith('-')))
            return 0;
    }
    return qint32(digits.startsWith('-') ? -number : number);
}

// The slow reading: byte by byte. A line ends at a zero, and may begin with a byte order mark.
qint32 levelOf(const QByteArray &contents)
{
    const QByteArray key("ro.build.version.sdk");
    const QByteArray mark("\xef\xbb\xbf");
    const QList<QByteArray> lines = contents.split('\n');
    for (const QByteArray &bytes : lines) {
        QByteArray line = bytes.trimmed();
        line.truncate(int(qstrnlen(line.constData(), uint(line.size()))));
        if (line.startsWith(mark))
            line.remove(0, mark.size());
        if (line == key)
            return 0;
        if (line.startsWith(key + '='))
            return decimal(line.mid(key.size() + 1).split('=').first());
    }
    return 0;
}

} // namespace

// The level must be that of the slow reading, and stay when it was found.
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray contents = Fuzz::bytes(data, size);
    Fuzz::writeFile("/opt/alien/build.prop", contents);
    cachedSdkVersion = 0;
    const qint32 expected = levelOf(contents);
    Fuzz::require(ApkConfig::sdkVersion() == expected);
    Fuzz::writeFile("/opt/alien/build.prop", "ro.build.version.sdk=29\n");
    Fuzz::require(ApkConfig::sdkVersion() == (expected == 0 ? 29 : expected));
    return 0;
}
