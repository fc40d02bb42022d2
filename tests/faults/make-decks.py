#!/usr/bin/env python3
"""Writes the small decks of the fault tests: make-decks.py SAMPLES FOLDER

Together they hold every kind of shape that the samples know.
"""
import pathlib
import sys

sys.path.insert(0, sys.argv[1])
sys.dont_write_bytecode = True

import every_shape  # noqa: E402
import many_scripts  # noqa: E402
from package import write_deck  # noqa: E402

DECKS = {
    "frames-and-groups": lambda: [every_shape.placeholders(), every_shape.groups(), every_shape.equation()],
    "simple-shapes": lambda: [every_shape.simple_shapes()],
    "tables": lambda: [every_shape.tables()],
    "scripts-and-charts": lambda: [many_scripts.headings(), every_shape.chart(), every_shape.hidden(),
                                   many_scripts.script_slide(*many_scripts.SCRIPTS[0])],
}

if __name__ == "__main__":
    folder = pathlib.Path(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    for name, slides in DECKS.items():
        write_deck(folder / f"{name}.pptx", name, slides(), "en-GB")
