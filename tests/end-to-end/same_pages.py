#!/usr/bin/python3
"""Lets LibreOffice print decks and their translations, which must have the same number of pages:

    same_pages.py --decks FOLDER --translated FOLDER
"""
import argparse
import concurrent.futures
import pathlib
import re
import subprocess
import sys
import tempfile


def printed(decks, folder):
    """Page counts by file name. One LibreOffice with a profile of its own prints all of them."""
    out = folder / "pdf"
    subprocess.run(["soffice", f"-env:UserInstallation=file://{folder}/profile", "--headless", "--convert-to", "pdf",
                    "--outdir", str(out), *map(str, decks)], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL, check=True)
    pages = {}
    for deck in decks:
        pdf = out / (deck.stem + ".pdf")
        if pdf.exists():
            said = subprocess.run(["pdfinfo", str(pdf)], stdout=subprocess.PIPE, check=True).stdout.decode()
            pages[deck.name] = int(re.search(r"^Pages:\s*(\d+)", said, re.M).group(1))
    return pages


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--decks", required=True, type=pathlib.Path)
    parser.add_argument("--translated", required=True, type=pathlib.Path)
    options = parser.parse_args()
    results = sorted(options.translated.iterdir())
    sources = [options.decks / result.name for result in results]
    with tempfile.TemporaryDirectory() as first, tempfile.TemporaryDirectory() as second, \
            concurrent.futures.ThreadPoolExecutor(2) as pool:
        before, after = pool.map(printed, (sources, results), (pathlib.Path(first), pathlib.Path(second)))
    failed = 0
    for result in results:
        old, new = before.get(result.name), after.get(result.name)
        good = new is not None and old == new
        failed += not good
        print(f"{'ok' if good else 'FAILED':6} {old} pages, {new} translated  {result.name}")
    sys.exit(1 if failed or not results else 0)


if __name__ == "__main__":
    main()
