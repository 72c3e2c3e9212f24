// SPDX-License-Identifier: BSD-3-Clause
#include "services/alienservice.h"

namespace {

enum Code : quint32 { LaunchPackage = 1, InstallPackage = 2 };

} // namespace

AlienService::AlienService(int sdk, EventLog *log, int installAnswer)
    : AndroidService(
        QStringLiteral("alien"), QStringLiteral("alien.applications.IAlienService"), sdk, log),
      m_installAnswer(installAnswer)
{
}

AndroidService::Answer AlienService::transact(quint32 code, AndroidParcel &request)
{
    switch (code) {
    case LaunchPackage: {
        const QString package = request.readString16();
        return {QStringLiteral("launchPackage"), {{QStringLiteral("package"), describe(package)}},
            {}, 0};
    }
    case InstallPackage: {
        const QString path = request.readString16();
        const AndroidParcel::Binder observer = request.readBinder();
        return {QStringLiteral("installPackage"),
            {{QStringLiteral("path"), describe(path)},
                {QStringLiteral("observer"), describe(observer)}},
            [answer = m_installAnswer](
                GBinderWriter *writer) { gbinder_writer_append_int32(writer, guint32(answer)); },
            0};
    }
    default:
        return unknownCode();
    }
}
