#!/usr/bin/env python3
"""Makes the type library, the same bytes for the same description:

    make-type-library.py WIDL STDOLE_FOLDER IDL OUTPUT

The compiler writes the moment of its work into the library, once in words and once as seconds, and
takes no other for it; both are put to the epoch's begin.
"""
import pathlib
import re
import struct
import subprocess
import sys
import tempfile

# The words, padded to a multiple of four, and behind them a custom value of type VT_UI4.
STAMP = re.compile(rb"(Created by WIDL version [0-9.]+ at )(.{24})(\nW*)(\x13\x00)(.{4})", re.S)
EPOCH = b"Thu Jan  1 00:00:00 1970"


def without_moment(library):
    found = STAMP.findall(library)
    if len(found) != 1:
        sys.exit(f"make-type-library.py: {len(found)} time stamps found, one expected")
    return STAMP.sub(lambda m: m[1] + EPOCH + m[3] + m[4] + struct.pack("<I", 0), library)


def main(widl, stdole_folder, idl, output):
    with tempfile.TemporaryDirectory() as folder:
        made = pathlib.Path(folder) / "made.tlb"
        subprocess.run([widl, "-m64", "--win64", "-t", "-L", stdole_folder, "-o", made, idl],
                       check=True)
        pathlib.Path(output).write_bytes(without_moment(made.read_bytes()))


if __name__ == "__main__":
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    main(*sys.argv[1:])
