#!/usr/bin/env python3
"""Holds the #include lines of the tree against the arrows that its folders may have.

A room is a folder with one purpose (a platform module's headers, the library's sources, the
examples). Every quoted include must lead to exactly one header, beside the including file or in a
room that its own may look into; neither files nor rooms may form a circle.
"""

import re
import sys
from pathlib import Path

PUBLIC = "library/include"
SOURCES = "library/src"

# What each platform module may use of the others, directly or through them.
BASE = ["VUKBasAlloc", "VUKBasCoreUtils", "VUKBasShared", "VUKBasGenericsLib"]
MODULES = {
    "VUKBasAlloc": [],
    "VUKBasCoreUtils": BASE[:1],
    "VUKBasShared": BASE[:2],
    "VUKBasGenericsLib": BASE[:3],
    "VUKSimContainers": BASE,
    "VUKSimUtt": BASE,
    "VUKSimExc": BASE[:2],
}
# Single headers that a module may include although the rest of their room is closed to it.
SINGLE_HEADERS = {"VUKSimExc": {"VUKSimUttExceptionString.h"}}

INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"')
SUFFIXES = {".h", ".cpp"}


def room_of(path):
    """The room of a path relative to the tree, or None for files outside all rooms."""
    parts = path.parts
    if parts[0] == "platform" and len(parts) > 3:
        return "/".join(parts[:3])
    if parts[0] == "VUKSim" and len(parts) > 3:
        return "library/" + parts[2]
    if parts[0] == "tests" and len(parts) > 2:
        return "/".join(parts[:2])
    if parts[0] in ("examples", "tools") and len(parts) > 3 and parts[2] == "tests":
        return "/".join(parts[:3])
    if parts[0] in ("examples", "tools", "bench", "fuzz"):
        return "/".join(parts[:2]) if len(parts) > 2 else parts[0]
    return None


def may_look_into(room, target):
    """True when files of `room` may include headers of `target`."""
    if room == target:
        return True
    platform_face = target.startswith("platform/") and target.endswith("/include")
    if room.startswith("platform/"):
        _, module, kind = room.split("/")
        if kind == "tests":
            return target.startswith("platform/") or target == "tests/support"
        own_face = target == f"platform/{module}/include"
        used = platform_face and target.split("/")[1] in MODULES.get(module, [])
        return own_face or used
    if room == PUBLIC:
        return platform_face
    if room == SOURCES:
        return platform_face or target == PUBLIC
    if room.startswith(("examples", "tools")) or room == "tests/install":
        if platform_face or target == PUBLIC:
            return True
        return room.endswith("/tests") and target in (room[:-len("/tests")], "tests/support")
    if room == "tests/support":
        return platform_face or target in (PUBLIC, SOURCES)
    if room == "tests/scenario":
        return platform_face or target in (PUBLIC, "tests/support")
    if room == "tests/platform":
        return target.startswith("platform/") or target == "tests/support"
    if room.startswith(("tests/", "bench", "fuzz")):
        return (target.startswith(("platform/", "library/", "tools/"))
                or target in ("tests/support", "fuzz", "bench"))
    return False


def circles(graph):
    """Each circle of a graph {node: set of nodes} once, as a list of nodes."""
    found, done = [], set()

    def walk(node, path):
        if node in path:
            found.append(path[path.index(node):] + [node])
        elif node not in done:
            for target in sorted(graph.get(node, ())):
                walk(target, path + [node])
            done.add(node)

    for node in sorted(graph):
        walk(node, [])
    return found


def sources(root):
    for top in ("VUKSim", "platform", "tests", "examples", "tools", "bench", "fuzz"):
        for path in sorted((root / top).rglob("*")):
            if path.suffix in SUFFIXES and path.is_file():
                yield path.relative_to(root)


def check(root):
    """All faults of the tree as lines of text, and the numbers of files and includes seen."""
    faults, rooms, by_name = [], {}, {}
    for path in sources(root):
        rooms[path] = room_of(path)
        if rooms[path] is None:
            faults.append(f"{path}: stands in no known folder")
        if path.suffix == ".h":
            by_name.setdefault(path.name, []).append(path)
    for room in sorted({r for r in rooms.values() if r and r.startswith("platform/")}):
        if room.split("/")[1] not in MODULES:
            faults.append(f"{room}: a module without a line in MODULES")

    file_graph, room_graph, includes = {}, {}, 0
    for path, room in rooms.items():
        for number, line in enumerate((root / path).read_text("utf-8").splitlines(), 1):
            match = INCLUDE.match(line)
            if not match or room is None:
                continue
            includes += 1
            name = match.group(1)
            single = name in SINGLE_HEADERS.get(path.parts[1], ())
            targets = by_name.get(name, [])
            beside = [target for target in targets if target.parent == path.parent]
            open_to_us = [target for target in targets
                          if single or may_look_into(room, rooms[target])]
            if not targets:
                faults.append(f"{path}:{number}: \"{name}\" is no header of this tree")
                continue
            if not beside and not open_to_us:
                faults.append(f"{path}:{number}: {room} may not look into {rooms[targets[0]]}"
                              f" (\"{name}\")")
            if not beside and len(open_to_us) > 1:
                faults.append(f"{path}:{number}: \"{name}\" may be any of "
                              + ", ".join(map(str, open_to_us)))
            target = (beside or open_to_us or targets)[0]
            file_graph.setdefault(str(path), set()).add(str(target))
            if room != rooms[target] and not single:
                room_graph.setdefault(room, set()).add(rooms[target])

    faults += ["files include each other: " + " -> ".join(c) for c in circles(file_graph)]
    faults += ["folders include each other: " + " -> ".join(c) for c in circles(room_graph)]
    return faults, len(rooms), includes


def main():
    faults, files, includes = check(Path(sys.argv[1]))
    for fault in faults:
        print(fault)
    if files == 0 or includes == 0:
        print(f"{sys.argv[1]}: no sources found")
        return 1
    print(f"{includes} includes in {files} files: {len(faults)} broken arrows")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
