#!/usr/bin/python3
"""Translates a deck as a newcomer would, by the offline engine, and looks for Spanish in it:

    check_spanish.py --command PROGRAM --deck FILE
"""
import argparse
import pathlib
import sys
import tempfile

from command import Command
from deck_text import Deck, worth_translating

SPANISH = {"el", "la", "los", "las", "de", "del", "que", "en", "y", "para", "por", "con", "un", "una", "es"}


def texts(path):
    return [paragraph.text for part in Deck(path).text_parts() for paragraph in part.paragraphs
            if worth_translating(paragraph.text)]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--command", required=True)
    parser.add_argument("--deck", required=True, type=pathlib.Path)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        result = pathlib.Path(folder) / "spanish.pptx"
        outcome = Command(options.command, folder).run("translate", options.deck, "--to", "es", "--output", result)
        print(outcome.out, outcome.err)
        if outcome.code != 0:
            sys.exit(f"ended with {outcome.code}")
        before, after = texts(options.deck), texts(result)
    long = [(old, new) for old, new in zip(before, after) if len(old.split()) >= 4]
    same = [old for old, new in long if old == new]
    spanish = [new for _, new in long if SPANISH & set(new.lower().split())]
    print(f"{len(before)} texts, {len(long)} of four words or more: {len(same)} unchanged, {len(spanish)} Spanish")
    if len(before) != len(after) or same or len(spanish) < 0.9 * len(long) or not long:
        sys.exit("that is no Spanish deck")


if __name__ == "__main__":
    main()
