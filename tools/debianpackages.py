# SPDX-License-Identifier: BSD-3-Clause
"""Builds the Debian packages in a clean Debian root, and leaves them in build/packages.

  sudo tools/package [--arch amd64|arm64] [--suite trixie] [--check]

For another architecture than this machine's they are cross-built. Those that were built of the
present sources, for the virtual handset as well, are taken from .cache/package/built. The packages must
please lintian. --check builds all of the sources once more, in a folder of another name, and fails
unless both have the same bytes. The first run installs a root with all that the build takes, a few
minutes; it is kept in .cache/package until debian/control or what goes into it changes.
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
import packagebuilds

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
        package(options)
    except debianroot.RootError as error:
        sys.exit(str(error))


def package(options):
    built = packagebuilds.shipped(options.arch, options.suite)
    root = buildroot.root(options.suite, options.arch)
    buildroot.OUTPUT.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(prefix='lumd-package-') as scratch:
        folders = [pathlib.Path(scratch) / name for name in ('source', 'first', 'second')]
        source, first, second = folders
        for folder in folders:
            folder.mkdir()
        buildroot.copy_source(source)
        arguments = buildroot.arguments('full', options.arch)
        log = buildroot.OUTPUT / f'build-{options.arch}.log'
        buildroot.build(
            root, f'{arguments} --rules-file=/tools/place-built', source, first, '/build', log,
            [(built, '/built', 'ro'), (buildroot.PROJECT / 'tools', '/tools', 'ro')])
        if root.run('sh', '-c', LINTIAN, binds=[(first, '/results', 'ro')]).returncode != 0:
            sys.exit('lintian is not content with the packages.')
        if options.check:
            folder = '/var/tmp/a/second/build'
            print(f'building all for {options.arch} once more, in {folder}', flush=True)
            buildroot.build(root, arguments, source, second, folder, log)
            compare(first, second)
        for path in results_in(first):
            shutil.copyfile(path, buildroot.OUTPUT / path.name)
            if path.suffix == '.deb':
                print(f'{path.stat().st_size:>9} build/packages/{path.name}')


def results_in(folder):
    """The packages and what is told of them: name, version, architecture."""
    return sorted(folder.glob('*_*'))


def compare(first, second):
    """All but the protocols of the build, which tell where and when it was."""
    sums = [{path.name: hashlib.sha256(path.read_bytes()).hexdigest()
             for path in results_in(folder) if path.suffix not in ('.buildinfo', '.changes')}
            for folder in (first, second)]
    differing = sorted(name for name in sums[0].keys() | sums[1].keys()
                       if sums[0].get(name) != sums[1].get(name))
    if differing:
        sys.exit(f'Two builds differ in {", ".join(differing)}.')
    print(f'Two builds gave the same {len(sums[0])} files.')


if __name__ == '__main__':
    main()
