# SPDX-License-Identifier: BSD-3-Clause
"""What is installed on the handset at boot: the build under test, as a tar archive."""

import os
import pathlib
import re
import shutil
import tempfile

from image import HERE, HandsetError, run

DEFAULT_BUILD = HERE.parent / "build" / "release"
DEFAULT_SDK = 29

# libgbinder's names for the binder dialects of Android 8.1, 9 and 10: the
# protocol is the request header's layout, the service manager's its own.
PROTOCOLS = {27: ("aidl", "aidl"), 28: ("aidl", "aidl2"), 29: ("aidl2", "aidl2")}

# What a build may hold beside, its window, finds no screen on the handset.
COMPONENTS = ("lumd", "lumctl", "handset")

# A login shell completes what is typed, without bash-completion, which would read the file too.
COMPLETION = {"/etc/profile.d/lumctl.sh": '[ -z "$BASH_VERSION" ] || '
                                          ". /usr/share/bash-completion/completions/lumctl\n"}

# Units of the payload that start at boot.
ENABLED = ("lumd.service",)


def sdk_files(sdk):
    """The files that make an Android level, path to text."""
    protocol, manager = PROTOCOLS[sdk]
    return {
        "/opt/alien/build.prop": "# begin build properties\n"
                                 f"ro.build.version.sdk={sdk}\nro.product.device=handset\n",
        "/etc/gbinder.d/lumd.conf": f"[Protocol]\n/dev/puddlejumper = {protocol}\n"
                                    f"[ServiceManager]\n/dev/puddlejumper = {manager}\n",
    }


def pack(build, archive, sdk=DEFAULT_SDK):
    """Installs a build folder into a stage and packs that into the archive."""
    if not (build / "daemon" / "lumd").exists():
        raise HandsetError(f"{build} holds no build of lumd")
    # Units and the bus policy name the places that the build was configured for.
    if cache_value(build, "CMAKE_INSTALL_PREFIX") != "/usr":
        raise HandsetError(f"{build} was not configured for the prefix /usr")
    with tempfile.TemporaryDirectory(prefix="lumd-stage-") as folder:
        stage = pathlib.Path(folder)
        stage.chmod(0o755)
        for component in COMPONENTS:
            run("cmake", "--install", build, "--component", component, "--prefix", "/usr",
                env=dict(os.environ, DESTDIR=folder))
        copy_libraries(build, stage)
        for path, text in {**sdk_files(sdk), **COMPLETION}.items():
            write(stage, path, text)
        for unit in ENABLED:
            wants = stage / "etc/systemd/system/multi-user.target.wants"
            wants.mkdir(parents=True, exist_ok=True)
            (wants / unit).symlink_to(f"/usr/lib/systemd/system/{unit}")
        run("tar", "-C", stage, "--owner=0", "--group=0", "--mode=u=rwX,go=rX",
            "-cf", archive, ".")


def write(stage, path, text):
    target = stage / path.lstrip("/")
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_text(text, encoding="utf-8")


def cache_value(build, name):
    """The value of a variable in the build folder's CMake cache."""
    cache = (build / "CMakeCache.txt").read_text(encoding="utf-8")
    found = re.search(f"^{name}:[A-Z]+=(.*)$", cache, re.MULTILINE)
    if not found:
        raise HandsetError(f"{build} knows no {name}")
    return found[1]


def copy_libraries(build, stage):
    """Copies the libraries that Debian 12 has no package of."""
    folder = stage / "usr/lib"
    folder.mkdir(parents=True, exist_ok=True)
    for name in ("GBINDER_LIBRARY", "GLIBUTIL_LIBRARY"):
        library = pathlib.Path(cache_value(build, name))
        for path in library.parent.glob(f"{library.name}.?"):
            shutil.copy(path, folder / path.name)
