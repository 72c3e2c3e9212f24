#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
"""Prints the name of every scenario of this folder, one a line."""

import pathlib
import sys
import unittest

HERE = pathlib.Path(__file__).resolve().parent


def names(suite):
    for item in suite:
        if isinstance(item, unittest.TestSuite):
            yield from names(item)
        else:
            yield item.id()


def main():
    loader = unittest.TestLoader()
    found = sorted(names(loader.discover(HERE, pattern="test_*.py")))
    if loader.errors or not found:
        print("\n".join(loader.errors) or "no scenario found", file=sys.stderr)
        return 1
    print("\n".join(found))
    return 0


if __name__ == "__main__":
    sys.exit(main())
