#!/usr/bin/env python3
"""Packs the module once more, at another moment and in another folder: the same bytes as the archive that
was made with the build. Then unpacks that archive and runs its scripts in a Wine prefix, as a user would:
after the one the hosts find the add-in in the folder, after the other they do not any more.

    check_package.py WINE_RUN PREFIX PACKAGE COMMAND_THAT_MAKES_IT...

The command's last argument, the folder to pack into, is left out.
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import zipfile

NAMES = ["PptAddin.dll", "install.html", "register.cmd", "unregister.cmd", "version.json"]
ADDIN = r"HKCU\Software\Microsoft\Office\PowerPoint\Addins\PptAddin.Connect"
SERVERS = [rf"HKCU\Software\Classes\CLSID\{clsid}\InprocServer32" for clsid in (
    "{5B9C1E43-AF66-4F7D-BC38-94E7FA0512C3}", "{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}")]


def check_bytes(faults, package, made):
    for name in (package.name, package.stem + "-symbols.zip"):
        if (package.parent / name).read_bytes() != (made / name).read_bytes():
            faults.append(f"{name} is another one when it is packed again")
    with zipfile.ZipFile(package) as archive:
        if archive.namelist() != NAMES:
            faults.append(f"the archive holds {archive.namelist()}")
        about = json.loads(archive.read("version.json"))
        page = archive.read("install.html").decode()
        print("version.json:", about)
        if about["version"] not in page or re.search("@[A-Z]", page):
            faults.append("the page on installing is not filled in")


def check_scripts(faults, wine_run, prefix, package, folder):
    environment = dict(os.environ, QUILLMARCH_WINEPREFIX=prefix)
    with zipfile.ZipFile(package) as archive:
        archive.extractall(folder)

    def wine(*command):
        told = subprocess.run([wine_run, *command], env=environment, check=False, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE)
        return told.returncode, told.stdout.decode(errors="replace").replace("\r", "").strip()

    def run(name):
        return wine("cmd", "/c", "Z:" + str(folder / name).replace("/", "\\"), "/quiet")

    def script(name, words):
        code, told = run(name)
        print(f"{name}: exit code {code}, {told}")
        if code != 0 or not told.startswith(words):
            faults.append(f"{name} failed")

    def asked(key, value):
        code, told = wine("reg", "query", key, *value)
        return told if code == 0 else None

    module = "Z:" + str(folder / "PptAddin.dll").replace("/", "\\")
    script("register.cmd", "Registered.")
    if "0x3" not in (asked(ADDIN, ["/v", "LoadBehavior"]) or ""):
        faults.append("PowerPoint does not find the add-in")
    for key in SERVERS:
        if module.lower() not in (asked(key, ["/ve"]) or "").lower():
            faults.append(f"{key} does not lead to the folder: {asked(key, ['/ve'])}")
    script("unregister.cmd", "Taken out.")
    for key in [ADDIN, *SERVERS]:
        if asked(key, []) is not None:
            faults.append(f"{key} is left")
    # A copy without the module says so.
    (folder / "PptAddin.dll").unlink()
    code, told = run("register.cmd")
    if code == 0 or "could not be registered" not in told:
        faults.append(f"a folder without the module registers: {code}, {told}")
    subprocess.run([wine_run, "--stop"], env=environment, check=True)


def main(wine_run, prefix, package, *command):
    faults = []
    with tempfile.TemporaryDirectory(prefix="quillmarch package ") as name:
        folder = pathlib.Path(name)
        subprocess.run([*command, folder / "again"], check=True)
        check_bytes(faults, pathlib.Path(package), folder / "again")
        unpacked = folder / "Quillmarch"
        unpacked.mkdir()
        check_scripts(faults, wine_run, prefix, package, unpacked)
    print(*faults or ["all as it should be"], sep="\n")
    return 1 if faults else 0


if __name__ == "__main__":
    if len(sys.argv) < 5:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
