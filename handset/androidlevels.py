# SPDX-License-Identifier: BSD-3-Clause
"""The Android levels that the simulated runtime can have."""

DEFAULT_SDK = 29

# libgbinder's names for the binder dialects of Android 8.1, 9 and 10: the
# protocol is the request header's layout, the service manager's its own.
PROTOCOLS = {27: ("aidl", "aidl"), 28: ("aidl", "aidl2"), 29: ("aidl2", "aidl2")}


def sdk_files(sdk):
    """The files that make an Android level, path to text."""
    protocol, manager = PROTOCOLS[sdk]
    return {
        "/opt/alien/build.prop": "# begin build properties\n"
                                 f"ro.build.version.sdk={sdk}\nro.product.device=handset\n",
        "/etc/gbinder.d/lumd.conf": f"[Protocol]\n/dev/puddlejumper = {protocol}\n"
                                    f"[ServiceManager]\n/dev/puddlejumper = {manager}\n",
    }
