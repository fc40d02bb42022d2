#!/usr/bin/python3
"""Marks every paragraph with a letter, one part at a time, with what Python has at hand:

    marker.py SOURCE RESULT
"""
import re
import sys
import zipfile

from lxml import etree

A = "{http://schemas.openxmlformats.org/drawingml/2006/main}"
TEXT_PART = re.compile(r"ppt/(slides/slide|notesSlides/notesSlide)\d+\.xml$")
RUNS = (f"{A}r", f"{A}fld", f"{A}br")


def mark(data):
    root = etree.fromstring(data)
    for paragraph in root.iter(f"{A}p"):
        runs = [child for child in paragraph if child.tag in RUNS]
        texts = [" " if run.tag == f"{A}br" else run.findtext(f"{A}t") or "" for run in runs]
        text = "".join(texts)
        first = next((run for run in runs if run.tag != f"{A}br"), None)
        if first is None or not any(char.isalpha() for char in text):
            continue
        for run in runs:
            if run is not first:
                paragraph.remove(run)
        first.find(f"{A}t").text = "\u27e6" + text + "\u27e7"
    return etree.tostring(root, xml_declaration=True, encoding="UTF-8", standalone=True)


def main(source, result):
    with zipfile.ZipFile(source) as old, zipfile.ZipFile(result, "w", zipfile.ZIP_DEFLATED) as new:
        for entry in old.infolist():
            data = old.read(entry)
            new.writestr(entry, mark(data) if TEXT_PART.match(entry.filename) else data)


if __name__ == "__main__":
    main(*sys.argv[1:])
