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
import termios
import time
import unittest

from CommandCase import LIMIT_SECONDS, CommandTest
from CommandDeck import texts_of
from CommandService import ScriptedService

GRACE_SECONDS = 2.0


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
        self.assertIn("Cannot read the token file nowhere: no such file.", self.err)
        self.assertEqual(service.requests, [])


class SeveralDecks(CommandTest):
    def test_one_bad_deck_does_not_stop_the_others_and_the_gravest_code_counts(self):
        self.deck("a.pptx")
        with open(self.path("bad.pptx"), "w", encoding="utf-8") as file:
            file.write("no zip")
        self.deck("c.pptx")
        self.assertEqual(self.pseudo("missing.pptx", "a.pptx", "bad.pptx", "c.pptx"), 2)
        self.assertEqual(len(self.complaints()), 2, self.err)
        self.assertIn("quillmarch: Cannot open missing.pptx: no such file.", self.err)
        self.assertIn("quillmarch: Cannot open bad.pptx: ", self.err)
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
        self.assertIn("Cannot translate talk.pptx: there is no slide 3; the deck has 2 slides.", self.err)
        self.assertFalse(self.exists("talk.xx.pptx"))


class FailedRuns(CommandTest):
    def assert_failure(self, answer, sentence):
        self.deck()
        with ScriptedService(answer=answer) as service:
            self.assertEqual(self.served(service, "talk.pptx"), 1)
        self.assertEqual(self.complaints(), [
            f"quillmarch: Cannot translate talk.pptx: {sentence}; nothing was saved."
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
            (200, ""), "the translation service cannot be reached or gave no answer"
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
        self.assertEqual(self.run_command("--version"), 0)
        self.assertIn(self.out.split()[1], json.dumps(service.requests[0]))
        self.assertEqual(service.requests[0]["targetLang"], "es")
        self.assertEqual(texts_of(self.path("talk.es.pptx"), 2), ["&lt;Third text&gt;"])

    def test_events_are_one_object_a_line_with_the_pages_fields_in_order(self):
        self.deck()
        self.assertEqual(self.pseudo("talk.pptx", "--json"), 0)
        events = [json.loads(line) for line in self.out.splitlines()]
        self.assertEqual(
            [event["event"] for event in events],
            ["deck", "onRunStarted", "onScanProgress", "onScanProgress", "onReady", "onProgress",
             "onProgress", "onProgress", "onComplete", "result"],
        )
        fields = {
            "onRunStarted": ["event", "runId"],
            "onScanProgress": ["event", "runId", "current", "total", "phase"],
            "onReady": ["event", "runId", "total", "translatable"],
            "onProgress": ["event", "runId", "wordIndex", "total", "skipped", "original",
                           "translated"],
            "onComplete": ["event", "runId", "elapsed", "total", "bilingualCopy"],
        }
        for event in events[1:-1]:
            self.assertEqual(list(event), fields[event["event"]])
            self.assertEqual(event["runId"], events[1]["runId"])
        self.assertEqual(events[6]["original"], "Second text")
        self.assertEqual(events[6]["translated"], "⟦Second text⟧")
        self.assertEqual(events[0], {"event": "deck", "deck": "talk.pptx", "output": "talk.xx.pptx",
                                     "number": 1, "count": 1})
        result = events[-1]
        self.assertGreater(result.pop("seconds"), 0)
        self.assertEqual(result, {"event": "result", "deck": "talk.pptx", "output": "talk.xx.pptx",
                                  "exitCode": 0, "error": None, "texts": 3, "translated": 3,
                                  "unchanged": 0, "notAnswered": 0, "withoutLetters": 0,
                                  "failures": [], "left": [], "slidesNotWritten": []})
        self.assertIn("3 texts translated", self.err)

    def test_events_of_a_failed_run_keep_the_runs_own_words(self):
        self.deck()
        with ScriptedService(answer=(401, "")) as service:
            self.assertEqual(self.served(service, "talk.pptx", "--json"), 1)
        last = json.loads(self.out.splitlines()[-2])
        self.assertEqual(list(last), ["event", "runId", "code", "message"])
        result = json.loads(self.out.splitlines()[-1])
        self.assertEqual((result["exitCode"], result["output"]), (1, None))
        self.assertIn("the access token is missing or has expired", result["error"])
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
        self.assertRegex(self.out, r"calls into the deck to read: [1-9]\d* \(\d+\.\d\d for each of 3 "
                                   r"texts\), names looked up: \d+")
        self.assertRegex(self.out, r"calls into the deck to write: [1-9]\d* \(.* of 3 texts\)")
        self.assertRegex(self.out, r"time: open [\d.]+ ms, read [\d.]+ ms, translate [\d.]+ ms, "
                                   r"write [\d.]+ ms, save [\d.]+ ms")
        self.assertRegex(self.out, r"peak memory: \d+\.\d MB")

    def test_texts_that_come_back_as_they_were_are_counted_apart(self):
        self.deck("same.pptx", [["One text", "Two text"]])
        answer = (200, json.dumps({"translations": ["One text", "Dos"]}))
        with ScriptedService(answer=answer) as service:
            self.assertEqual(self.served(service, "same.pptx"), 0)
        self.assertIn("1 text translated, 1 left as it was, in ", self.out)
        with ScriptedService(answer=answer) as service:
            self.assertEqual(self.served(service, "same.pptx", "--list-left"), 0)
        self.assertIn('same.pptx: slide 1, "Text 1": left as it was: "One text"', self.out)

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

    def test_an_output_that_cannot_take_the_words_is_told_and_the_deck_is_saved(self):
        self.deck()
        with open("/dev/full", "wb") as full:
            process = self.start("translate", "talk.pptx", "--to", "xx", "--engine", "pseudo",
                                 stdout=full)
            err = process.stderr.read().decode("utf-8")
            process.stderr.close()
            self.assertEqual(process.wait(timeout=LIMIT_SECONDS), 0)
        self.assertIn("Cannot write to standard output: ", err)
        self.assertTrue(self.exists("talk.xx.pptx"))

    def test_closed_streams_neither_cancel_nor_fail_a_run(self):
        self.deck("talk.pptx", [[f"Text {n}" for n in range(1, 30)]])
        for closed in ((0, 1), (0, 2), (1, 2), (0, 1, 2), (2,)):
            def close_them():
                for stream in closed:
                    os.close(stream)
            with ScriptedService(delay=0.05) as service:
                process = self.start("translate", "talk.pptx", "--to", "es", "--service", service.url,
                                     "--force", preexec_fn=close_them)
                self.assertEqual(self.end(process), 0, closed)
            self.assertEqual(len(texts_of(self.path("talk.es.pptx"), 1)), 29)

    def test_standard_output_takes_the_deck(self):
        deck = self.deck()
        self.assertEqual(self.pseudo("talk.pptx", "-o", "plain.pptx"), 0)
        process = self.start("translate", "/dev/stdin", "--to", "xx", "--engine", "pseudo", "-o", "-",
                             stdin=subprocess.PIPE)
        out, err = process.communicate(self.bytes_of(deck), timeout=LIMIT_SECONDS)
        self.assertEqual(process.returncode, 0, err)
        self.assertEqual(out, self.bytes_of(self.path("plain.pptx")))
        self.assertIn(b"standard input: 3 texts translated", err)
        self.assertEqual(self.folder_names(), ["plain.pptx", "talk.pptx"])

    def test_a_standard_output_that_cannot_take_the_deck_is_an_error(self):
        self.deck()
        with open("/dev/full", "wb") as full:
            process = self.start("translate", "talk.pptx", "--to", "xx", "--engine", "pseudo",
                                 "-o", "-", stdout=full)
            err = process.stderr.read().decode("utf-8")
            process.stderr.close()
            self.assertEqual(process.wait(timeout=LIMIT_SECONDS), 2)
        self.assertIn("Cannot write standard output: no space left on device.", err)


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
        events = [json.loads(line) for line in self.out.splitlines()[-2:]]
        self.assertEqual(events[0]["event"], "onCancelled")
        self.assertEqual((events[1]["event"], events[1]["exitCode"]), ("result", 130))
        self.assertEqual(self.complaints(),
                         ["quillmarch: a.pptx: cancelled, nothing was saved",
                          "quillmarch: 1 deck not begun: b.pptx"])
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
