#!/usr/bin/env python3
"""Compares what the host reads of workbooks, and what it writes, with what openpyxl reads:

    check_workbooks.py FOLDER

FOLDER holds N.xlsx, N.cells with a line for each cell, and where one cell was written N.edit and N.edited.xlsx.
"""
import datetime
import math
import pathlib
import re
import sys
import warnings
import zipfile

import openpyxl
from openpyxl.utils.datetime import CALENDAR_MAC_1904, CALENDAR_WINDOWS_1900, to_excel

warnings.simplefilter("ignore")
faults = []
counts = {"workbooks": 0, "cells": 0, "shown": 0, "formulas": 0, "written": 0}
ESCAPE = re.compile("_x([0-9A-Fa-f]{4})_")


def text_of(hexadecimal):
    return bytes.fromhex(hexadecimal).decode()


def decoded(text):
    return ESCAPE.sub(lambda match: chr(int(match[1], 16)), text)


def shown_by(code, value):
    """What a cell shows, where that is plain; None elsewhere."""
    if isinstance(value, bool):
        return "TRUE" if value else "FALSE"
    if isinstance(value, str):
        return value if "@" not in code or code == "@" else None
    if isinstance(value, (datetime.datetime, datetime.date)):
        forms = {"mm-dd-yy": f"{value.month}/{value.day}/{value.year}", "m/d/yy": f"{value.month}/{value.day}/{value:%y}",
                 "d/mm/yyyy": f"{value.day}/{value:%m/%Y}", "mmm\\-yy": f"{value:%b-%y}", "mmm-yy": f"{value:%b-%y}"}
        return forms.get(code)
    if not isinstance(value, (int, float)):
        return None
    # Halves are where the two ways of rounding part, so they are left out.
    if code == "General":
        return str(int(value)) if value == int(value) and abs(value) < 1e11 else None
    places = {"0": 0, "0.0": 1, "0.00": 2, "0.000": 3, "0%": 0, "0.00%": 2, "#,##0": 0, "#,##0.00": 2}
    if code not in places:
        return None
    number = value * 100 if "%" in code else value
    scaled = abs(number) * 10 ** places[code]
    if abs(scaled - math.floor(scaled) - 0.5) < 1e-6:
        return None
    grouped = "," if code.startswith("#") else ""
    return f"{number:{grouped}.{places[code]}f}" + ("%" if "%" in code else "")


def compare(where, line, values, formulas, epoch):
    sheet, place, kind, number, text, shown, by_formula = line.split("\t")
    cell = values[text_of(sheet)][place]
    value = cell.value
    number, text, shown = float(number), text_of(text), text_of(shown)
    where = f"{where} {text_of(sheet)}!{place}"
    counts["cells"] += 1
    if by_formula == "f":
        counts["formulas"] += 1
        source = formulas[text_of(sheet)][place].value
        if not (isinstance(source, str) and source.startswith("=")) and not hasattr(source, "ref"):
            faults.append(f"{where}: no formula for openpyxl, which has {source!r}")
    if value is None:
        same = kind == "empty" or (kind == "text" and text == "")
    elif isinstance(value, bool):
        same = kind == "boolean" and number == value
    elif isinstance(value, str):
        same = (kind == "error" if cell.data_type == "e" else kind == "text") and text == decoded(value)
    elif isinstance(value, (int, float)):
        same = kind == "number" and number == value
    else:
        same = kind == "date" and abs(to_excel(value, epoch) - number) < 1e-6
    if not same:
        faults.append(f"{where}: {kind} {number} {text!r}, openpyxl has {value!r}")
    expected = shown_by(cell.number_format, value)
    if expected is not None:
        counts["shown"] += 1
        if shown != decoded(expected):
            faults.append(f"{where}: shows {shown!r} for {value!r} by {cell.number_format!r}, expected {expected!r}")


def check_edit(where, number, folder):
    sheet, place, text = (folder / f"{number}.edit").read_text().strip("\n").split("\t")
    sheet, text = text_of(sheet), text_of(text)
    before, after = (zipfile.ZipFile(folder / f"{number}{kind}") for kind in (".xlsx", ".edited.xlsx"))
    if before.namelist() != after.namelist():
        faults.append(f"{where}: other parts than before")
        return
    changed = [name for name in before.namelist() if before.read(name) != after.read(name)]
    if len([name for name in changed if "/worksheets/" in name]) != 1:
        faults.append(f"{where}: changed {changed}")
    if [name for name in changed if "/worksheets/" not in name and "/tables/" not in name]:
        faults.append(f"{where}: changed {changed}")
    old, new = (openpyxl.load_workbook(folder / f"{number}{kind}") for kind in (".xlsx", ".edited.xlsx"))
    for each in old.worksheets:
        twin = new[each.title]
        for row in each.iter_rows():
            for cell in row:
                other = twin[cell.coordinate]
                expected = text if (each.title, cell.coordinate) == (sheet, place) else cell.value
                same = other.value == expected or str(other.value) == str(expected) or hasattr(expected, "ref")
                if not same or other.number_format != cell.number_format or other.style_id != cell.style_id:
                    faults.append(f"{where} {each.title}!{cell.coordinate}: {other.value!r}, not {expected!r}")
        for table in twin.tables.values():
            top = twin[table.ref][0] if table.headerRowCount != 0 else []
            for cell, column in zip(top, table.tableColumns):
                if str(cell.value) != decoded(column.name):
                    faults.append(f"{where}: header {cell.value!r} over column {column.name!r}")
    counts["written"] += 1


def main():
    folder = pathlib.Path(sys.argv[1])
    for listed in sorted(folder.glob("*.cells"), key=lambda path: int(path.stem)):
        where = (folder / f"{listed.stem}.from").read_text()
        book = folder / f"{listed.stem}.xlsx"
        values = openpyxl.load_workbook(book, data_only=True)
        formulas = openpyxl.load_workbook(book)
        epoch = values.epoch
        counts["workbooks"] += 1
        told = set()
        for line in listed.read_text().splitlines():
            compare(where, line, values, formulas, epoch)
            told.add((text_of(line.split("\t")[0]), line.split("\t")[1]))
        for sheet in values.worksheets:
            for row in sheet.iter_rows():
                for cell in row:
                    if cell.value is not None and (sheet.title, cell.coordinate) not in told:
                        faults.append(f"{where} {sheet.title}!{cell.coordinate}: {cell.value!r} was not told")
        if (folder / f"{listed.stem}.edit").exists():
            check_edit(where, listed.stem, folder)
    print(", ".join(f"{count} {what}" for what, count in counts.items()))
    print("\n".join(faults[:50]))
    empty = [what for what, count in counts.items() if count == 0]
    if empty:
        print("nothing compared of: " + ", ".join(empty))
    sys.exit(1 if faults or empty else 0)


if __name__ == "__main__":
    main()
