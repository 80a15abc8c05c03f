#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Loads the catalogue and a plug-in that uses it into Python and unloads them, a hundred times.

Usage: host.py CATALOGUE PLUGIN LIBRARY...

The libraries are all those that must go, the catalogue among them. Exits with 1, and says why, where one of them stays,
or the process has more mappings or more memory than after the first ten times.
"""

import _ctypes
import ctypes
import os
import pathlib
import sys

ROUNDS = 100
SETTLED = 10
SPLIT_MAPPINGS = 2  # of a heap
GROWTH = 1 << 20  # bytes, of Python itself


def mappings():
    return pathlib.Path("/proc/self/maps").read_text().splitlines()


def resident():
    return int(pathlib.Path("/proc/self/statm").read_text().split()[1]) * os.sysconf("SC_PAGE_SIZE")


def main(catalogue, plugin, libraries):
    files = {os.path.realpath(name) for name in (catalogue, plugin, *libraries)}
    before = (0, 0)
    for number in range(1, ROUNDS + 1):
        order = (catalogue, plugin) if number % 2 else (plugin, catalogue)
        handles = {name: ctypes.CDLL(name, mode=os.RTLD_NOW | os.RTLD_LOCAL) for name in order}
        if handles[plugin].useCatalogue() != 1:
            sys.exit("the plug-in could not use the catalogue")
        if not files & {line.split()[-1] for line in mappings()}:
            sys.exit("loaded, but not in the memory map")
        for name in reversed(order):
            _ctypes.dlclose(handles[name]._handle)
        left = files & {line.split()[-1] for line in mappings()}
        if left:
            sys.exit(f"still in memory after it was unloaded: {sorted(left)}")
        if number == SETTLED:
            before = (len(mappings()), resident())
    if len(mappings()) > before[0] + SPLIT_MAPPINGS:
        sys.exit(f"{before[0]} mappings have become {len(mappings())}")
    if resident() > before[1] + GROWTH:
        sys.exit(f"{before[1]} bytes have become {resident()}")


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2], sys.argv[3:])
