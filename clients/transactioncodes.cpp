// SPDX-License-Identifier: BSD-3-Clause
#include "clients/transactioncodes.h"

#include "binder/logging.h"
#include "config/apkconfig.h"

quint32 transactionCode(const TransactionCodes &codes)
{
    switch (ApkConfig::sdkVersion()) {
    case 27:
        return codes.sdk27;
    case 28:
        return codes.sdk28;
    case 29:
        return codes.sdk29;
    default:
        qCCritical(binderLog) << "Unsupported android SDK version!";
        return codes.sdk29;
    }
}
