#!/usr/bin/env python3
"""Checks who includes whom, by the table of folders in docs/layers.md:

    check_layers.py ROOT

Finds includes that point upwards or sideways, and circles of includes between files.
"""
import pathlib
import re
import sys

ADD_IN = "client/ppt-addin"
ROOMS = ["client/ppt-addin/foundation", "client/ppt-addin/translate", "client/ppt-addin/terminology",
         "client/ppt-addin/run", "client/ppt-addin/chart", "client/ppt-addin/pane", "client/ppt-addin/shell",
         "client/ppt-addin/resources", "host/package", "host/deck", "host/layout", "host/model", "host/remote",
         "host/thread", "host/browser", "host/driver", "host/cli", "service"]
# What chart may know of the run: the plain records and text rules.
RUN_RECORDS = {f"{ADD_IN}/run/{name}.h" for name in (
    "TextUnit", "UnitLocator", "ShapePath", "ShouldSkip", "FlattenTranslation", "RunParams", "RunRecord")}
HOST = {room for room in ROOMS if room.startswith("host/")}
CLIENT = {room for room in ROOMS if room.startswith(ADD_IN)}


def add_in(*names):
    return {f"{ADD_IN}/{name}" for name in names}


# The add-in's interfaces that the headless host serves or takes part in.
AUTOMATION = add_in("foundation")
MAY_INCLUDE = {
    **{f"{ADD_IN}/{room}": add_in(*below) for room, below in {
        "foundation": ("resources",), "translate": ("foundation",), "terminology": ("foundation", "translate"),
        "run": ("foundation", "translate", "chart"), "chart": ("foundation",),
        "pane": ("foundation", "translate", "terminology", "run", "chart", "resources"),
        "shell": ("foundation", "translate", "terminology", "run", "chart", "pane", "resources"),
        "resources": ("foundation",)}.items()},
    "host/package": set(),
    "host/deck": {"host/package"} | AUTOMATION,
    "host/layout": AUTOMATION,
    "host/model": {"host/deck", "host/layout", "host/package"} | AUTOMATION,
    "host/remote": {"host/model", "host/package"} | AUTOMATION,
    "host/thread": AUTOMATION,
    "host/browser": {"host/thread"} | AUTOMATION,
    "host/driver": (HOST - {"host/cli"}) | CLIENT,
    "host/cli": HOST | CLIENT | {"service"},
    "service": AUTOMATION,
}
SINGLE_FILES = {
    f"{ADD_IN}/chart": RUN_RECORDS,
    f"{ADD_IN}/foundation": {f"{ADD_IN}/translate/HttpTransport.h"},
}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)


def room_of(path):
    return next((room for room in ROOMS if path.startswith(room + "/")), None)


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
            allowed = MAY_INCLUDE[room] | {room}
            if room_of(target) not in allowed and target not in SINGLE_FILES.get(room, ()):
                yield f"{name} includes {target}, which {room} may not know"


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
    includes = graph_of(pathlib.Path(sys.argv[1]))
    faults = [*wrong_directions(includes), *circles(includes)]
    print("\n".join(faults) or f"{len(includes)} files include downwards only")
    sys.exit(1 if faults or not includes else 0)
