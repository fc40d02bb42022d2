#!/usr/bin/env python3
"""Checks who includes whom, by the table of folders in docs/layers.md:

    check_layers.py ROOT

Finds includes that point upwards or sideways, circles of includes between files, rows of the table without a
folder, folders of more than 40 files and files of more than 600 lines.
"""
import pathlib
import re
import sys

ADD_IN = "client/ppt-addin"


def add_in(*names):
    return {f"{ADD_IN}/{name}" for name in names}


# The add-in's interfaces that the headless host serves or takes part in.
SHARED = add_in("foundation")
HOST = {f"host/{room}" for room in ("package", "workbook", "deck", "geometry", "layout", "model", "remote", "thread", "driver")}
# Each room with those below it. A file may include its own room; a room also stands for its sub-folders, unless
# they have rows of their own.
MAY_INCLUDE = {
    f"{ADD_IN}/resources": add_in("foundation/text"),
    f"{ADD_IN}/foundation/text": set(),
    f"{ADD_IN}/foundation/system": add_in("foundation/text"),
    f"{ADD_IN}/foundation/log": add_in("foundation/text", "foundation/system"),
    f"{ADD_IN}/foundation/automation": add_in("foundation/text", "foundation/system", "foundation/log"),
    f"{ADD_IN}/foundation/seams": add_in("foundation/text", "foundation/system", "foundation/log",
                                         "foundation/automation"),
    f"{ADD_IN}/foundation/settings": add_in("foundation/text", "foundation/system", "foundation/log",
                                            "foundation/automation", "resources"),
    f"{ADD_IN}/foundation/transport": add_in("foundation/text", "foundation/system", "foundation/log"),
    f"{ADD_IN}/foundation/identity": add_in("foundation/text", "foundation/system", "foundation/log",
                                            "foundation/automation", "foundation/transport"),
    f"{ADD_IN}/translate": add_in("foundation"),
    f"{ADD_IN}/terminology": add_in("foundation", "translate"),
    f"{ADD_IN}/run/document": add_in("foundation", "translate"),
    f"{ADD_IN}/run/collect": add_in("foundation", "translate", "run/document"),
    f"{ADD_IN}/run/write": add_in("foundation", "translate", "run/document"),
    f"{ADD_IN}/run/control": add_in("foundation", "translate", "run"),
    f"{ADD_IN}/run": add_in("foundation", "translate"),
    f"{ADD_IN}/pane": add_in("foundation", "translate", "terminology", "run", "resources"),
    f"{ADD_IN}/shell": add_in("foundation", "translate", "terminology", "run", "pane", "resources"),
    "host/package": SHARED,
    "host/workbook": {"host/package"} | SHARED,
    "host/deck": {"host/package"} | SHARED,
    "host/geometry": {"host/deck", "host/package"} | SHARED,
    "host/layout": SHARED,
    "host/model": {"host/deck", "host/geometry", "host/layout", "host/package"} | SHARED,
    "host/remote": {"host/model", "host/package"} | SHARED,
    "host/thread": SHARED,
    "host/driver": HOST | {ADD_IN},
    "host/cli": HOST | {ADD_IN, "service"},
    "service": SHARED,
}
MOST_FILES = 40
MOST_LINES = 600
SOURCES = {".h", ".cpp", ".py"}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)


def room_of(path):
    """The room with the longest name that holds the file."""
    rooms = [room for room in MAY_INCLUDE if path.startswith(room + "/")]
    return max(rooms, key=len, default=None)


def resolve(root, including, name):
    folder = including.rpartition("/")[0]
    for candidate in (name, f"{ADD_IN}/{name}", f"{folder}/{name}"):
        if (root / candidate).is_file():
            return candidate
    return None


def graph_of(root):
    graph = {}
    for top in ("client", "host", "service"):
        for path in sorted((root / top).rglob("*")):
            if path.suffix in (".h", ".cpp"):
                name = path.relative_to(root).as_posix()
                found = (resolve(root, name, target) for target in INCLUDE.findall(path.read_text(encoding="utf-8")))
                graph[name] = [target for target in found if target]
    return graph


def wrong_directions(graph):
    for name, targets in graph.items():
        room = room_of(name)
        if room is None:
            yield f"{name} lies in no room of the table"
            continue
        for target in targets:
            if not any(target.startswith(below + "/") for below in MAY_INCLUDE[room] | {room}):
                yield f"{name} includes {target}, which {room} may not know"


def missing_rooms(root):
    for room in MAY_INCLUDE:
        if not (root / room).is_dir():
            yield f"{room} has a row in the table and no folder"


def crowded_rooms(root):
    for top in ("client", "host", "service", "tests", "bench", "fuzz"):
        for folder in sorted(path for path in (root / top).rglob("*") if path.is_dir()):
            files = sum(path.is_file() for path in folder.iterdir() if path.suffix != ".pyc")
            if files > MOST_FILES:
                yield f"{folder.relative_to(root)} holds {files} files; {MOST_FILES} are the most"
        for path in sorted((root / top).rglob("*")):
            if path.suffix in SOURCES and len(path.read_text(encoding="utf-8").splitlines()) > MOST_LINES:
                yield f"{path.relative_to(root)} is longer than {MOST_LINES} lines"


def circles(graph):
    """One line for each include that closes a circle."""
    state = {}
    for start in graph:
        stack = [(start, iter(graph.get(start, ())))] if start not in state else []
        state.setdefault(start, "open")
        while stack:
            name, targets = stack[-1]
            target = next(targets, None)
            if target is None:
                state[name] = "done"
                stack.pop()
            elif state.get(target) == "open":
                way = [entry for entry, _ in stack]
                yield "a circle: " + " -> ".join(way[way.index(target):] + [target])
            elif target not in state:
                state[target] = "open"
                stack.append((target, iter(graph.get(target, ()))))


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    tree = pathlib.Path(sys.argv[1])
    includes = graph_of(tree)
    faults = [*wrong_directions(includes), *circles(includes), *missing_rooms(tree), *crowded_rooms(tree)]
    print("\n".join(faults) or f"{len(includes)} files include downwards only")
    sys.exit(1 if faults or not includes else 0)
