"""Runs the built command and measures it."""
import os
import pathlib
import resource
import signal
import subprocess
import tempfile
import time
from dataclasses import dataclass


@dataclass
class Outcome:
    code: int
    out: str
    err: str
    seconds: float
    peak_mb: float

    @property
    def err_lines(self):
        return [line for line in self.err.splitlines() if line.strip()]


class Command:
    def __init__(self, program, home):
        """HOME stands for the user's folders, so that nobody's log is written to."""
        self.program = os.path.abspath(program)
        self.environment = dict(os.environ, HOME=str(home), XDG_DATA_HOME=str(home))

    def run(self, *arguments, cwd=None, file_limit=None, prefix=(), timeout=300):
        """FILE_LIMIT is the size in bytes at which the disk counts as full."""
        def prepare():
            if file_limit is not None:
                # Without its handler a write beyond the limit fails, as on a full disk.
                signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
                resource.setrlimit(resource.RLIMIT_FSIZE, (file_limit, file_limit))
        started = time.monotonic()
        with subprocess.Popen([*prefix, self.program, *map(str, arguments)], cwd=cwd, env=self.environment,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              preexec_fn=prepare) as process:
            try:
                out, err = process.communicate(timeout=timeout)
            except subprocess.TimeoutExpired:
                process.kill()
                out, err = process.communicate()
                err += b"\n(stopped by the test: it took too long)"
        return Outcome(process.returncode, out.decode(errors="replace"), err.decode(errors="replace"),
                       time.monotonic() - started, 0.0)

    def measured(self, *arguments, **more):
        """As run, with the peak memory of the program itself, as GNU time reports it."""
        with tempfile.TemporaryDirectory() as folder:
            said = pathlib.Path(folder) / "peak"
            outcome = self.run(*arguments, prefix=("/usr/bin/time", "-q", "-f", "%M", "-o", str(said)), **more)
            outcome.peak_mb = int(said.read_text().split()[-1]) / 1024
        return outcome
