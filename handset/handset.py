#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
"""The virtual handset: builds, boots, enters and stops it."""

import argparse
import subprocess
import sys
import time

import androidlevels
import device
import image
import machine
import packages

import buildroot


def build(arguments):
    print(image.build(arguments.arch).folder)
    for package in packages.build(arguments.arch):
        print(package)


def boot(arguments):
    handset = machine.Machine(arguments.name)
    if arguments.again:
        handset.stop()
    wanted = [] if arguments.bare else packages.build(arguments.arch)
    seconds = handset.boot(arguments.arch)
    print(f"handset '{arguments.name}' is up after {seconds:.1f} s; "
          f"its console: {handset.console}")
    if wanted:
        started = time.monotonic()
        handset.install(wanted)
        print(f"its packages are installed after {time.monotonic() - started:.1f} s more")
        if arguments.sdk != androidlevels.DEFAULT_SDK:
            device.Device(handset).set_sdk(arguments.sdk)


def run(arguments):
    return machine.Machine(arguments.name).interact(*arguments.command)


def shell(arguments):
    return machine.Machine(arguments.name).interact()


def sdk(arguments):
    device.Device(machine.Machine(arguments.name)).set_sdk(arguments.level)


def stop(arguments):
    machine.Machine(arguments.name).stop()


def parse():
    parser = argparse.ArgumentParser(description=__doc__)
    commands = parser.add_subparsers(required=True, metavar="COMMAND")

    def command(function, summary):
        added = commands.add_parser(function.__name__, help=summary, description=summary)
        added.set_defaults(function=function)
        if function is not build:
            added.add_argument("--name", default="default",
                               help="which handset, where several run (default: %(default)s)")
        return added

    builds = command(build, "build the base image and the packages, if they are not there yet")
    boots = command(boot, "boot the handset, and install the packages on it")
    for added in (builds, boots):
        added.add_argument("--arch", choices=image.ARCHITECTURES, default=buildroot.native(),
                           help="architecture of the handset (default: %(default)s)")
    boots.add_argument("--bare", action="store_true", help="install nothing")
    boots.add_argument("--again", action="store_true", help="stop it first, if it runs")
    boots.add_argument("--sdk", type=int, choices=androidlevels.PROTOCOLS,
                       default=androidlevels.DEFAULT_SDK,
                       help="Android level (default: %(default)s)")
    runs = command(run, "run a command on the handset")
    runs.add_argument("command", nargs=argparse.REMAINDER)
    command(shell, "open a shell on the handset")
    levels = command(sdk, "change the Android level of a running handset")
    levels.add_argument("level", type=int, choices=androidlevels.PROTOCOLS)
    command(stop, "stop the handset")
    return parser.parse_args()


def main():
    arguments = parse()
    try:
        return arguments.function(arguments) or 0
    except (image.HandsetError, subprocess.SubprocessError) as error:
        print(f"handset: {error}", file=sys.stderr)
        return 1


if __name__ == "__main__":
    sys.exit(main())
