# SPDX-License-Identifier: BSD-3-Clause
"""Builds the Debian packages in a clean Debian root, and leaves them in build/packages.

  sudo tools/package [--arch amd64|arm64] [--suite trixie] [--check]

For another architecture than this machine's they are cross-built. The packages must please
lintian. --check builds them a second time, in a folder of another name, and fails unless both
have the same bytes. The first run installs a root with all that the build takes, a few minutes;
it is kept in .cache/package until debian/control or what goes into it changes.
"""

import argparse
import hashlib
import os
import pathlib
import shutil
import sys
import tempfile

import buildroot
import debianroot

ARCHITECTURES = ('amd64', 'arm64')

LINTIAN = r'''
lintian --allow-root --profile debian --fail-on error,warning --info /results/lumd_*.changes
'''


def main():
    parser = argparse.ArgumentParser(prog='tools/package', description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('--arch', choices=ARCHITECTURES, default=buildroot.native())
    parser.add_argument('--suite', default='trixie')
    parser.add_argument('--check', action='store_true')
    options = parser.parse_args()
    if os.geteuid() != 0:
        sys.exit('The packages are built in a root of their own: run this with sudo.')
    try:
        package(buildroot.root(options.suite, options.arch), options)
    except debianroot.RootError as error:
        sys.exit(str(error))


def package(root, options):
    buildroot.OUTPUT.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(prefix='lumd-package-') as scratch:
        folders = [pathlib.Path(scratch) / name for name in ('source', 'first', 'second')]
        source, first, second = folders
        for folder in folders:
            folder.mkdir()
        buildroot.copy_source(source)
        build(root, options, source, first, '/build')
        if root.run('sh', '-c', LINTIAN, binds=[(first, '/results', 'ro')]).returncode != 0:
            sys.exit('lintian is not content with the packages.')
        if options.check:
            build(root, options, source, second, '/var/tmp/a/second/build')
            compare(first, second)
        for path in sorted(first.iterdir()):
            shutil.copyfile(path, buildroot.OUTPUT / path.name)
            if path.suffix == '.deb':
                print(f'{path.stat().st_size:>9} build/packages/{path.name}')


def build(root, options, source, results, folder):
    print(f'building for {options.arch} in {folder}', flush=True)
    log = buildroot.OUTPUT / f'build-{options.arch}.log'
    # The source package and what fits all architectures come with the native build.
    arguments = ('--build=full' if options.arch == buildroot.native()
                 else f'--build=any --host-arch={options.arch} -Pcross,nocheck')
    if not buildroot.build(root, arguments, source, results, folder, log):
        sys.exit(buildroot.tail(log))


def compare(first, second):
    """All but the protocols of the build, which tell where and when it was."""
    sums = [{path.name: hashlib.sha256(path.read_bytes()).hexdigest()
             for path in folder.iterdir() if path.suffix not in ('.buildinfo', '.changes')}
            for folder in (first, second)]
    differing = sorted(name for name in sums[0].keys() | sums[1].keys()
                       if sums[0].get(name) != sums[1].get(name))
    if differing:
        sys.exit(f'Two builds differ in {", ".join(differing)}.')
    print(f'Two builds gave the same {len(sums[0])} files.')


if __name__ == '__main__':
    main()
