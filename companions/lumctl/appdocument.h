// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "client/androidapps.h"

#include <QJsonObject>

/// An app as the JSON form shows it wherever one is named.
QJsonObject appDocument(const AndroidApp &app);
