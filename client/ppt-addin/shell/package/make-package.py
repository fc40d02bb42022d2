#!/usr/bin/env python3
"""Makes quillmarch-ppt-addin-win64.zip of a module that was just linked, and an archive of its symbols
beside it. The same module gives the same bytes, whenever and wherever it is packed.

    make-package.py MODULE FOLDER --version V --api-host H --commit C --seconds S [--objcopy PROGRAM]

S is the commit's moment, in seconds of the epoch. Beside each archive FOLDER holds a folder of what is in it.
"""

import argparse
import json
import pathlib
import shutil
import struct
import subprocess
import time
import zipfile

HERE = pathlib.Path(__file__).resolve().parent
NAME = "quillmarch-ppt-addin-win64"
ZIP_BEGIN = 315532800  # a zip knows no time before 1980


def forget_moment(path):
    """Takes the moment out that the tools write into the head of a PE file, and puts its checksum right."""
    data = bytearray(path.read_bytes())
    head, = struct.unpack_from("<I", data, 0x3C)
    moment, checksum = head + 8, head + 24 + 64
    struct.pack_into("<I", data, moment, 0)
    struct.pack_into("<I", data, checksum, 0)
    padded = bytes(data) + bytes(len(data) % 2)
    total = sum(struct.unpack(f"<{len(padded) // 2}H", padded))
    while total >> 16:
        total = (total & 0xFFFF) + (total >> 16)
    struct.pack_into("<I", data, checksum, total + len(data))
    path.write_bytes(data)


def split_module(objcopy, module, stripped, symbols):
    """The module without its symbols, and the symbols; the first knows the second by name and checksum."""
    subprocess.run([objcopy, "--only-keep-debug", module, symbols], check=True)
    forget_moment(symbols)
    subprocess.run([objcopy, "--strip-all", module, stripped.resolve()], check=True)
    subprocess.run([objcopy, f"--add-gnu-debuglink={symbols.name}", stripped.resolve()], check=True,
                   cwd=symbols.parent)
    forget_moment(stripped)


def pack(folder, moment):
    """An archive of a folder's files, in the same order and with the same times and rights each time."""
    with zipfile.ZipFile(str(folder) + ".zip", "w", zipfile.ZIP_DEFLATED) as package:
        for path in sorted(folder.iterdir()):
            entry = zipfile.ZipInfo(path.name, moment)
            entry.external_attr = 0o644 << 16
            entry.compress_type = zipfile.ZIP_DEFLATED
            package.writestr(entry, path.read_bytes())


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("module", type=pathlib.Path)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--version", required=True)
    parser.add_argument("--api-host", required=True)
    parser.add_argument("--commit", required=True)
    parser.add_argument("--seconds", required=True, type=int)
    parser.add_argument("--objcopy", default="x86_64-w64-mingw32-objcopy")
    options = parser.parse_args()
    moment = time.gmtime(max(options.seconds, ZIP_BEGIN))

    files, symbols = options.folder / NAME, options.folder / f"{NAME}-symbols"
    for folder in (files, symbols):
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
    split_module(options.objcopy, options.module, files / "PptAddin.dll", symbols / "PptAddin.dll.debug")
    about = {"productId": "quillmarch-office-ai", "platform": "windows", "version": options.version,
             "commit": options.commit, "buildDate": time.strftime("%Y-%m-%d", moment)}
    (files / "version.json").write_text(json.dumps(about, indent=2) + "\n", encoding="utf-8")
    for name in ("register.cmd", "unregister.cmd"):
        lines = (HERE / name).read_text(encoding="ascii").split("\n")
        (files / name).write_bytes("\r\n".join(lines).encode("ascii"))
    page = (HERE / "install.html").read_text(encoding="utf-8")
    page = page.replace("@VERSION@", options.version).replace("@API_HOST@", options.api_host)
    (files / "install.html").write_text(page, encoding="utf-8")
    for folder in (files, symbols):
        pack(folder, moment[:6])


if __name__ == "__main__":
    main()
