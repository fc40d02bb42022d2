#!/usr/bin/python3
"""Translates decks with the pseudo engine and checks each result by an independent reader:

    translate_decks.py --command PROGRAM --decks FOLDER --output FOLDER [--schemas FOLDER]
        [--growth FACTOR] [--only NAME...]

A deck must end with 0, or with 3 when a text over an equation had to stay. A slide or notes part
that was valid by the published schemas must still be.
"""
import argparse
import concurrent.futures
import os
import pathlib
import sys
import tempfile

from lxml import etree

from check_translation import Check
from command import Command
from deck_text import Deck

KINDS = {".pptx", ".pptm", ".potx", ".potm", ".ppsx", ".ppsm"}


def validity(schema, data):
    return schema.validate(etree.fromstring(data))


def check_schemas(folder, source, result, edited):
    # A schema object may not be shared between threads.
    schema = etree.XMLSchema(etree.parse(str(folder / "transitional" / "pml.xsd")))
    before, after = Deck(source), Deck(result)
    for name in edited:
        if validity(schema, before.data(name)) and not validity(schema, after.data(name)):
            yield f"{name}: is no longer valid: {schema.error_log.last_error.message[:200]}"


def check_deck(command, deck, output, schemas, growth):
    result = output / deck.name
    outcome = command.run("translate", deck, "--to", "es", "--engine", "pseudo", "--growth", growth, "--output", result)
    if not result.exists():
        return [f"ended with {outcome.code} and left no deck: {outcome.err.strip()[-2000:]}"], outcome, 0
    check = Check(deck, result, outcome.out + outcome.err, growth > 1)
    faults = list(check.faults)
    expected = 3 if check.withheld else 0
    if outcome.code != expected:
        faults.append(f"ended with {outcome.code} in place of {expected}: {outcome.err.strip()[-2000:]}")
    if not check.edited and deck.read_bytes() != result.read_bytes():
        faults.append("holds no text to translate, and came out as other bytes")
    if schemas:
        faults += check_schemas(schemas, deck, result, check.edited)
    return faults, outcome, check.marked


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--command", required=True)
    parser.add_argument("--decks", required=True, type=pathlib.Path)
    parser.add_argument("--output", required=True, type=pathlib.Path)
    parser.add_argument("--schemas", type=pathlib.Path)
    parser.add_argument("--growth", type=float, default=1)
    parser.add_argument("--only", nargs="+", metavar="NAME")
    options = parser.parse_args()
    options.output.mkdir(parents=True, exist_ok=True)
    for old in options.output.iterdir():
        old.unlink()
    decks = sorted(path for path in options.decks.iterdir() if path.suffix.lower() in KINDS
                   and (not options.only or path.name in options.only))
    if not decks:
        sys.exit(f"no deck in {options.decks}")
    failed = 0
    with tempfile.TemporaryDirectory() as home, concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        command = Command(options.command, home)
        checks = pool.map(lambda deck: check_deck(command, deck, options.output, options.schemas, options.growth), decks)
        for deck, (faults, outcome, marked) in zip(decks, checks):
            failed += bool(faults)
            print(f"{'FAILED' if faults else 'ok':6} {marked:5} texts {outcome.seconds:6.2f} s  {deck.name}")
            for fault in faults[:20]:
                print(f"         {fault}")
            sys.stdout.flush()
    print(f"{len(decks) - failed} of {len(decks)} decks came back as they should")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
