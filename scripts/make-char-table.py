#!/usr/bin/env python3
"""Writes client/ppt-addin/foundation/text/CharClassTable.cpp: which UTF-16 units Windows classes as
letters, blanks and digits.

Windows keeps these classes in its own table (CT_CTYPE1). It follows the general categories of
Unicode, with a few units of its own:
  letters  the letter categories and Nl (letter numbers). Marks are none, so the vowel signs above
           and below of Thai and Hindi are in no class; surrogates are in no class either.
  blanks   the separator categories, TAB to CR, and U+0085.
  digits   Nd, and the three raised digits of Latin-1, which Unicode has in No.
Usage: make-char-table.py [--check]   (--check: say whether the file is up to date, write nothing)
"""

import pathlib
import sys
import unicodedata

# The version whose letters the add-in knows; a Python with another one would move them unseen.
UNICODE_VERSION = "14.0.0"
TARGET = (pathlib.Path(__file__).resolve().parent.parent
          / "client/ppt-addin/foundation/text/CharClassTable.cpp")

LETTERS = {"Lu", "Ll", "Lt", "Lm", "Lo", "Nl"}
SEPARATORS = {"Zs", "Zl", "Zp"}
CONTROL_BLANKS = {0x09, 0x0A, 0x0B, 0x0C, 0x0D, 0x85}
RAISED_DIGITS = {0xB2, 0xB3, 0xB9}


def classes():
    category = [unicodedata.category(chr(unit)) for unit in range(0x10000)]
    return [
        ("Alpha", [c in LETTERS for c in category]),
        ("Space", [c in SEPARATORS or u in CONTROL_BLANKS for u, c in enumerate(category)]),
        ("Digit", [c == "Nd" or u in RAISED_DIGITS for u, c in enumerate(category)]),
    ]


def word(bits, first):
    return sum(1 << i for i in range(32) if bits[first + i])


def table(name, bits):
    """Two levels: 256 pages of 256 units, equal pages sharing one block of eight words."""
    blocks, pages = [], []
    for page in range(256):
        block = tuple(word(bits, page * 256 + i * 32) for i in range(8))
        if block not in blocks:
            blocks.append(block)
        pages.append(blocks.index(block))
    lines = [f"constexpr std::uint8_t k{name}Pages[256] = {{"]
    for i in range(0, 256, 16):
        lines.append("    " + " ".join(f"{n}," for n in pages[i:i + 16]))
    lines += ["};", "", f"constexpr std::uint32_t k{name}Blocks[{len(blocks)}][8] = {{"]
    for block in blocks:
        lines.append("    {" + ", ".join(f"0x{w:08X}" for w in block) + "},")
    return lines + ["};", ""]


def source():
    lines = ["// Made by scripts/make-char-table.py from Unicode " + UNICODE_VERSION
             + "; change the script, not this file.",
             "// clang-format off", "",
             '#include "foundation/text/CharClassTable.h"', "", "namespace quillmarch {", "", "namespace {", ""]
    for name, bits in classes():
        lines += table(name, bits)
    lines += ["}  // namespace", ""]
    for name, _ in classes():
        lines.append(f"const CharClassTable k{name}Table = {{k{name}Pages, k{name}Blocks}};")
    lines += ["", "}  // namespace quillmarch"]
    return "\n".join(lines) + "\n"


def main():
    if unicodedata.unidata_version != UNICODE_VERSION:
        sys.exit(f"make-char-table.py: this Python knows Unicode {unicodedata.unidata_version}, "
                 f"and the table is made from {UNICODE_VERSION}; use the Python of Debian 12")
    text = source()
    if sys.argv[1:] == ["--check"]:
        if TARGET.read_text() != text:
            sys.exit(f"{TARGET} is not what this script makes")
        return
    TARGET.write_text(text)


if __name__ == "__main__":
    main()
