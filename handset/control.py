# SPDX-License-Identifier: BSD-3-Clause
"""The runtime's control client, alienctl, in this process."""

import importlib.machinery
import importlib.util
import pathlib


def load():
    path = pathlib.Path(__file__).resolve().parent / "runtime" / "alienctl"
    loader = importlib.machinery.SourceFileLoader("alienctl", str(path))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("alienctl", loader))
    loader.exec_module(module)
    return module


ALIENCTL = load()
# Where the runtime listens, on the handset.
SOCKET = ALIENCTL.SOCKET


def ask(command, path):
    """Asks over the socket of that path what alienctl asks for that command line.

    OSError or ValueError when there is no answer.
    """
    options = ALIENCTL.parser().parse_args(command)
    return ALIENCTL.ask(options.make(options), options.timeout + ALIENCTL.PATIENCE, str(path))
