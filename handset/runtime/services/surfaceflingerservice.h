// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "services/androidservice.h"

class WindowList;

/// "SurfaceFlinger": android.ui.ISurfaceComposer, with the runtime's own question whether a
/// package has a window.
class SurfaceFlingerService : public AndroidService
{
public:
    SurfaceFlingerService(int sdk, EventLog *log, WindowList *windows);

protected:
    /// A native service: its failures are statuses.
    bool throwsExceptions() const override { return false; }

private:
    Call hasWindow(AndroidParcel &request);

    WindowList *const m_windows;
};
