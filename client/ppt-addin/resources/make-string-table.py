#!/usr/bin/env python3
"""Checks the language files and turns them into the string table's source.

One file a language, one row a line: key, " = ", text. \\n stands for a line break.
Ends with 1 and a list of what is wrong when a file is not as English has it.
"""
import pathlib
import re
import sys

# The order of the language dialog.
TAGS = ["zh-CN", "zh-TW", "en", "ja", "ru", "ms", "th", "de", "fr", "es", "id", "vi", "ko", "ar"]


def read_rows(path):
    rows = []
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        key, separator, text = line.partition(" = ")
        if not separator:
            raise SystemExit(f"{path.name}:{number}: no ' = ' in the row")
        rows.append((key, text))
    return rows


def faults_of(name, rows, english):
    """What the table of one language lacks, as sentences."""
    keys = [key for key, _ in rows]
    if keys != sorted(keys):
        yield f"{name}: rows are not sorted by key"
    for key in sorted(set(english) - set(keys)):
        yield f"{name}: {key} is missing"
    for key in sorted(set(keys) - set(english)):
        yield f"{name}: {key} is unknown"
    if len(set(keys)) != len(keys):
        yield f"{name}: a key stands twice"
    for key, text in rows:
        if not text.strip() or text != text.strip():
            yield f"{name}: {key} is empty or has blanks around it"
        source = english.get(key, text)
        if sorted(re.findall(r"\{\w+\}", text)) != sorted(re.findall(r"\{\w+\}", source)):
            yield f"{name}: {key} does not keep the placeholders"
        if text.count("\\n") != source.count("\\n"):
            yield f"{name}: {key} does not keep the line breaks"
        if re.search(r"\\[^n]", text):
            yield f"{name}: {key} has an escape other than \\n"


def literal(text):
    """A UTF-16 literal in plain ASCII."""
    out = []
    for unit in re.findall(r"\\n|.", text, re.S):
        if unit == "\\n":
            out.append("\\n")
        elif unit in '"\\':
            out.append("\\" + unit)
        elif ord(unit) < 0x7F:
            out.append(unit)
        elif ord(unit) <= 0xFFFF:
            out.append(f"\\u{ord(unit):04x}")
        else:
            out.append(f"\\U{ord(unit):08x}")
    return 'u"' + "".join(out) + '"'


def main():
    folder, target = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    tables = {tag: read_rows(folder / f"{tag}.txt") for tag in TAGS}
    english = dict(tables["en"])
    faults = [fault for tag in TAGS for fault in faults_of(tag + ".txt", tables[tag], english)]
    if faults:
        raise SystemExit("\n".join(faults))

    lines = ["// Made from the language files; edit those.", '#include "resources/StringTable.h"', "",
             "namespace quillmarch {", "", "namespace {", ""]
    for tag in TAGS:
        name = "k" + tag.replace("-", "")
        lines.append(f"constexpr StringRow {name}[] = {{")
        lines += [f'    {{{literal(key)}, {literal(text)}}},' for key, text in tables[tag]]
        lines += ["};", ""]
    lines += ["constexpr StringTable kTables[] = {"]
    for tag in TAGS:
        lines.append(f'    {{u"{tag}", k{tag.replace("-", "")}}},')
    lines += ["};", "", "}  // namespace", "",
              "std::span<const StringTable> StringTables() { return kTables; }", "", "}  // namespace quillmarch", ""]
    target.write_text("\n".join(lines), encoding="ascii")


if __name__ == "__main__":
    main()
