#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Tries the walls between the rooms: walls.py <source folder> <build folder> <compiler>

Each room is asked, by the very command that compiles its sources, for a header of every other room. What the table
below doesn't allow must not compile; what the room's sources use must, or the refusals would prove nothing. Within the rooms no
files may include each other in a ring.
"""

import collections
import concurrent.futures
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

# What each room may use. This is the plan of the house, and stands here apart from what CMake links.
MAY_USE = {
    "platform": [],
    "platform/xml": ["platform"],
    "platform/net": ["platform"],
    "support": ["platform"],
    "controls": ["platform"],
    "engine/feed": ["platform", "platform/xml"],
    "core": ["support", "platform", "platform/xml"],
    "engine": ["engine/feed", "core", "support", "platform", "platform/net"],
    "exchange": ["engine/feed", "core", "platform", "platform/xml", "platform/net"],
    "reading": ["engine", "engine/feed", "core", "controls", "platform"],
    "reading/web": ["platform"],
    "dialogs": ["exchange", "core", "engine/feed", "support", "controls", "platform"],
    "window": ["dialogs", "reading", "exchange", "engine", "engine/feed", "core", "controls", "support", "platform",
               "platform/xml", "platform/net"],
    "app": ["window", "dialogs", "reading", "exchange", "engine", "engine/feed", "core", "controls", "support",
            "platform", "platform/xml", "platform/net"],
}

# The one header of "reading" that its module knows.
ALSO = {"reading/web": ["reading/WebPane.h"]}

# Headers of the libraries, and the rooms that may reach them.
LIBRARIES = {
    "QWidget": {"controls", "dialogs", "reading", "reading/web", "window", "app"},
    "QNetworkAccessManager": {"platform/net", "engine", "exchange", "reading/web", "window", "app"},
    "QWebEngineView": {"reading/web"},
    "libxml/tree.h": {"platform/xml", "engine/feed"},
}

INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)

source, build, compiler = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), sys.argv[3]
faults = []


def room_of(header):
    return str(pathlib.PurePath(header).parent)


def includes_of_sources():
    """For each source file of the tree, what it includes of the tree."""
    result = {}
    for top in sorted({room.split("/")[0] for room in MAY_USE} | {"tests", "bench", "fuzz"}):
        for path in sorted((source / top).rglob("*")):
            if path.suffix in (".h", ".cpp"):
                result[str(path.relative_to(source))] = INCLUDE.findall(path.read_text(encoding="utf-8"))
    return result


def check_spelling(includes):
    """An include by a relative path goes through no wall, so there is none."""
    for file, headers in includes.items():
        room = room_of(file)
        if room.split("/")[0] not in ("tests", "bench", "fuzz") and room not in MAY_USE:
            faults.append(f"{file}: its folder is no room of the table")
        for header in headers:
            own = header.endswith(".moc") and room_of(header) == "."
            if not own and room_of(header) not in MAY_USE and not header.startswith(("tests/", "bench/")):
                faults.append(f"{file} includes \"{header}\", which doesn't name a room and its header")


def check_rings(includes):
    """A header and its source are one unit; no unit leads back to itself."""
    led_to = collections.defaultdict(set)
    for file, headers in includes.items():
        unit = file.rsplit(".", 1)[0]
        led_to[unit] |= {header.removesuffix(".h") for header in headers if header in includes} - {unit}
    settled, path = set(), []

    def walk(unit):
        if unit in path:
            faults.append("a ring of files: " + " -> ".join(path[path.index(unit):] + [unit]))
        elif unit not in settled:
            path.append(unit)
            for other in sorted(led_to[unit]):
                walk(other)
            settled.add(path.pop())

    for unit in sorted(led_to):
        walk(unit)


def commands():
    """For each room, the command that compiles one of its sources, without the source and what is written."""
    result = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        room = room_of(os.path.relpath(entry["file"], source))
        words = shlex.split(entry["command"])
        words = words[words.index(compiler) + 1:]
        kept, skip = [], False
        for word in words:
            if skip or word in ("-MD", "-c", entry["file"]):
                skip = False
            elif word in ("-o", "-MT", "-MF"):
                skip = True
            else:
                kept.append(word)
        result.setdefault(room, (entry["directory"], kept))
    return result


def compiles(command, headers):
    """As far as an include can fail: all files it leads to are found, or one isn't."""
    directory, words = command
    text = "".join(f"#include {header}\n" for header in headers)
    run = subprocess.run([compiler, *words, "-E", "-x", "c++", "-"], cwd=directory, input=text, text=True,
                         capture_output=True, check=False, env={**os.environ, "LC_ALL": "C"})
    return run.returncode == 0, run.stderr


def must_compile(room, command, headers):
    done, errors = compiles(command, headers)
    return [] if done else [f"{room} doesn't reach what it uses:\n{errors}"]


def must_fail(room, command, header):
    done, errors = compiles(command, [header])
    if not done and re.search("No such file|file not found", errors):
        return []
    return [f"{room} reaches {header}" + ("" if done else f", or the probe is wrong:\n{errors}")]


includes = includes_of_sources()
check_spelling(includes)
check_rings(includes)

# The header by which a room is known best stands for it.
asked_for = collections.Counter(header for file, headers in includes.items() for header in headers
                                if room_of(header) != room_of(file) and header not in sum(ALSO.values(), []))
probes = {room: max((file for file in includes if room_of(file) == room and file.endswith(".h")),
                    key=lambda file: asked_for[file], default=None) for room in MAY_USE}
command_of = commands()

jobs = []
for room, allowed in MAY_USE.items():
    if room not in command_of or probes[room] is None:
        faults.append(f"{room}: no source or no header found")
        continue
    command = command_of[room]
    used = {header for file, headers in includes.items() if room_of(file) == room for header in headers
            if header in includes and header != probes[room]}
    reached = [probes[room]] + [next(iter(sorted(header for header in used if room_of(header) == other)), None)
                                for other in allowed] + ALSO.get(room, [])
    jobs.append((must_compile, room, command, [f'"{header}"' for header in reached if header is not None]))
    for other, probe in probes.items():
        if probe is None or other == room or other in allowed:
            continue
        jobs.append((must_fail, room, command, f'"{probe}"'))
    for header, rooms in LIBRARIES.items():
        if room not in rooms:
            jobs.append((must_fail, room, command, f"<{header}>"))

with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
    for found in pool.map(lambda job: job[0](*job[1:]), jobs):
        faults.extend(found)

for fault in faults:
    print(fault)
print(f"{len(jobs)} includes tried, {len(faults)} faults")
sys.exit(1 if faults else 0)
