# SPDX-License-Identifier: BSD-3-Clause
"""What the chapters of the demo's story share."""

import shlex

# What lumd says of links that break before it hears that the runtime goes down.
LOST_LINKS = [f"{service} died! Trying to reconnect."
              for service in ("package", "activity", "alarm", "alien")]


class StepFailed(Exception):
    """What was seen is not what should be."""


class Steps:
    """A chapter of the story: `steps` are its methods, in order; each raises when it fails."""

    def __init__(self, handset):
        self.device = handset
        self.machine = handset.machine

    @staticmethod
    def show(text):
        for line in text.splitlines():
            print(f"    {line}", flush=True)

    @staticmethod
    def check(holds, complaint):
        if not holds:
            raise StepFailed(complaint)

    def expect(self, found, expected):
        self.check(found == expected, f"is {found}\nand should be {expected}")

    def lumctl(self, *arguments, user="root", code=0):
        """Shows and runs a command of lumctl, which must end with this code; gives what it said."""
        command = shlex.join(["lumctl", *arguments])
        self.show(f"$ {command}" if user == "root" else f"as {user}: $ {command}")
        words = self.device.as_user(user, "lumctl", *arguments)
        result = self.machine.shell(f"{shlex.join(words)} 2>&1", check=False)
        said = result.stdout.strip()
        self.show(said)
        self.expect(result.returncode, code)
        return said

    def check_files(self, *groups):
        """The files on the handset are exactly those that the apps give."""
        expected = {path: data for group in groups for path, data in group.items()}
        found = self.device.files()
        problems = [f"missing: {path}" for path in expected if path not in found]
        problems += [f"not expected: {path}" for path in found if path not in expected]
        problems += [f"has other contents: {path}" for path in expected
                     if path in found and found[path].data != expected[path]]
        self.check(not problems, "\n".join(problems))
        return found

    def expect_states(self, *states):
        """The last states that lumd was told of are these."""
        self.device.wait(lambda: self.device.seen_states()[-len(states):] == list(states),
                         f"lumd sees {' -> '.join(states)}")
        self.show(f"as lumd sees it: {' -> '.join(states)}")

    def no_complaint(self, *expected):
        """Nobody has complained, but for these lines of lumd's log."""
        warnings = [line.text for line in self.device.log(priority="warning")
                    if line.text not in LOST_LINKS]
        self.check(sorted(warnings) == sorted(expected), "\n".join(warnings))
        errors = self.device.runtime_errors()
        self.check(not errors, f"the runtime complains: {errors}")
        self.show("no warning from lumd that should not be, no wrong byte seen by the runtime")
