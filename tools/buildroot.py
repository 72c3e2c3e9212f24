# SPDX-License-Identifier: BSD-3-Clause
"""The Debian root in which packages are built, and what comes into it and out of it."""

import os
import subprocess

import debianroot

PROJECT = debianroot.PROJECT
OUTPUT = PROJECT / 'build' / 'packages'

# The build dependencies of debian/control come on top.
TOOLS = ('build-essential', 'lintian')
RPM_TOOLS = ('rpm', 'rpmlint')
# Where the compiler is asked to build, and the results are to go.
BUILD = r'''
set -e
mkdir -p "$FOLDER"
cp -r /source "$FOLDER/lumd"
cd "$FOLDER/lumd"
dpkg-buildpackage --no-sign $OPTIONS
cp debian/files ..
cd ..
find . -maxdepth 1 -type f -exec cp -t /results {} +
'''
BUILD_DEPENDENCIES = 'apt-get --yes --no-install-recommends build-dep {options} /source'


def native():
    """The architecture of this machine."""
    return subprocess.run(['dpkg', '--print-architecture'], check=True, stdout=subprocess.PIPE,
                          text=True).stdout.strip()


def arguments(what, architecture, *profiles):
    """Those of dpkg-buildpackage, to build that much. The source package and what fits all
    architectures come with the native build."""
    words = [f'--build={what}']
    if architecture != native():
        words = ['--build=any', f'--host-arch={architecture}']
        profiles += ('cross', 'nocheck')
    if profiles:
        words.append(f'-P{",".join(profiles)}')
    return ' '.join(words)


def root(suite, architecture):
    """The root with all that a build for the architecture takes; RPM packages are built in this
    machine's own."""
    if subprocess.run([PROJECT / 'tools' / 'setup', '--package'], check=False).returncode != 0:
        raise debianroot.RootError('what packages are built with is not there')
    control = PROJECT / 'debian' / 'control'
    here = native()
    if architecture == here:
        return debianroot.root(f'build-{here}', suite, TOOLS + RPM_TOOLS, (here,),
                               BUILD_DEPENDENCIES.format(options=''), control)
    return debianroot.root(
        f'build-{architecture}', suite, (*TOOLS, f'crossbuild-essential-{architecture}'),
        (here, architecture),
        BUILD_DEPENDENCIES.format(options=f'--host-architecture {architecture} -P cross,nocheck'),
        control)


def source_files():
    """The files of the checkout, whether committed yet or not, by their paths within it."""
    listed = subprocess.run(
        ['git', '-C', PROJECT, '-c', 'safe.directory=*', 'ls-files', '-z', '--cached', '--others',
         '--exclude-standard'], check=True, stdout=subprocess.PIPE).stdout
    names = sorted({os.fsdecode(name) for name in listed.split(b'\0') if name})
    return [name for name in names if (PROJECT / name).is_file()]


def copy_source(target, names=None):
    """Copies these files of the checkout, or all."""
    listed = b'\0'.join(map(os.fsencode, names or source_files()))
    archive = subprocess.run(
        ['tar', '-C', PROJECT, '--null', '--files-from=-', '--owner=0', '--group=0',
         '--mode=u=rwX,go=rX', '-cf', '-'], input=listed, check=True,
        stdout=subprocess.PIPE).stdout
    subprocess.run(['tar', '-C', target, '-xf', '-'], input=archive, check=True)


def build(in_root, options, source, results, folder, log, binds=()):
    """Builds the packages in a folder of the root, with these options for dpkg-buildpackage. What
    there is to say is in the log."""
    with open(log, 'w', encoding='utf-8') as text:
        done = in_root.run('env', f'FOLDER={folder}', f'OPTIONS={options}', 'sh', '-c', BUILD,
                           binds=[(source, '/source', 'ro'), (results, '/results', 'rw'), *binds],
                           stdout=text, stderr=text)
    if done.returncode != 0:
        raise debianroot.RootError(tail(log))


def tail(log):
    """What there is to say of a build that failed."""
    lines = log.read_text(encoding='utf-8', errors='replace').splitlines()[-40:]
    return '\n'.join([*(line[:200] for line in lines), f'The build failed; all of it is in {log}.'])
