// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QtGlobal>

/// The code of one operation, by the Android release that the runtime is built from. The
/// codes follow the order of the methods in the service's .aidl file, so they move between
/// releases.
struct TransactionCodes
{
    quint32 sdk27; ///< Android 8.1
    quint32 sdk28; ///< Android 9
    quint32 sdk29; ///< Android 10
};

/// The code for the runtime's SDK level. A level that is not supported is logged, as
/// critical, and gets the code of SDK 29.
quint32 transactionCode(const TransactionCodes &codes);
