// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "services/androidservice.h"

class PackageInstaller;
class WindowList;

/// "alien": the runtime's own service. It launches packages and, since Android 9, installs
/// them.
class AlienService : public AndroidService
{
public:
    /// @param installAnswer what an install request is answered: 0 or 1.
    AlienService(int sdk, EventLog *log, PackageInstaller *installer, WindowList *windows,
        int installAnswer);

protected:
    /// Its results have no exception's word in front either.
    bool throwsExceptions() const override { return false; }

private:
    Call launchPackage(AndroidParcel &request);
    Call installPackage(AndroidParcel &request);

    PackageInstaller *const m_installer;
    WindowList *const m_windows;
    const int m_installAnswer;
};
