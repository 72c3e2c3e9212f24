// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "services/androidservice.h"

/// "alien": the runtime's own service, which launches and installs packages.
class AlienService : public AndroidService
{
public:
    /// @param installAnswer what an install request is answered: 0 or 1.
    AlienService(int sdk, EventLog *log, int installAnswer);

protected:
    Answer transact(quint32 code, AndroidParcel &request) override;

private:
    const int m_installAnswer;
};
