# SPDX-License-Identifier: BSD-3-Clause
"""The packages of the present sources, built once for all who ask for them: the handset, which
installs them, and tools/package.

They are built in the root of tools/package, and kept beside it, in .cache/package/built, under a
hash of what they are made from and by. With them lies a list of them in "files", as debian/files has
it.
"""

import functools
import hashlib
import os
import pathlib
import shutil
import tempfile

import buildroot
import debianroot

BUILT = debianroot.CACHE / 'built'

# What users' packages are not made of.
BESIDE = ('.ci/', 'bench/', 'debian/tests/', 'docs/benchmarks.md', 'docs/pictures/',
          'docs/testing.md', 'fuzz/', 'handset/', 'tests/', 'tools/')
# What the simulated runtime's is made of.
RUNTIME = ('cmake/', 'debian/', 'handset/runtime/')
RUNTIME_PROFILE = 'pkg.lumd.handset'

SAY = functools.partial(print, flush=True)


def shipped(architecture, suite, say=SAY):
    """The folder of the packages that users get, built first if they are not there."""
    sources = [name for name in buildroot.source_files() if not name.startswith(BESIDE)]
    return built('lumd', buildroot.arguments('binary', architecture), architecture, suite,
                 sources, say)


def handset_runtime(architecture, suite, say=SAY):
    """The folder of the simulated runtime's package, built first if it is not there."""
    sources = [name for name in buildroot.source_files() if name.startswith(RUNTIME)]
    return built('lumd-handset-runtime',
                 buildroot.arguments('any', architecture, RUNTIME_PROFILE), architecture, suite,
                 sources, say)


def built(name, arguments, architecture, suite, sources, say):
    """The folder of what dpkg-buildpackage makes of these sources with these arguments. Who comes
    while another builds it waits, and takes what he has built."""
    BUILT.mkdir(parents=True, exist_ok=True)
    kind = f'{name}_{suite}_{architecture}'
    folder = BUILT / f'{kind}_{digest(arguments, suite, sources)}'
    with debianroot.exclusive(BUILT / f'{kind}.lock'):
        if not folder.is_dir():
            if os.geteuid() != 0:
                raise debianroot.RootError(f'{name} is built in a root of its own: run '
                                           '"tools/package" or "handset/handset.py build" with sudo')
            say(f'building {name} for {architecture}')
            make(folder, BUILT / f'{kind}.log', arguments, architecture, suite, sources)
            for earlier in set(BUILT.glob(f'{kind}_*')) - {folder}:
                shutil.rmtree(earlier)
    return folder


def digest(arguments, suite, sources, folder=None):
    """The hash of all that decides what is built; of the sources in a folder, or in the checkout."""
    hashed = hashlib.sha256(f'{arguments} {suite}\n'.encode())
    for module in (__file__, buildroot.__file__, debianroot.__file__):
        hashed.update(pathlib.Path(module).read_bytes())
    for name in sources:
        path = (folder or buildroot.PROJECT) / name
        status = path.stat()
        mode = 'x' if status.st_mode & 0o111 else '-'
        hashed.update(f'{name} {mode} {status.st_size}\n'.encode())
        hashed.update(path.read_bytes())
    return hashed.hexdigest()[:16]


def make(folder, log, arguments, architecture, suite, sources):
    """Builds into a folder beside the right one, so that half of it is never taken for the whole."""
    root = buildroot.root(suite, architecture)
    with tempfile.TemporaryDirectory(prefix='half-', dir=BUILT) as scratch:
        source, results = (pathlib.Path(scratch) / name for name in ('source', 'results'))
        source.mkdir()
        results.mkdir()
        buildroot.copy_source(source, sources)
        if not folder.name.endswith(digest(arguments, suite, sources, source)):
            raise debianroot.RootError('the sources have changed meanwhile: run it again')
        buildroot.build(root, arguments, source, results, '/build', log)
        results.rename(folder)
