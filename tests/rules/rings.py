#!/usr/bin/env python3
"""No two files of what is built here call each other in a ring. rings.py SOURCE-FOLDER BUILD-FOLDER

Which file a function or constant stands in is read from the debugging information, so the build may have joined its files;
who uses it, from the relocations of the objects. What comes out of headers counts for each file that uses it.
"""
import bisect
import collections
import graphlib
import os
import re
import subprocess
import sys
import tempfile

FOLDERS = ("main", "commands", "log", "console", "storelib", "facts", "zebstat", "recorder", "simulator")
NM = re.compile(r"[0-9a-f]{16} (\w) (\S+)\t(.*):\d+$")
SECTION = re.compile(r" *\[ *(\d+)\] (\S+) +(\S+) +\S+ (\S+) \S+ \S+ +\S+ +\d+ +(\d+)")
SYMBOL = re.compile(r" *\d+: (\S+) +(\S+) (?:FUNC|OBJECT) +(\w+) +\w+ +(\d+) (\S+)$")
RELOCATION = re.compile(r"([0-9a-f]{16}) +[0-9a-f]+ R_X86_64_\w+ +[0-9a-f]{16} (\S+)(?: ([+-]) ([0-9a-f]+))?$")


def lines_of(*command):
    """What a program prints, line by line."""
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout.splitlines()


class Objects:
    """Where the symbols of the objects stand, and which symbols each of them uses. A local symbol is named with its object."""

    def __init__(self, source, build):
        self.source, self.build = source, build
        self.home = {}
        self.uses = collections.defaultdict(set)

    def file_of(self, path):
        """The source file in one of the folders that a line of debugging information names; None for all others."""
        if path.startswith("build/"):
            path = path[len("build/"):]
        path = os.path.normpath(os.path.join(self.build, path))
        for base in (self.source, self.build):
            inner = os.path.relpath(path, base)
            if inner.split("/")[0] in FOLDERS and inner.endswith(".cpp"):
                return inner
        return None

    def add(self, path):
        """Reads one object."""
        for line in lines_of("nm", "--line-numbers", path):
            if match := NM.match(line):
                kind, name, place = match.groups()
                if kind in "TDBRtdbr" and (file := self.file_of(place)):
                    self.home[self.symbol(path, name, kind.islower())] = file
        with tempfile.NamedTemporaryFile() as bare:  # without the relocations of the debugging information
            subprocess.run(("objcopy", "--strip-debug", path, bare.name), check=True)
            self.add_uses(path, bare.name)

    @staticmethod
    def symbol(path, name, is_local):
        return (path, name) if is_local or name == "main" else name

    def add_uses(self, path, bare):
        names, relocated, spans = {}, {}, collections.defaultdict(list)
        for match in filter(None, map(SECTION.match, lines_of("readelf", "--wide", "--sections", bare))):
            number, name, kind, offset, info = match.groups()
            names[int(number)] = name
            if kind == "RELA":
                relocated[int(offset, 16)] = int(info)
        numbers = {name: number for number, name in names.items()}
        for match in filter(None, map(SYMBOL.match, lines_of("readelf", "--wide", "--symbols", bare))):
            value, size, binding, section, name = match.groups()
            spans[int(section)].append((int(value, 16), int(size, 0), self.symbol(path, name, binding == "LOCAL")))
        for found in spans.values():
            found.sort(key=lambda span: span[:2])

        def symbol_at(section, offset):
            found = spans[section]
            at = bisect.bisect_right(found, offset, key=lambda span: span[0]) - 1
            return found[at][2] if at >= 0 and offset < found[at][0] + found[at][1] else None

        section = None
        for line in lines_of("readelf", "--wide", "--relocs", bare):
            if line.startswith("Relocation section"):
                section = relocated[int(re.search(r"offset 0x([0-9a-f]+)", line)[1], 16)]
            elif match := RELOCATION.match(line):
                user = symbol_at(section, int(match[1], 16))
                used = match[2]
                if used.startswith("."):  # an address in a section, seen from four bytes before the next instruction
                    used = symbol_at(numbers.get(used), int((match[3] or "") + (match[4] or "0"), 16) + 4)
                if user and used:
                    self.uses[user].add(used)

    def calls(self):
        """The pairs of files of which the first uses the second, itself or by way of what headers bring."""
        pairs = set()
        for symbol, file in self.home.items():
            seen, ahead = set(), list(self.uses[symbol])
            while ahead:
                used = ahead.pop()
                if used in seen:
                    continue
                seen.add(used)
                if used not in self.home:
                    ahead += self.uses.get(used, ())
                elif self.home[used] != file:
                    pairs.add((file, self.home[used]))
        return pairs


def main():
    source, build = map(os.path.realpath, sys.argv[1:3])
    objects = Objects(source, build)
    for part in ("CMakeFiles", "zebstat", "recorder", "simulator"):
        for folder, _, names in os.walk(os.path.join(build, part)):
            for name in names:
                if name.endswith(".o"):
                    objects.add(os.path.join(folder, name))
    pairs = objects.calls()
    if len(pairs) < 500:
        sys.exit(f"only {len(pairs)} calls found between the files of {build}")
    graph = collections.defaultdict(set)
    for user, used in pairs:
        graph[user].add(used)
    try:
        graphlib.TopologicalSorter(graph).prepare()
    except graphlib.CycleError as error:
        sys.exit("A ring of files: " + " <- ".join(error.args[1]))


main()
