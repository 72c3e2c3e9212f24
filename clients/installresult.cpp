// SPDX-License-Identifier: BSD-3-Clause
#include "clients/installresult.h"

#include <QCoreApplication>

QString installFailureText(qint32 returnCode)
{
    switch (returnCode) {
    case -115:
    case -22:
    case -21:
        return qtTrId("Aborted");
    case -113:
    case -111:
    case -17:
    case -16:
    case -14:
    case -12:
    case -9:
        return qtTrId("lumd-install-fail-incompat");
    case -112:
    case -25:
    case -24:
    case -13:
    case -10:
    case -8:
    case -7:
    case -6:
    case -5:
    case -1:
        return qtTrId("lumd-install-fail-conflict");
    case -109:
    case -108:
    case -107:
    case -106:
    case -105:
    case -104:
    case -103:
    case -102:
    case -101:
    case -100:
    case -26:
    case -23:
    case -15:
    case -11:
    case -3:
    case -2:
        return qtTrId("lumd-install-fail-invalid");
    case -20:
    case -19:
    case -18:
    case -4:
        return qtTrId("lumd-install-fail-storage");
    default:
        return qtTrId("lumd-install-fail-other");
    }
}
