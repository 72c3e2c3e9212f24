# SPDX-License-Identifier: BSD-3-Clause
"""A shell that runs one script after another.

A session of ssh for each script costs the handset's emulated processor more than most scripts do.
"""

import contextlib
import os
import re
import selectors
import shlex
import subprocess
import time
import uuid
import weakref

CHUNK = 65536


class ShellLost(Exception):
    """The shell ended, in a script or before it."""


class RemoteShell:
    """A POSIX shell that a command, such as ssh's, starts elsewhere.

    Each script has a process of its own, in which it has nothing to read. What it leaves running
    must not write to its outputs.
    """

    def __init__(self, command):
        self.process = subprocess.Popen([*command, "exec sh"], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        # Ends the shell, also when nobody knows it any more; a script in it is left to itself.
        self.close = weakref.finalize(self, close, self.process)
        # Stands behind what a script said, on both outputs; no script knows it.
        self.mark = uuid.uuid4().hex
        self.end = re.compile(rb"%s (\d+)\n" % self.mark.encode())

    def run(self, script, timeout):
        """Gives the CompletedProcess of a script, output as text.

        ShellLost when the shell is gone; subprocess.TimeoutExpired when the script takes more
        seconds than that from when it was sent, in which it still is: this shell is of no more use
        then.
        """
        line = (f"(eval {shlex.quote(script)}\n) < /dev/null; status=$?\n"
                f'echo "{self.mark} $status"; echo "{self.mark} $status" >&2\n')
        # A shell that has ended is seen, with what it said, where its outputs end.
        with contextlib.suppress(BrokenPipeError):
            self.process.stdin.write(line.encode())
            self.process.stdin.flush()
        marks = self.read(script, timeout)
        output, errors = (mark.string[:mark.start()].decode() for mark in marks)
        return subprocess.CompletedProcess(script, int(marks[0][1]), output, errors)

    def read(self, script, timeout):
        """Reads both outputs up to their marks; gives the matches of these."""
        deadline = time.monotonic() + timeout
        texts = {self.process.stdout: b"", self.process.stderr: b""}
        found = {}
        with selectors.DefaultSelector() as selector:
            for stream in texts:
                selector.register(stream, selectors.EVENT_READ)
            while len(found) < len(texts):
                for key, _ in selector.select(max(0, deadline - time.monotonic())):
                    stream = key.fileobj
                    chunk = os.read(stream.fileno(), CHUNK)
                    texts[stream] += chunk
                    if match := self.end.search(texts[stream]):
                        found[stream] = match
                    if match or not chunk:
                        selector.unregister(stream)
                if len(found) < len(texts):
                    if not selector.get_map():
                        said = b"".join(texts.values()).decode(errors="replace")
                        raise ShellLost(f"the shell ended, having said '{said}', in this")
                    if time.monotonic() > deadline:
                        raise subprocess.TimeoutExpired(script, timeout)
        return [found[stream] for stream in texts]


def close(process):
    process.kill()
    process.wait()
    for stream in (process.stdin, process.stdout, process.stderr):
        # What it did not read is of no more interest.
        with contextlib.suppress(BrokenPipeError):
            stream.close()
