#!/usr/bin/python3
"""Gives the command what it must refuse, broken decks of our own making and targets that cannot be
written:

    refuse_bad_input.py --command PROGRAM --deck SOUND_DECK [--memory-limit MB]

Each must end with exit code 2 and one line that names the file, the deck and any earlier output
untouched, nothing left behind. Times and peak memory are printed; the limit binds the latter.
"""
import argparse
import os
import pathlib
import re
import subprocess
import sys
import tempfile

from bad_decks import make_bad_decks
from command import Command

PROGRESS = re.compile(r": \d+ of \d+ texts? translated, on \d+ slides?$")
EARLIER = b"an earlier result"


class Trial:
    def __init__(self, program, folder, limit):
        self.command = Command(program, folder / "home")
        self.folder, self.limit = folder, limit
        self.failed = self.count = 0

    def judge(self, name, outcome, faults, names):
        faults = list(faults)
        if outcome.code != 2:
            faults.append(f"ended with {outcome.code}")
        # A target may turn out to be bad after the texts were counted.
        said = [line for line in outcome.err_lines if not PROGRESS.search(line)]
        if len(said) != 1 or not any(word in said[0] for word in names):
            faults.append(f"did not say in one line what is wrong: {outcome.err!r}"[:600])
        if outcome.out.strip():
            faults.append(f"printed {outcome.out.strip()[:200]!r}")
        if self.limit and outcome.peak_mb > self.limit:
            faults.append(f"took more than {self.limit} MB")
        self.failed += bool(faults)
        self.count += 1
        print(f"{'FAILED' if faults else 'ok':6} {outcome.seconds:5.2f} s {outcome.peak_mb:6.1f} MB  {name}: "
              f"{outcome.err.strip()[:200]}")
        for fault in faults:
            print(f"       ! {fault}")
        sys.stdout.flush()

    def refuse(self, name, deck, *more, output=None, names=(), **limits):
        """Runs the command over an earlier output, which must stay, in a folder where nothing else may
        appear."""
        place = self.folder / name
        place.mkdir()
        target = output or place / "result.pptx"
        in_place = "--in-place" in more
        if output is None and not in_place:
            target.write_bytes(EARLIER)
        before = deck.read_bytes() if deck.is_file() else None
        arguments = [] if in_place else ["--output", target, "--force"]
        outcome = self.command.measured("translate", deck, "--to", "es", "--engine", "pseudo", *arguments, *more, **limits)
        faults = []
        if before is not None and deck.read_bytes() != before:
            faults.append("the deck changed")
        left = [path.name for path in place.iterdir() if path not in (target, deck)]
        if left:
            faults.append(f"left {left} behind")
        if output is None and not in_place and target.read_bytes() != EARLIER:
            faults.append("the earlier output changed")
        self.judge(name, outcome, faults, names or (deck.name,))


def read_only_folder(trial, deck):
    """A folder that even root cannot write to: the process table's."""
    target = pathlib.Path("/proc/self/result.pptx" if os.getuid() == 0 else "/usr/result.pptx")
    trial.refuse("read-only-folder", deck, output=target, names=(target.name, deck.name))


def full_disk(trial, deck):
    trial.refuse("file-size-limit", deck, names=(deck.name, "result.pptx"), file_limit=4096)
    copy = trial.folder / "in-place" / deck.name
    copy.parent.mkdir()
    copy.write_bytes(deck.read_bytes())
    place = trial.folder / "file-size-limit-in-place"
    trial.refuse(place.name, copy, "--in-place", file_limit=4096)
    if sorted(path.name for path in copy.parent.iterdir()) != [deck.name]:
        print("       ! left something beside the deck")
        trial.failed += 1


def really_full_disk(trial, deck):
    """On a file system of 64 kB, where this user may mount one."""
    place = trial.folder / "small-disk"
    place.mkdir()
    if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=64k", "tmpfs", str(place)],
                      stderr=subprocess.DEVNULL, check=False).returncode:
        print("       no small file system can be mounted here; the size limit stands for the full disk")
        return
    try:
        (place / "filler").write_bytes(b"x" * 60000)
        target = place / "result.pptx"
        target.write_bytes(b"old")
        outcome = trial.command.measured("translate", deck, "--to", "es", "--engine", "pseudo", "--output", target,
                                         "--force")
        faults = [] if target.read_bytes() == b"old" else ["the earlier output changed"]
        if sorted(path.name for path in place.iterdir()) != ["filler", "result.pptx"]:
            faults.append("left something behind")
        trial.judge("small-disk", outcome, faults, (deck.name, "result.pptx"))
        subprocess.run(["mount", "-o", "remount,ro", str(place)], check=True)
        outcome = trial.command.measured("translate", deck, "--to", "es", "--engine", "pseudo", "--output", target,
                                         "--force")
        trial.judge("read-only-disk", outcome, [], (deck.name, "result.pptx"))
    finally:
        subprocess.run(["umount", str(place)], check=False)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--command", required=True)
    parser.add_argument("--deck", required=True, type=pathlib.Path)
    parser.add_argument("--memory-limit", type=float, default=0)
    options = parser.parse_args()
    deck = options.deck.resolve()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        trial = Trial(options.command, folder, options.memory_limit)
        (folder / "bad").mkdir()
        for bad in make_bad_decks(folder / "bad", deck):
            trial.refuse(bad.stem, bad)
            bad.unlink()
        trial.refuse("no-such-file", folder / "bad" / "absent.pptx")
        a_folder = folder / "bad" / "folder.pptx"
        a_folder.mkdir()
        trial.refuse("a-folder", a_folder)
        trial.refuse("output-in-no-folder", deck, output=folder / "nowhere" / "result.pptx",
                     names=("result.pptx", "nowhere"))
        trial.refuse("output-is-a-folder", deck, output=folder / "bad", names=("bad",))
        read_only_folder(trial, deck)
        full_disk(trial, deck)
        really_full_disk(trial, deck)
    print(f"{trial.count - trial.failed} of {trial.count} refused as they should")
    sys.exit(1 if trial.failed else 0)


if __name__ == "__main__":
    main()
