#!/usr/bin/python3
"""Checks that the sample decks are what their script makes, part by part:

    check_samples.py FOLDER
"""
import pathlib
import subprocess
import sys
import tempfile
import zipfile


def parts(path):
    # Not the file's bytes: another zlib may pack the same parts otherwise.
    with zipfile.ZipFile(path) as archive:
        return [(entry.filename, archive.read(entry)) for entry in archive.infolist()]


samples = pathlib.Path(sys.argv[1])
with tempfile.TemporaryDirectory() as folder:
    subprocess.run([sys.executable, "-B", str(samples / "make-samples.py"), folder], check=True)
    made = {path.name: parts(path) for path in pathlib.Path(folder).iterdir()}
for name, expected in made.items():
    if parts(samples / name) != expected:
        sys.exit(f"{name} is not what make-samples.py makes")
