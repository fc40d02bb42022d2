#!/usr/bin/python3
"""Writes the sample decks beside this script. The bytes are the same each time:

    samples/make-samples.py [FOLDER]
"""
import pathlib
import sys

from every_shape import every_shape
from many_scripts import many_scripts
from package import write_deck
from quarterly_review import quarterly_review

DECKS = {
    "quarterly-review.pptx": ("Quarterly review", quarterly_review, "en-GB"),
    "many-scripts.pptx": ("Many scripts", many_scripts, "en-GB"),
    "shapes-of-all-kinds.pptx": ("Shapes of all kinds", every_shape, "en-GB"),
}

if __name__ == "__main__":
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).parent
    for name, (title, slides, lang) in DECKS.items():
        write_deck(folder / name, title, slides(), lang)
        print(folder / name)
