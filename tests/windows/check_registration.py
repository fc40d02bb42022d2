#!/usr/bin/env python3
"""Registers the module in a Wine prefix and takes it out again, and compares the registry's files before,
between and after: exactly the keys and values that it is to write, all of them the user's own, and in the
end nothing but what it is to leave.

    check_registration.py WINE_RUN PREFIX MODULE

The machine's part may gain one thing: Wine registers type libraries there when it is asked to do so for
the user.
"""

import os
import pathlib
import re
import subprocess
import sys

CONNECT = "{5B9C1E43-AF66-4F7D-BC38-94E7FA0512C3}"
PANE = "{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}"
LIBRARY = "{3F7A9C21-8E44-4D5B-9A16-72C5D8E3F0A1}"
CALLBACKS = "{4A8B0D32-9F55-4E6C-AB27-83D6E9F401B2}"
SINK = "{C1D2E3F4-5A6B-7C8D-9E0F-1A2B3C4D5E6F}"


def text(value):
    return '"' + value.replace("\\", "\\\\") + '"'


def class_keys(clsid, prog_id, words, module, control):
    root = rf"Software\Classes\CLSID\{clsid}"
    keys = {
        rf"Software\Classes\{prog_id}.1": {"@": text(words)},
        rf"Software\Classes\{prog_id}.1\CLSID": {"@": text(clsid)},
        rf"Software\Classes\{prog_id}": {"@": text(words)},
        rf"Software\Classes\{prog_id}\CLSID": {"@": text(clsid)},
        rf"Software\Classes\{prog_id}\CurVer": {"@": text(prog_id + ".1")},
        root: {"@": text(words)},
        root + r"\ProgID": {"@": text(prog_id + ".1")},
        root + r"\VersionIndependentProgID": {"@": text(prog_id)},
        root + r"\Programmable": {},
        root + r"\InprocServer32": {"@": text(module), '"ThreadingModel"': text("Apartment")},
        root + r"\TypeLib": {"@": text(LIBRARY)},
        root + r"\Version": {"@": text("1.0")},
    }
    if control:
        keys |= {root + r"\Control": {}, root + r"\Insertable": {},
                 root + r"\MiscStatus": {"@": text("0")}, root + r"\MiscStatus\1": {"@": text("131473")}}
    return keys


ADDIN = r"Software\Microsoft\Office\PowerPoint\Addins\PptAddin.Connect"
WHITE_LIST = r"Software\Kingsoft\Office\WPP\AddinsWL"


def registered_keys(module):
    return class_keys(CONNECT, "PptAddin.Connect", "Connect Class", module, False) | class_keys(
        PANE, "Quillmarch.PptPane", "Quillmarch PowerPoint Pane", module, True) | {
            ADDIN: {'"FriendlyName"': text("Quillmarch PowerPoint"),
                    '"Description"': text("整份、当前页或选区翻译，保留版式写回幻灯片。"),
                    '"LoadBehavior"': "dword:00000003", '"CommandLineSafe"': "dword:00000001"},
            WHITE_LIST: {'"PptAddin.Connect"': text("")}}


def with_parents(keys):
    """The keys and those above them, which are made on the way."""
    found = dict(keys)
    for key in keys:
        while "\\" in key:
            key = key.rpartition("\\")[0]
            found.setdefault(key, {})
    return found


def read_registry(path):
    """{key: {value name: value}}; names of keys in the case of their first writer."""
    unescape = lambda m: chr(int(m[1], 16))  # noqa: E731
    registry, values = {}, None
    content = path.read_text(encoding="utf-8", errors="surrogateescape")
    for line in re.sub(r"\\\n\s*", "", content).split("\n"):
        line = re.sub(r"(?<!\\)\\x([0-9a-f]{1,4})", unescape, line)
        if line.startswith("["):
            key = line[1:line.rindex("]")].replace("\\\\", "\\")
            values = registry.setdefault(key, {})
            # A key that holds nothing but others is not written down by itself.
            while "\\" in key:
                key = key.rpartition("\\")[0]
                registry.setdefault(key, {})
        elif values is not None and line and line[0] in '"@':
            name, _, value = line.partition("=") if line[0] == "@" else re.match(
                r'("(?:[^"\\]|\\.)*")(=)(.*)', line).groups()
            values[name] = value
    return registry


class Prefix:
    def __init__(self, wine_run, prefix):
        self.wine_run, self.prefix = wine_run, prefix
        self.environment = dict(os.environ, QUILLMARCH_WINEPREFIX=str(prefix))

    def run(self, *command):
        return subprocess.run([self.wine_run, *command], env=self.environment, check=False,
                              stdin=subprocess.DEVNULL).returncode

    def registry(self):
        """(the machine's, the user's), as they are on disk once the server has ended."""
        self.run("--stop")
        return read_registry(self.prefix / "system.reg"), read_registry(self.prefix / "user.reg")


def difference(before, after):
    """Keys and values that came or changed, and those that went; names in any case are one."""
    lower = {key.lower(): values for key, values in before.items()}
    came = {}
    for key, values in after.items():
        old = lower.pop(key.lower(), None)
        new = {name: value for name, value in values.items() if (old or {}).get(name) != value}
        if old is None or new:
            came[key] = new
    return came, sorted(lower)


def compare(faults, what, got, wanted):
    got = {key.lower(): values for key, values in got.items()}
    wanted = {key.lower(): values for key, values in wanted.items()}
    for key in sorted(got.keys() | wanted.keys()):
        if got.get(key) != wanted.get(key):
            faults.append(f"{what}: {key}: {got.get(key)}, and {wanted.get(key)} expected")


# What every start of Wine may touch by itself.
def not_wines_own(keys):
    return {key: values for key, values in keys.items()
            if not key.lower().startswith((
                r"software\wine", "volatile environment", "control panel", "environment",
                r"software\microsoft\windows\currentversion\explorer",
                r"system\currentcontrolset\control\class"))}


def main(wine_run, prefix, module):
    prefix = Prefix(wine_run, pathlib.Path(prefix))
    prefix.prefix.mkdir(parents=True, exist_ok=True)
    windows_module = "Z:" + module.replace("/", "\\")
    library_keys = tuple(rf"software\classes\{kind}".lower() for kind in (
        rf"TypeLib\{LIBRARY}", rf"Interface\{CALLBACKS}", rf"Interface\{SINK}",
        rf"Wow6432Node\Interface\{CALLBACKS}", rf"Wow6432Node\Interface\{SINK}"))
    faults = []
    # What a run before left behind; and Wine has done its first steps.
    prefix.run("regsvr32", "/u", "/s", windows_module)
    for key in (ADDIN, WHITE_LIST.rpartition("\\")[0].rpartition("\\")[0].rpartition("\\")[0],
                ADDIN.rpartition("\\")[0].rpartition("\\")[0].rpartition("\\")[0]):
        prefix.run("reg", "delete", "HKCU\\" + key, "/f")
    machine_before, user_before = prefix.registry()

    if prefix.run("regsvr32", "/s", windows_module) != 0:
        faults.append("registering failed")
    machine, user = prefix.registry()
    came, gone = difference(user_before, user)
    wanted = {key: values for key, values in with_parents(registered_keys(windows_module)).items()
              if values or key.lower() not in {k.lower() for k in user_before}}
    compare(faults, "registered", not_wines_own(came), wanted)
    machine_came, machine_gone = difference(machine_before, machine)
    strangers = [key for key in not_wines_own(machine_came) if not key.lower().startswith(library_keys)]
    faults += [f"registered for the machine: {key}" for key in strangers]
    faults += [f"lost by registering: {key}" for key in gone + machine_gone]
    print(f"registered: {len(wanted)} keys of the user's, {len(machine_came)} of the machine's, "
          "all of those Wine's for the type library" if not strangers else "registered")

    if prefix.run("regsvr32", "/s", windows_module) != 0:
        faults.append("registering again failed")
    came, gone = difference(user, prefix.registry()[1])
    faults += [f"changed by registering again: {key}" for key in [*not_wines_own(came), *gone]]

    for number in (1, 2):
        code = prefix.run("regsvr32", "/u", "/s", windows_module)
        if number == 1 and code != 0:
            faults.append("unregistering failed")
        machine, user = prefix.registry()
        came, gone = difference(user_before, user)
        # The hosts' own places stay, empty.
        left = {key: {} for key in with_parents({ADDIN.rpartition("\\")[0]: {}, WHITE_LIST: {}})
                if key.lower() not in {k.lower() for k in user_before}}
        left |= {key: {} for key in not_wines_own(came) if key.lower() in (r"software\classes\clsid",
                                                                          r"software\classes")}
        compare(faults, f"left after unregistering, {number}", not_wines_own(came), left)
        faults += [f"lost by unregistering: {key}" for key in gone]
        machine_came, machine_gone = difference(machine_before, machine)
        faults += [f"left for the machine: {key}" for key in not_wines_own(machine_came)
                   if LIBRARY.lower() in key.lower()]
    print("left after unregistering:", *sorted(left))
    print(*faults or ["all as it should be"], sep="\n")
    return 1 if faults else 0


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
