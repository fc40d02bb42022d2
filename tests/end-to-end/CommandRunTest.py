"""Runs the built command as a user would: CommandRunTest.py QUILLMARCH"""

import fcntl
import json
import os
import pty
import select
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import termios
import time
import unittest

from CommandDeck import make_deck, texts_of
from CommandService import ScriptedService

PROGRAM = os.path.abspath(sys.argv.pop(1))
GRACE_SECONDS = 2.0
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
        return subprocess.Popen(
            [PROGRAM, *words], cwd=self.folder, env=self.environment, stdin=subprocess.DEVNULL,
            **options,
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


class Usage(CommandTest):
    def assert_usage_error(self, *words):
        self.assertEqual(self.run_command(*words), 2, words)
        self.assertEqual(self.out, "")
        self.assertEqual(len(self.err.splitlines()), 1, self.err)
        self.assertTrue(self.err.startswith("quillmarch: "), self.err)

    def test_what_cannot_be_run_is_one_line_and_2(self):
        self.assert_usage_error()
        self.assert_usage_error("frobnicate")
        self.assert_usage_error("translate")
        self.assert_usage_error("translate", "a.pptx")
        self.assert_usage_error("translate", "a.pptx", "--to", "es", "--bogus")
        self.assert_usage_error("translate", "a.pptx", "--to", "es", "--service", "example.com")
        self.assert_usage_error("translate", "a.pptx", "--to", "es", "--output-dir", "nowhere")

    def test_help_and_version_go_to_standard_output(self):
        self.assertEqual(self.run_command("--help"), 0)
        self.assertIn("Examples:", self.out)
        self.assertEqual(self.err, "")
        self.assertEqual(self.run_command("translate", "--help"), 0)
        self.assertIn("--in-place", self.out)
        self.assertEqual(self.run_command("--version"), 0)
        self.assertRegex(self.out, r"^quillmarch \d+\.\d+\.\d+\n$")

    def test_an_engine_without_the_pair_is_refused_before_any_deck_is_opened(self):
        self.assertEqual(self.translate("missing.pptx", "--to", "zz", "--engine", "apertium"), 2)
        self.assertNotIn("missing.pptx", self.err)
        self.assertEqual(len(self.complaints()), 1)

    def test_a_token_file_that_cannot_be_read_is_a_sentence(self):
        with ScriptedService() as service:
            self.assertEqual(self.served(service, self.deck(), "--token-file", "nowhere"), 2)
        self.assertIn("nowhere: the token file can't be read", self.err)
        self.assertEqual(service.requests, [])


class Output(CommandTest):
    def test_a_deck_goes_beside_itself_and_stays_as_it_was(self):
        deck = self.deck()
        before = self.bytes_of(deck)
        self.assertEqual(self.pseudo("talk.pptx"), 0, self.out)
        self.assertEqual(self.bytes_of(deck), before)
        self.assertEqual(texts_of(self.path("talk.xx.pptx"), 1), ["⟦Hello world⟧", "⟦Second text⟧"])
        self.assertEqual(texts_of(self.path("talk.xx.pptx"), 2), ["⟦Third text⟧"])
        self.assertEqual(self.folder_names(), ["talk.pptx", "talk.xx.pptx"])
        self.assertRegex(
            self.out,
            r"^talk\.pptx: 3 texts translated, 0 left as they were, 0 failed, in \d+\.\d s; "
            r"saved as talk\.xx\.pptx\n$",
        )

    def test_a_named_output_is_written_and_an_earlier_one_replaced(self):
        self.deck()
        with open(self.path("out.pptx"), "w", encoding="utf-8") as file:
            file.write("earlier")
        self.assertEqual(self.pseudo("talk.pptx", "--output", "out.pptx"), 0)
        self.assertEqual(texts_of(self.path("out.pptx"), 2), ["⟦Third text⟧"])

    def test_an_output_folder_takes_all_decks(self):
        self.deck("a.pptx")
        self.deck("b.potx")
        os.mkdir(self.path("out"))
        self.assertEqual(self.pseudo("a.pptx", "b.potx", "--output-dir", "out"), 0)
        self.assertEqual(sorted(os.listdir(self.path("out"))), ["a.xx.pptx", "b.xx.potx"])

    def test_in_place_replaces_the_deck_also_through_a_link(self):
        deck = self.deck()
        os.symlink("talk.pptx", self.path("link.pptx"))
        self.assertEqual(self.pseudo("link.pptx", "--in-place"), 0)
        self.assertTrue(os.path.islink(self.path("link.pptx")))
        self.assertEqual(texts_of(deck, 2), ["⟦Third text⟧"])
        self.assertEqual(self.folder_names(), ["link.pptx", "talk.pptx"])

    def test_an_output_over_the_deck_is_refused(self):
        deck = self.deck()
        before = self.bytes_of(deck)
        self.assertEqual(self.pseudo("talk.pptx", "--output", "./talk.pptx"), 2)
        self.assertIn("--in-place", self.err)
        self.assertEqual(self.bytes_of(deck), before)

    def test_two_decks_never_become_one_file(self):
        os.mkdir(self.path("one"))
        os.mkdir(self.path("two"))
        self.deck("one/a.pptx")
        self.deck("two/a.pptx")
        self.assertEqual(self.pseudo("one/a.pptx", "two/a.pptx", "--output-dir", "."), 2)
        self.assertEqual(len(self.complaints()), 1)
        self.assertFalse(self.exists("a.xx.pptx"))

    def test_a_read_only_target_stays_as_it_was(self):
        self.deck()
        with open(self.path("out.pptx"), "w", encoding="utf-8") as file:
            file.write("earlier")
        os.chmod(self.path("out.pptx"), 0o444)
        self.assertEqual(self.pseudo("talk.pptx", "--output", "out.pptx"), 2)
        self.assertIn("talk.pptx: the output out.pptx is read-only", self.err)
        self.assertEqual(self.bytes_of(self.path("out.pptx")), b"earlier")

    def test_a_full_disk_is_a_sentence_and_leaves_nothing(self):
        self.deck()
        process = self.start(
            "translate", "talk.pptx", "--to", "xx", "--engine", "pseudo", "--quiet",
            preexec_fn=limit_file_size,
        )
        self.assertEqual(self.end(process), 2)
        self.assertEqual(len(self.complaints()), 1, self.err)
        self.assertTrue(self.err.startswith("quillmarch: talk.pptx: "), self.err)
        self.assertEqual(self.folder_names(), ["talk.pptx"])

    def test_a_deck_without_text_comes_out_as_the_same_bytes(self):
        deck = self.deck("numbers.pptx", [["42 %", "2024-01-01"], []])
        self.assertEqual(self.pseudo("numbers.pptx"), 0)
        self.assertEqual(self.bytes_of(self.path("numbers.xx.pptx")), self.bytes_of(deck))
        self.assertIn("there is no text to translate", self.out)

    def test_names_may_hold_any_bytes(self):
        name = b"\xff \x1b[31m\n%s {x}.pptx"
        make_deck(os.fsdecode(os.fsencode(self.folder) + b"/" + name), [["Hello world"]])
        self.assertEqual(self.pseudo(name), 0, self.err)
        self.assertNotIn("\x1b", self.out + self.err)
        self.assertEqual(len(self.out.splitlines()), 1)
        translated = os.fsencode(self.folder) + b"/\xff \x1b[31m\n%s {x}.xx.pptx"
        self.assertEqual(texts_of(os.fsdecode(translated), 1), ["⟦Hello world⟧"])


def limit_file_size():
    """The deck can't be written, as on a full disk; the log's few lines can."""
    import resource

    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    resource.setrlimit(resource.RLIMIT_FSIZE, (4000, 4000))


class SeveralDecks(CommandTest):
    def test_one_bad_deck_does_not_stop_the_others_and_the_gravest_code_counts(self):
        self.deck("a.pptx")
        with open(self.path("bad.pptx"), "w", encoding="utf-8") as file:
            file.write("no zip")
        self.deck("c.pptx")
        self.assertEqual(self.pseudo("missing.pptx", "a.pptx", "bad.pptx", "c.pptx"), 2)
        self.assertEqual(len(self.complaints()), 2, self.err)
        self.assertIn("quillmarch: missing.pptx: ", self.err)
        self.assertIn("quillmarch: bad.pptx: ", self.err)
        self.assertEqual(
            self.folder_names(),
            ["a.pptx", "a.xx.pptx", "bad.pptx", "c.pptx", "c.xx.pptx"],
        )

    def test_bad_input_is_graver_than_a_failed_run(self):
        self.deck("a.pptx")
        with ScriptedService(answer=(402, "")) as service:
            self.assertEqual(self.served(service, "a.pptx"), 1)
            self.assertEqual(self.served(service, "a.pptx", "missing.pptx"), 2)


class OneSlide(CommandTest):
    def test_the_named_slide_alone_is_translated(self):
        self.deck()
        self.assertEqual(self.pseudo("talk.pptx", "--slide", "2"), 0, self.err)
        self.assertEqual(texts_of(self.path("talk.xx.pptx"), 1), ["Hello world", "Second text"])
        self.assertEqual(texts_of(self.path("talk.xx.pptx"), 2), ["⟦Third text⟧"])

    def test_a_slide_that_is_not_there_is_bad_input(self):
        self.deck()
        self.assertEqual(self.pseudo("talk.pptx", "--slide", "3"), 2)
        self.assertIn("talk.pptx: there is no slide 3; the deck has 2 slides", self.err)
        self.assertFalse(self.exists("talk.xx.pptx"))


class FailedRuns(CommandTest):
    def assert_failure(self, answer, sentence):
        self.deck()
        with ScriptedService(answer=answer) as service:
            self.assertEqual(self.served(service, "talk.pptx"), 1)
        self.assertEqual(self.complaints(), [
            f"quillmarch: talk.pptx: {sentence}; nothing was saved"
        ])
        self.assertTrue(self.err.isascii(), self.err)
        self.assertEqual(self.folder_names(), ["talk.pptx"])

    def test_401_without_a_body(self):
        self.assert_failure((401, ""), "the access token is missing or has expired")

    def test_402_without_a_body(self):
        self.assert_failure((402, ""), "there are no credits left for this translation")

    def test_500_with_an_unknown_code_and_an_english_message(self):
        self.assert_failure(
            (500, '{"code":"teapot","message":"short and stout"}'),
            'the translation service answered with the error "teapot" (short and stout)',
        )

    def test_a_message_that_is_not_english_is_left_to_the_log(self):
        self.assert_failure(
            (500, '{"code":"teapot","message":"小茶壶"}'),
            'the translation service answered with the error "teapot"',
        )

    def test_an_empty_body(self):
        self.assert_failure(
            (200, ""), "the translation service can't be reached or gave no answer"
        )

    def test_a_wrong_count(self):
        self.assert_failure(
            (200, '{"translations":["a","b","c","d"]}'),
            "the translation service gave no usable answer (Translation count mismatch)",
        )

    def test_a_service_that_is_not_there(self):
        self.deck()
        with socket.socket() as closed:
            closed.bind(("127.0.0.1", 0))
            url = f"http://127.0.0.1:{closed.getsockname()[1]}"
            self.assertEqual(self.translate("talk.pptx", "--to", "es", "--service", url), 1)
        self.assertEqual(len(self.complaints()), 1)
        self.assertEqual(self.folder_names(), ["talk.pptx"])

    def test_a_failed_run_leaves_the_deck_alone_in_place_too(self):
        deck = self.deck()
        before = self.bytes_of(deck)
        with ScriptedService(answer=(402, "")) as service:
            self.assertEqual(self.served(service, "talk.pptx", "--in-place"), 1)
        self.assertEqual(self.bytes_of(deck), before)


class Telling(CommandTest):
    def test_languages_and_token_reach_the_service(self):
        self.deck()
        with open(self.path("token"), "w", encoding="utf-8") as file:
            file.write("s3cret 500\n")
        with ScriptedService() as service:
            self.assertEqual(
                self.served(service, "talk.pptx", "--from", "en", "--token-file", "token"), 0
            )
        self.assertEqual(service.headers[0]["Authorization"], "Bearer s3cret")
        self.assertEqual(service.requests[0]["sourceLang"], "en")
        self.assertEqual(service.requests[0]["targetLang"], "es")
        self.assertEqual(texts_of(self.path("talk.es.pptx"), 2), ["&lt;Third text&gt;"])

    def test_events_are_one_object_a_line_with_the_pages_fields_in_order(self):
        self.deck()
        self.assertEqual(self.pseudo("talk.pptx", "--json"), 0)
        events = [json.loads(line) for line in self.out.splitlines()]
        self.assertEqual(
            [event["event"] for event in events],
            ["onRunStarted", "onScanProgress", "onScanProgress", "onReady", "onProgress",
             "onProgress", "onProgress", "onComplete"],
        )
        fields = {
            "onRunStarted": ["event", "runId"],
            "onScanProgress": ["event", "runId", "current", "total", "phase"],
            "onReady": ["event", "runId", "total", "translatable"],
            "onProgress": ["event", "runId", "wordIndex", "total", "skipped", "original",
                           "translated"],
            "onComplete": ["event", "runId", "elapsed", "total", "bilingualCopy"],
        }
        for event in events:
            self.assertEqual(list(event), fields[event["event"]])
            self.assertEqual(event["runId"], events[0]["runId"])
        self.assertEqual(events[5]["original"], "Second text")
        self.assertEqual(events[5]["translated"], "⟦Second text⟧")
        self.assertIn("3 texts translated", self.err)

    def test_events_of_a_failed_run_keep_the_runs_own_words(self):
        self.deck()
        with ScriptedService(answer=(401, "")) as service:
            self.assertEqual(self.served(service, "talk.pptx", "--json"), 1)
        last = json.loads(self.out.splitlines()[-1])
        self.assertEqual(list(last), ["event", "runId", "code", "message"])
        self.assertEqual(last["code"], "unauthorized")
        self.assertEqual(last["message"], "登录已失效，请重新登录")
        self.assertTrue(self.err.isascii())

    def test_quiet_says_nothing_when_all_is_well_and_errors_else(self):
        self.deck()
        self.assertEqual(self.pseudo("talk.pptx", "--quiet"), 0)
        self.assertEqual((self.out, self.err), ("", ""))
        self.assertEqual(self.pseudo("missing.pptx", "--quiet"), 2)
        self.assertEqual(self.out, "")
        self.assertEqual(len(self.complaints()), 1)

    def test_stats_tell_calls_times_and_memory(self):
        self.deck()
        self.assertEqual(self.pseudo("talk.pptx", "--stats", "--quiet"), 0)
        self.assertRegex(self.out, r"host calls to collect: [1-9]\d* invokes, \d+ name look-ups; "
                                   r"\d+\.\d\d and \d+\.\d\d for each of 3 texts")
        self.assertRegex(self.out, r"host calls to write: [1-9]\d* invokes, .* of 3 written")
        self.assertRegex(self.out, r"time: open [\d.]+ ms, collect [\d.]+ ms, translate [\d.]+ ms, "
                                   r"write [\d.]+ ms, save [\d.]+ ms")
        self.assertRegex(self.out, r"peak memory: \d+\.\d MB")

    def test_texts_that_come_back_as_they_were_are_counted_apart(self):
        self.deck("same.pptx", [["One text", "Two text"]])
        answer = (200, json.dumps({"translations": ["One text", "Dos"]}))
        with ScriptedService(answer=answer) as service:
            self.assertEqual(self.served(service, "same.pptx"), 0)
        self.assertIn("1 text translated, 1 left as they were, 0 failed", self.out)

    def test_a_pipe_gets_plain_lines(self):
        self.deck()
        self.assertEqual(self.pseudo("talk.pptx"), 0)
        self.assertNotIn("\r", self.out + self.err)
        self.assertNotIn("\x1b", self.out + self.err)
        self.assertEqual(self.err.splitlines()[0],
                         "talk.pptx: 0 of 3 texts translated, on 2 slides")

    def test_a_reader_that_goes_away_does_not_stop_the_run(self):
        self.deck()
        process = self.start("translate", "talk.pptx", "--to", "xx", "--engine", "pseudo", "--json")
        process.stdout.close()
        err = process.stderr.read().decode("utf-8")
        self.assertEqual(process.wait(timeout=LIMIT_SECONDS), 0, err)
        process.stderr.close()
        self.assertTrue(self.exists("talk.xx.pptx"))

    def test_an_output_that_cannot_take_the_words_is_told(self):
        self.deck()
        with open("/dev/full", "wb") as full:
            process = self.start("translate", "talk.pptx", "--to", "xx", "--engine", "pseudo",
                                 stdout=full)
            err = process.stderr.read().decode("utf-8")
            process.stderr.close()
            self.assertEqual(process.wait(timeout=LIMIT_SECONDS), 2)
        self.assertIn("standard output can't be written", err)
        self.assertTrue(self.exists("talk.xx.pptx"))


class Interrupting(CommandTest):
    @staticmethod
    def interrupt(process, service):
        """The worker is inside its request; answered, it sees the flag, once the signal has got
        there: well before the command gives the worker up."""
        process.send_signal(signal.SIGINT)
        time.sleep(GRACE_SECONDS / 4)
        service.release()

    def test_ctrl_c_cancels_the_run_and_the_decks_behind_it(self):
        self.deck("a.pptx")
        self.deck("b.pptx")
        with ScriptedService(hold=True) as service:
            process = self.start_served(service, "a.pptx", "b.pptx", "--json")
            self.interrupt(process, service)
            self.assertEqual(self.end(process), 130)
        self.assertEqual(json.loads(self.out.splitlines()[-1])["event"], "onCancelled")
        self.assertEqual(self.complaints(),
                         ["quillmarch: a.pptx: cancelled, nothing was saved"])
        self.assertEqual(self.folder_names(), ["a.pptx", "b.pptx"])

    def test_a_worker_that_hangs_is_left_behind_after_two_seconds(self):
        self.deck()
        with ScriptedService(hold=True) as service:
            process = self.start_served(service, "talk.pptx")
            begin = time.monotonic()
            process.send_signal(signal.SIGINT)
            self.assertEqual(self.end(process), 130)
            self.assertGreaterEqual(time.monotonic() - begin, GRACE_SECONDS - 0.01)
        self.assertIn("quillmarch: cancelled", self.err)
        self.assertEqual(self.folder_names(), ["talk.pptx"])

    def test_a_second_ctrl_c_leaves_at_once(self):
        self.deck()
        with ScriptedService(hold=True) as service:
            process = self.start_served(service, "talk.pptx")
            begin = time.monotonic()
            process.send_signal(signal.SIGINT)
            process.send_signal(signal.SIGTERM)
            self.assertEqual(self.end(process), 130)
            # Sooner than the wait for the first one can end.
            self.assertLess(time.monotonic() - begin, GRACE_SECONDS)
        self.assertEqual(self.folder_names(), ["talk.pptx"])

    def test_cancelled_is_graver_than_bad_input(self):
        self.deck()
        with ScriptedService(hold=True) as service:
            process = self.start_served(service, "missing.pptx", "talk.pptx")
            self.interrupt(process, service)
            self.assertEqual(self.end(process), 130)

    def test_in_place_a_cancelled_run_leaves_the_deck_alone(self):
        deck = self.deck()
        before = self.bytes_of(deck)
        with ScriptedService(hold=True) as service:
            process = self.start_served(service, "talk.pptx", "--in-place")
            self.interrupt(process, service)
            self.assertEqual(self.end(process), 130)
        self.assertEqual(self.bytes_of(deck), before)


class OnATerminal(CommandTest):
    def run_on_terminal(self, columns, *words, **environment):
        """Everything that the command writes to a terminal of so many columns."""
        master, slave = pty.openpty()
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        self.environment.update(environment)
        process = self.start(*words, stdout=slave, stderr=slave)
        os.close(slave)
        written = b""
        while True:
            ready, _, _ = select.select([master], [], [], LIMIT_SECONDS)
            if not ready:
                self.fail("the command does not end")
            try:
                piece = os.read(master, 65536)
            except OSError:
                break
            if not piece:
                break
            written += piece
        os.close(master)
        self.assertEqual(process.wait(timeout=LIMIT_SECONDS), 0, written)
        return written.decode("utf-8")

    def test_a_bar_is_drawn_within_the_width_and_taken_away(self):
        self.deck("talk.pptx", [[f"Text of slide {slide}"] for slide in range(1, 9)])
        for columns in (100, 60, 24, 8):
            with ScriptedService(delay=0.12) as service:
                written = self.run_on_terminal(
                    columns, "translate", "talk.pptx", "--to", "es", "--service", service.url,
                    TERM="xterm",
                )
            bars, outcome = written.rsplit("\r\x1b[K", 1)
            frames = [f.removesuffix("\x1b[K") for f in bars.split("\r") if f.strip()]
            self.assertGreater(len(frames), 2, written)
            for frame in frames:
                self.assertLess(len(frame), columns, frame)
            self.assertRegex(outcome, r"^talk\.pptx: 8 texts translated")
            self.assertNotIn("\x1b", outcome)
            if columns == 100:
                self.assertRegex(frames[-1], r"^talk\.pptx \[#+\.*\] [1-8]/8 texts on 8 slides")

    def test_a_terminal_that_cannot_redraw_gets_plain_lines(self):
        self.deck()
        written = self.run_on_terminal(
            80, "translate", "talk.pptx", "--to", "xx", "--engine", "pseudo", TERM="dumb"
        )
        self.assertNotIn("\x1b", written)
        self.assertIn("0 of 3 texts translated", written)


if __name__ == "__main__":
    unittest.main()
