// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

/// The id of the zone that java.util.TimeZone.getTimeZone of Android gives for an id: that id
/// for a zone of the database, a tidy one for an offset like "GMT+5:30", "GMT" for all else.
QString androidTimeZone(const QString &id);
