// SPDX-License-Identifier: BSD-3-Clause
#include "userbus/busstrings.h"

#include <QByteArray>
#include <QString>

#include <systemd/sd-bus.h>

#include <cstring>

int appendString(sd_bus_message *message, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    const size_t size = std::strlen(bytes.constData());
    char *space = nullptr;
    const int result = sd_bus_message_append_string_space(message, size, &space);
    if (result >= 0)
        std::memcpy(space, bytes.constData(), size);
    return result;
}
