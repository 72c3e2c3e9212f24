# SPDX-License-Identifier: BSD-3-Clause
"""Root file systems of a Debian release, made once from the packages of the machine's own mirror
and kept in .cache/package, and commands that run in one without a trace."""

import contextlib
import fcntl
import hashlib
import inspect
import os
import pathlib
import shlex
import shutil
import subprocess
import tempfile

PROJECT = pathlib.Path(__file__).resolve().parent.parent
CACHE = PROJECT / '.cache' / 'package'
KEYRING = '/usr/share/keyrings/debian-archive-keyring.gpg'
CERTIFICATES = '/etc/ssl/certs/ca-certificates.crt'

# Runs in namespaces of its own, and writes to a layer in memory that goes with them. In a chroot
# the root is no mount point, and its mounts cannot be made private.
INSIDE = r'''
set -e
mount --make-rprivate / 2>/dev/null || :
mount -t tmpfs -o mode=755 tmpfs "$LAYER"
mkdir "$LAYER/changed" "$LAYER/work" "$LAYER/root"
mount -t overlay -o "lowerdir=$LOWER,upperdir=$LAYER/changed,workdir=$LAYER/work" \
    overlay "$LAYER/root"
mount -t proc proc "$LAYER/root/proc"
mount -t devpts devpts "$LAYER/root/dev/pts"
mount -t tmpfs tmpfs "$LAYER/root/dev/shm"
while [ "$1" != -- ]; do
    mkdir -p "$LAYER/root$2"
    mount --bind -o "$3" "$1" "$LAYER/root$2"
    mount -o "remount,bind,$3" "$LAYER/root$2"
    shift 3
done
shift
exec chroot "$LAYER/root" env -i HOME=/root LC_ALL=C.UTF-8 \
    PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin "$@"
'''


class RootError(Exception):
    """Something that the user can read and act on."""


class Root:
    """A root file system that nobody changes."""

    def __init__(self, folder):
        self.folder = folder

    def run(self, *command, binds=(), **options):
        """Runs a command in a passing copy of it, without a network. The binds are triples of a
        folder of this machine, its place in there and "ro" or "rw"."""
        with tempfile.TemporaryDirectory(prefix='lumd-layer-') as layer:
            words = [str(word) for bind in binds for word in bind]
            return subprocess.run(
                ['unshare', '--mount', '--propagation=unchanged', '--pid', '--fork',
                 '--kill-child', '--net', '--ipc', '--uts', 'sh', '-c', INSIDE, 'sh', *words,
                 '--', *(str(word) for word in command)],
                env=dict(os.environ, LOWER=str(self.folder), LAYER=layer),
                check=False, **options)


def root(name, suite, packages, architectures=(), setup='', control=None, say=print):
    """The root file system with these packages; the first architecture is the machine's own.

    The setup is run by the shell of the new root, once its packages are there, with a network and
    with the file debian/control, if given, in /source/debian.
    """
    sources = package_sources(suite)
    digest = hashlib.sha256(repr(
        [inspect.getsource(make), inspect.getsource(bootstrap), suite, packages, architectures,
         setup, control and control.read_bytes(), sources]).encode()).hexdigest()[:16]
    folder = CACHE / f'{name}-{suite}-{digest}'
    CACHE.mkdir(parents=True, exist_ok=True)
    with exclusive(CACHE / f'{name}.lock'):
        if not folder.is_dir():
            if os.geteuid() != 0:
                raise RootError('a root file system is made by root: run this with sudo')
            for path in CACHE.glob(f'{name}-{suite}-*'):
                shutil.rmtree(path)
            say(f'installing Debian {suite} for {name} (once, a few minutes)')
            make(folder, suite, packages, architectures, setup, control, sources)
    return Root(folder)


def make(folder, suite, packages, architectures, setup, control, sources):
    """In a folder beside the right one, so that half a root is never taken for a whole one."""
    with tempfile.TemporaryDirectory(prefix='half-', dir=CACHE) as scratch:
        half = pathlib.Path(scratch) / 'root'
        options = []
        if control:
            options.append('--customize-hook=install -D -m 644 '
                           f'{shlex.quote(str(control))} "$1/source/debian/control"')
        if setup:
            options.append(f'--customize-hook=chroot "$1" sh -ec {shlex.quote(setup)}')
        options.append('--customize-hook=rm -rf "$1/source"')
        if architectures:
            options.append(f'--architectures={",".join(architectures)}')
        log = folder.with_name(folder.name.rsplit('-', 2)[0] + '.log')
        bootstrap(half, suite, packages, options, sources, log)
        half.rename(folder)


def bootstrap(target, suite, packages, options, sources, log, **environment):
    """Installs a release with these packages, by mmdebstrap with these options."""
    hooks = []
    if pathlib.Path(CERTIFICATES).exists():
        hooks.append(f'--setup-hook=install -D -m 644 {CERTIFICATES} "$1"{CERTIFICATES}')
    command = ['unshare', '--mount', '--propagation=unchanged', 'sh', '-c',
               'mount --make-rprivate / 2>/dev/null; exec "$@"', 'sh',
               'mmdebstrap', '--mode=root', '--variant=minbase', *apt_options(), *hooks, *options,
               '--dpkgopt=force-unsafe-io', f'--include={",".join(packages)}']
    with open(log, 'w', encoding='utf-8') as output:
        done = subprocess.run([*command, suite, str(target), '-'], check=False, text=True,
                              input='\n'.join(sources) + '\n', stdout=output, stderr=output,
                              env=dict(os.environ, **environment))
    if done.returncode != 0:
        tail = log.read_text(encoding='utf-8', errors='replace').splitlines()[-40:]
        raise RootError('\n'.join(['mmdebstrap failed:', *tail]))


def package_sources(suite):
    """A release with its updates and backports, from where this machine takes Debian."""
    mirrors = {}
    for line in apt('indextargets', '--format', '$(LABEL)|$(REPO_URI)',
                    'Created-By: Packages', 'Origin: Debian').splitlines():
        label, _, uri = line.partition('|')
        mirrors.setdefault(label, uri)
    if 'Debian' not in mirrors:
        raise RootError("apt knows no mirror of Debian: run 'apt-get update' first")
    parts = [(mirrors['Debian'], name) for name in (suite, f'{suite}-updates',
                                                    f'{suite}-backports')]
    if 'Debian-Security' in mirrors:
        parts.append((mirrors['Debian-Security'], f'{suite}-security'))
    return [f'deb [signed-by={KEYRING}] {uri} {name} main' for uri, name in parts]


def apt_options():
    """How this machine's apt fetches, handed on: proxies, certificates, patience."""
    return [f'--aptopt={line}' for line in subprocess.run(
        ['apt-config', 'dump'], check=True, stdout=subprocess.PIPE, text=True).stdout.splitlines()
            if line.startswith('Acquire::') and not line.endswith('"";')
            and line.split('::')[1].split()[0] in ('http', 'https', 'Check-Date',
                                                   'Check-Valid-Until', 'Retries')]


def apt(*arguments):
    return subprocess.run(['apt-get', *arguments], check=True, stdout=subprocess.PIPE,
                          text=True).stdout


@contextlib.contextmanager
def exclusive(path):
    """Holds a lock file, so that two builds do not meet."""
    # To read, so that whoever may not write the folder can lock a file that is there.
    lock = os.open(path, os.O_RDONLY | os.O_CREAT, 0o644)
    try:
        fcntl.flock(lock, fcntl.LOCK_EX)
        yield
    finally:
        os.close(lock)
