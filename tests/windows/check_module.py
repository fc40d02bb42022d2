#!/usr/bin/env python3
"""Looks at the module's file: which libraries it needs, what it exports, which resources it holds, how
large it is, and that no moment of its making stands in it.

    check_module.py OBJDUMP MODULE SHELL_SOURCES MAKE_TYPE_LIBRARY WIDL STDOLE_FOLDER
"""

import pathlib
import re
import struct
import subprocess
import sys
import tempfile
import time

SYSTEM_LIBRARIES = {"advapi32.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "oleaut32.dll",
                    "shell32.dll", "user32.dll", "winhttp.dll"}
EXPORTS = ["DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer", "DllUnregisterServer"]
MOST_BYTES = 3 << 20
TYPE_NAMES = {16: "VERSION"}


def resources_of(data):
    """{(type, id): bytes} of a PE file; every language of a resource is the same to us."""
    pe = struct.unpack_from("<I", data, 0x3C)[0]
    sections, = struct.unpack_from("<H", data, pe + 6)
    optional, = struct.unpack_from("<H", data, pe + 20)
    directory, _ = struct.unpack_from("<II", data, pe + 24 + 112 + 2 * 8)
    table = [struct.unpack_from("<IIII", data, pe + 24 + optional + 40 * i + 8) for i in range(sections)]
    base = address = None
    for _, virtual, size, raw in table:
        if virtual <= directory < virtual + size:
            base, address = raw + directory - virtual, virtual - raw
    found = {}

    def name_of(number):
        if not number & 0x80000000:
            return TYPE_NAMES.get(number, number)
        at = base + (number & 0x7FFFFFFF)
        length, = struct.unpack_from("<H", data, at)
        return data[at + 2:at + 2 + 2 * length].decode("utf-16-le")

    def walk(at, way):
        named, numbered = struct.unpack_from("<HH", data, at + 12)
        for i in range(named + numbered):
            number, offset = struct.unpack_from("<II", data, at + 16 + 8 * i)
            if offset & 0x80000000:
                walk(base + (offset & 0x7FFFFFFF), way + [name_of(number)])
            else:
                virtual, size = struct.unpack_from("<II", data, base + offset)
                found[tuple(way[:2])] = data[virtual - address:virtual - address + size]

    walk(base, [])
    return found


def expect(faults, what, got, wanted):
    print(f"{what}: {got}")
    if got != wanted:
        faults.append(f"{what}: {wanted} expected")


def main(objdump, module, sources, make_type_library, widl, stdole):
    faults = []
    listing = subprocess.run([objdump, "-p", module], check=True, stdout=subprocess.PIPE).stdout.decode()
    needed = {name.lower() for name in re.findall(r"DLL Name: (\S+)", listing)}
    print("needs:", *sorted(needed))
    faults += [f"needs {name}, which is none of the system's" for name in sorted(needed - SYSTEM_LIBRARIES)]
    names = listing[listing.index("[Ordinal/Name Pointer] Table"):]
    expect(faults, "exports", re.findall(r"^\t\[ *\d+\] (?:\+base\[ *\d+\] +[0-9a-f]+ )?(\w+)", names, re.M), EXPORTS)
    data = pathlib.Path(module).read_bytes()
    print("bytes:", len(data))
    if len(data) >= MOST_BYTES:
        faults.append(f"{len(data)} bytes are {MOST_BYTES} or more")
    pe = struct.unpack_from("<I", data, 0x3C)[0]
    expect(faults, "time stamp", struct.unpack_from("<I", data, pe + 8)[0], 0)

    folder = pathlib.Path(sources)
    found = resources_of(data)
    expect(faults, "resources", sorted(map(str, found)), sorted(map(str, [
        ("REGISTRY", 101), ("REGISTRY", 102), ("TYPELIB", 1), ("VERSION", 1), ("XML", 201)])))
    for key, name in {("REGISTRY", 101): "CConnect.rgs", ("REGISTRY", 102): "CPptPane.rgs",
                      ("XML", 201): "ribbon.xml"}.items():
        if found.get(key) != (folder / name).read_bytes():
            faults.append(f"{key} is not {name}")

    with tempfile.TemporaryDirectory() as made:
        libraries = []
        for number in range(2):
            path = pathlib.Path(made) / f"{number}.tlb"
            subprocess.run([make_type_library, widl, stdole, folder / "windows" / "PptAddin.idl", path], check=True)
            libraries.append(path.read_bytes())
            time.sleep(1.1 * (1 - number))
        if libraries[0] != libraries[1]:
            faults.append("two type libraries of one description differ")
        if found.get(("TYPELIB", 1)) != libraries[0]:
            faults.append("the module's type library is not that of the description")
    print(*faults or ["all as it should be"], sep="\n")
    return 1 if faults else 0


if __name__ == "__main__":
    if len(sys.argv) != 7:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
