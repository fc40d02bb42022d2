"""What the command's tests share: a folder for each test, and the built command run in it. The first
argument of the test's own command line is the program."""

import os
import subprocess
import sys
import tempfile
import unittest

from CommandDeck import make_deck

PROGRAM = os.path.abspath(sys.argv.pop(1))
LIMIT_SECONDS = 120


class CommandTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="quillmarch-command-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.environment = dict(os.environ, XDG_DATA_HOME=os.path.join(self.folder, "home"))

    def path(self, name):
        return os.path.join(self.folder, name)

    def deck(self, name="talk.pptx", slides=(("Hello world", "Second text"), ("Third text",))):
        return make_deck(self.path(name), slides)

    def start(self, *words, **options):
        options.setdefault("stdout", subprocess.PIPE)
        options.setdefault("stderr", subprocess.PIPE)
        options.setdefault("stdin", subprocess.DEVNULL)
        return subprocess.Popen(
            [PROGRAM, *words], cwd=self.folder, env=self.environment, **options,
        )

    def run_command(self, *words, **options):
        process = self.start(*words, **options)
        out, err = process.communicate(timeout=LIMIT_SECONDS)
        self.out = (out or b"").decode("utf-8")
        self.err = (err or b"").decode("utf-8")
        return process.returncode

    def translate(self, *words):
        return self.run_command("translate", *words)

    def pseudo(self, *words):
        return self.translate("--to", "xx", "--engine", "pseudo", *words)

    def served(self, service, *words):
        return self.translate("--to", "es", "--service", service.url, *words)

    def start_served(self, service, *words):
        """Starts a run and waits until its first request has arrived."""
        process = self.start("translate", "--to", "es", "--service", service.url, *words)
        self.assertTrue(service.asked.acquire(timeout=LIMIT_SECONDS))
        return process

    def end(self, process):
        out, err = process.communicate(timeout=LIMIT_SECONDS)
        self.out, self.err = out.decode("utf-8"), err.decode("utf-8")
        return process.returncode

    def complaints(self):
        return [line for line in self.err.splitlines() if line.startswith("quillmarch: ")]

    def exists(self, name):
        return os.path.exists(self.path(name))

    def folder_names(self):
        return sorted(name for name in os.listdir(self.folder) if name != "home")

    def bytes_of(self, path):
        with open(path, "rb") as file:
            return file.read()
