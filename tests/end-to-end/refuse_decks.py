#!/usr/bin/python3
"""Gives a folder of broken decks to the command, one by one:

    refuse_decks.py --command PROGRAM --decks FOLDER

Each must be refused with exit code 2 and one line that names it, and nothing may be written. The
folder's manifest tells which ones lack a leaf alone (a workbook): those are translated with a
warning.
"""
import argparse
import csv
import pathlib
import sys
import tempfile

from check_translation import Check
from command import Command

LEAF_ALONE = "missing-parts:wb"


def refused(outcome, deck, output):
    lines = outcome.err_lines
    if outcome.code != 2:
        yield f"ended with {outcome.code}"
    if len(lines) != 1 or deck.name not in lines[0]:
        yield "did not say in one line what is wrong with it"
    if outcome.out.strip():
        yield f"printed {outcome.out.strip()[:200]!r}"
    if list(output.iterdir()):
        yield f"wrote {[path.name for path in output.iterdir()]}"


def opened(outcome, deck, output):
    if outcome.code != 0:
        yield f"ended with {outcome.code}"
    elif not (output / deck.name).exists():
        yield "left no deck"
    else:
        yield from Check(deck, output / deck.name).faults
    if not any("missing" in line.lower() or "lack" in line.lower() for line in outcome.err_lines):
        yield "gave no warning"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--command", required=True)
    parser.add_argument("--decks", required=True, type=pathlib.Path)
    options = parser.parse_args()
    failed = 0
    with open(options.decks / "manifest.tsv", encoding="utf-8") as file:
        rows = list(csv.DictReader(file, delimiter="\t"))
    for row in rows:
        deck = options.decks / pathlib.Path(row["file"]).name
        judge = opened if row["how_it_is_bad"].startswith(LEAF_ALONE) else refused
        with tempfile.TemporaryDirectory() as home, tempfile.TemporaryDirectory() as folder:
            output = pathlib.Path(folder)
            outcome = Command(options.command, home).measured(
                "translate", deck, "--to", "es", "--engine", "pseudo", "--output", output / deck.name)
            faults = list(judge(outcome, deck, output))
        failed += bool(faults)
        print(f"{'FAILED' if faults else 'ok':6} {outcome.seconds:5.2f} s {outcome.peak_mb:6.1f} MB  {deck.name}")
        for line in outcome.err_lines[:3]:
            print(f"         {line[:300]}")
        for fault in faults:
            print(f"       ! {fault}")
    sys.exit(1 if failed or not rows else 0)


if __name__ == "__main__":
    main()
