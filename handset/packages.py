# SPDX-License-Identifier: BSD-3-Clause
"""The packages that are installed on the handset: lumd and lumctl, as a user gets them, and the
simulated runtime, which is in a package for the handset alone."""

from image import SUITE, HandsetError, debianroot

import buildroot
import packagebuilds


def build(architecture=None, *, say=packagebuilds.SAY):
    """Gives the packages of the present sources, built first if they are not there; for this
    machine's own architecture, where none is named."""
    architecture = architecture or buildroot.native()
    try:
        shipped = packagebuilds.shipped(architecture, SUITE, say)
        runtime = packagebuilds.handset_runtime(architecture, SUITE, say)
    except debianroot.RootError as error:
        raise HandsetError(str(error)) from error
    return [found for folder, name in ((shipped, "lumd"), (shipped, "lumctl"),
                                       (runtime, "lumd-handset-runtime"))
            for found in folder.glob(f"{name}_*.deb")]
