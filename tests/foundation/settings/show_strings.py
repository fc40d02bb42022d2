#!/usr/bin/env python3
"""Prints the table of all display languages, or what some keys say in each:

    show_strings.py [KEY...]

Ends with 1 when a language lacks a text or has one that nobody translated.
"""
import pathlib
import re
import sys
import unicodedata

FOLDER = pathlib.Path(__file__).resolve().parents[3] / "client" / "ppt-addin" / "resources" / "strings"
# In the order of the language dialog; what the letters of another script are called in Unicode.
SCRIPTS = {"zh-CN": "CJK", "zh-TW": "CJK", "en": None, "ja": "CJK|HIRAGANA|KATAKANA", "ru": "CYRILLIC", "ms": None,
           "th": "THAI", "de": None, "fr": None, "es": None, "id": None, "vi": None, "ko": "HANGUL", "ar": "ARABIC"}
SAME_IN_MANY = {"OK", "Chat", "Support"}
SAMPLES = ("msg.title", "settings.title", "settings.cancel")


def columns(text):
    """How many a terminal needs."""
    return sum(0 if unicodedata.category(char) in ("Mn", "Me", "Cf") else
               2 if unicodedata.east_asian_width(char) in "WF" else 1 for char in text)


def cell(text, width):
    blanks = " " * (width - columns(text))
    if any(unicodedata.bidirectional(char) in ("R", "AL") for char in text):
        # Isolated, or a text from right to left would take its neighbours along.
        text = "\u2068" + text + "\u2069"
    return text + blanks


def row(tag, *cells):
    print(f"{tag:6} " + "  ".join(cells).rstrip())


def read(tag):
    lines = (FOLDER / f"{tag}.txt").read_text(encoding="utf-8").splitlines()
    return dict(line.split(" = ", 1) for line in lines)


def untranslated(tag, tables):
    for key, text in tables[tag].items():
        script = SCRIPTS[tag]
        strange = script and not any(re.match(script, unicodedata.name(char, "")) for char in text)
        if tag != "en" and text not in SAME_IN_MANY and (strange or text == tables["en"].get(key)):
            yield key


def main():
    sys.stdout.reconfigure(encoding="utf-8")
    tables = {tag: read(tag) for tag in SCRIPTS}
    if {path.stem for path in FOLDER.glob("*.txt")} != set(SCRIPTS):
        sys.exit(f"{FOLDER} does not hold the languages {', '.join(SCRIPTS)}")
    every = sorted(set().union(*tables.values()))
    for key in sys.argv[1:]:
        print(key)
        for tag, table in tables.items():
            print(f"  {tag:6} {table.get(key, '(none)')}")
    samples = [(key, max(columns(table.get(key, "")) for table in tables.values())) for key in SAMPLES]
    if not sys.argv[1:]:
        row("tag", "texts", "holes", *(cell(key, width) for key, width in samples))
    faults = []
    for tag, table in tables.items():
        holes = [key for key in every if not table.get(key, "").strip()]
        faults += [f"{tag}: {key} has no text" for key in holes]
        faults += [f"{tag}: {key} is not translated" for key in untranslated(tag, tables)]
        if not sys.argv[1:]:
            row(tag, f"{len(table):5}", f"{len(holes):5}",
                *(cell(table.get(key, ""), width) for key, width in samples))
    if faults:
        sys.exit("\n".join(faults))


if __name__ == "__main__":
    main()
