# SPDX-License-Identifier: BSD-3-Clause
"""The packages that are installed on the handset: lumd and lumctl, as a user gets them, and the
simulated runtime, which is in a package for the handset alone.

They are built in the root of tools/package, and cached under a hash of their sources.
"""

import hashlib
import inspect
import os
import pathlib
import shutil
import tempfile

from image import CACHE, SUITE, HandsetError, debianroot

import buildroot

NAMES = ("lumd", "lumctl", "lumd-handset-runtime")
PROFILE = "pkg.lumd.handset"

# What the packages are not made of.
BESIDE = (".ci/", "bench/", "debian/tests/", "docs/benchmarks.md", "docs/pictures/",
          "docs/testing.md", "fuzz/", "handset/", "tests/", "tools/")


def build(architecture=None, *, say=print):
    """Gives the packages of the present sources, built first if they are not there; for this
    machine's own architecture, where none is named."""
    architecture = architecture or buildroot.native()
    sources = source_files()
    folder = CACHE / f"packages-{architecture}-{source_hash(sources)}"
    CACHE.mkdir(parents=True, exist_ok=True)
    with debianroot.exclusive(CACHE / f"packages-{architecture}.lock"):
        if not folder.is_dir():
            if os.geteuid() != 0:
                raise HandsetError("building the handset's packages needs root: "
                                   "run 'handset/handset.py build' with sudo")
            make(folder, architecture, sources, say)
    return [found for name in NAMES for found in folder.glob(f"{name}_*.deb")]


def source_files():
    """The files that decide what the packages hold."""
    return [name for name in buildroot.source_files()
            if name.startswith("handset/runtime/") or not name.startswith(BESIDE)]


def source_hash(names):
    digest = hashlib.sha256(inspect.getsource(make).encode() + buildroot.BUILD.encode())
    for name in names:
        path = buildroot.PROJECT / name
        mode = "x" if os.access(path, os.X_OK) else "-"
        digest.update(f"{name} {mode} {path.stat().st_size}\n".encode())
        digest.update(path.read_bytes())
    return digest.hexdigest()[:16]


def make(folder, architecture, sources, say):
    """Builds the packages into the folder, in place of those of earlier sources."""
    try:
        root = buildroot.root(SUITE, architecture)
    except debianroot.RootError as error:
        raise HandsetError(str(error)) from error
    say(f"building the handset's packages for {architecture}")
    log = CACHE / f"packages-{architecture}.log"
    arguments = ["--build=any", f"-P{PROFILE}"]
    if architecture != buildroot.native():
        arguments = ["--build=any", f"--host-arch={architecture}", f"-P{PROFILE},cross,nocheck"]
    with tempfile.TemporaryDirectory(prefix="build-", dir=CACHE) as scratch:
        source, results = (pathlib.Path(scratch) / name for name in ("source", "results"))
        source.mkdir()
        results.mkdir()
        buildroot.copy_source(source, sources)
        if not buildroot.build(root, " ".join(arguments), source, results, "/build", log):
            raise HandsetError(buildroot.tail(log))
        for path in CACHE.glob(f"packages-{architecture}-*"):
            shutil.rmtree(path)
        results.rename(folder)
