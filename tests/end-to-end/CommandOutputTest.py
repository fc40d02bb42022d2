"""Where the built command's outputs go, and that nothing of the user's is lost on the way:
CommandOutputTest.py QUILLMARCH"""

import os
import signal
import unittest
import zipfile

from CommandCase import CommandTest
from CommandDeck import make_deck, texts_of
from CommandService import ScriptedService


def limit_file_size():
    """The deck can't be written, as on a full disk; the log's few lines can."""
    import resource

    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    resource.setrlimit(resource.RLIMIT_FSIZE, (4000, 4000))


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
            r"^talk\.pptx: 3 texts translated in \d+\.\d s; saved as talk\.xx\.pptx\n$",
        )

    def test_a_file_of_somebody_else_is_replaced_by_force_only(self):
        self.deck()
        with open(self.path("out.pptx"), "w", encoding="utf-8") as file:
            file.write("earlier")
        self.assertEqual(self.pseudo("talk.pptx", "--output", "out.pptx"), 2)
        self.assertIn("Cannot write out.pptx: it exists already; use --force to replace it.", self.err)
        self.assertEqual(self.bytes_of(self.path("out.pptx")), b"earlier")
        self.assertEqual(self.pseudo("talk.pptx", "--output", "out.pptx", "--force"), 0)
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
        self.assertEqual(self.pseudo("talk.pptx", "--output", "out.pptx", "--force"), 2)
        self.assertIn("Cannot write out.pptx: the existing file is read-only.", self.err)
        self.assertEqual(self.bytes_of(self.path("out.pptx")), b"earlier")

    def test_a_full_disk_is_a_sentence_and_leaves_nothing(self):
        self.deck()
        process = self.start(
            "translate", "talk.pptx", "--to", "xx", "--engine", "pseudo", "--quiet",
            preexec_fn=limit_file_size,
        )
        self.assertEqual(self.end(process), 2)
        self.assertEqual(len(self.complaints()), 1, self.err)
        self.assertTrue(self.err.startswith("quillmarch: Cannot write talk.xx.pptx: "), self.err)
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


class NothingOfTheUsersIsLost(CommandTest):
    def test_a_second_run_replaces_its_own_output_and_asks_before_an_edited_one(self):
        self.deck()
        self.assertEqual(self.pseudo("talk.pptx"), 0)
        self.assertEqual(self.pseudo("talk.pptx"), 0, self.err)
        make_deck(self.path("talk.xx.pptx"), [["Edited by hand"]])
        self.assertEqual(self.pseudo("talk.pptx"), 2)
        self.assertEqual(self.complaints(), [
            "quillmarch: Cannot write talk.xx.pptx: it was edited after quillmarch wrote it; use "
            "--force to replace it."])
        self.assertEqual(texts_of(self.path("talk.xx.pptx"), 1), ["Edited by hand"])
        self.assertEqual(self.pseudo("talk.pptx", "--skip-existing"), 0)
        self.assertIn("talk.pptx: left out, talk.xx.pptx exists", self.out)
        self.assertEqual(texts_of(self.path("talk.xx.pptx"), 1), ["Edited by hand"])
        self.assertEqual(self.pseudo("talk.pptx", "--force"), 0)
        self.assertEqual(texts_of(self.path("talk.xx.pptx"), 2), ["⟦Third text⟧"])

    def test_a_second_run_over_all_decks_leaves_out_the_outputs_of_the_first(self):
        self.deck("a.pptx")
        self.deck("b.pptx")
        self.assertEqual(self.pseudo("a.pptx", "b.pptx"), 0)
        names = self.folder_names()
        self.assertEqual(self.pseudo(*names), 0, self.err)
        self.assertEqual(self.folder_names(), names)
        self.assertEqual(self.complaints(), [
            "quillmarch: 2 decks left out as translations of others: a.xx.pptx, b.xx.pptx"])

    def test_a_deck_saved_by_another_program_meanwhile_is_not_overwritten(self):
        for words in (["--in-place"], []):
            deck = self.deck()
            newer = self.deck("newer.pptx", [["Saved meanwhile"]])
            after = self.bytes_of(newer)
            with ScriptedService(hold=True) as service:
                process = self.start_served(service, "talk.pptx", *words)
                os.rename(newer, deck)
                service.release()
                self.assertEqual(self.end(process), 2)
            self.assertEqual(self.bytes_of(deck), after)
            self.assertEqual(len(self.complaints()), 1, self.err)
            self.assertIn("nother program changed ", self.complaints()[0])
            self.assertEqual(self.folder_names(), ["talk.pptx"])

    def test_an_output_made_by_another_program_meanwhile_is_not_overwritten(self):
        self.deck()
        with ScriptedService(hold=True) as service:
            process = self.start_served(service, "talk.pptx")
            with open(self.path("talk.es.pptx"), "w", encoding="utf-8") as file:
                file.write("theirs")
            service.release()
            self.assertEqual(self.end(process), 2)
        self.assertIn("Cannot write talk.es.pptx: another program changed it meanwhile.", self.err)
        self.assertEqual(self.bytes_of(self.path("talk.es.pptx")), b"theirs")

    def test_the_outputs_place_is_tried_before_anything_is_paid_for(self):
        self.deck()
        with open(self.path("talk.es.pptx"), "w", encoding="utf-8") as file:
            file.write("theirs")
        with ScriptedService() as service:
            self.assertEqual(self.served(service, "talk.pptx"), 2)
            self.assertEqual(service.requests, [])

    def test_a_private_deck_gives_a_private_output(self):
        os.chmod(self.deck(), 0o600)
        self.assertEqual(self.pseudo("talk.pptx"), 0)
        self.assertEqual(os.stat(self.path("talk.xx.pptx")).st_mode & 0o777, 0o600)

    def test_a_deck_saved_as_another_kind_gets_that_kinds_content_type(self):
        self.deck()
        self.assertEqual(self.pseudo("talk.pptx", "-o", "talk.potx"), 0, self.err)
        with zipfile.ZipFile(self.path("talk.potx")) as package:
            types = package.read("[Content_Types].xml").decode("utf-8")
        self.assertIn('PartName="/ppt/presentation.xml" ContentType="application/vnd.openxmlformats-'
                      'officedocument.presentationml.template.main+xml"', types)
        self.assertEqual(self.pseudo("talk.pptx", "-o", "talk.pptm"), 0, self.err)
        self.assertEqual(self.pseudo("talk.pptm", "-o", "again.pptx"), 2)
        self.assertIn("Cannot write again.pptx: the deck may contain macros", self.err)
        self.assertEqual(self.pseudo("talk.pptx", "-o", "talk.odp"), 2)
        self.assertIn("Cannot write talk.odp: .odp is another format; ", self.err)

    def test_many_missing_pictures_are_one_warning(self):
        deck = self.deck()
        with zipfile.ZipFile(deck) as package:
            parts = {name: package.read(name) for name in package.namelist()}
        links = "".join(f'<Relationship Id="x{n}" Type="http://schemas.openxmlformats.org/officeDocument/'
                        f'2006/relationships/image" Target="../media/{n}.png"/>' for n in range(100000))
        name = "ppt/slides/_rels/slide1.xml.rels"
        parts[name] = parts[name].replace(b"</Relationships>", links.encode() + b"</Relationships>")
        with zipfile.ZipFile(deck, "w", zipfile.ZIP_STORED) as package:
            for part, data in parts.items():
                package.writestr(part, data)
        self.assertEqual(self.pseudo("talk.pptx"), 0)
        self.assertEqual(len(self.complaints()), 1)
        self.assertIn("100000 parts that the deck refers to are missing", self.complaints()[0])


if __name__ == "__main__":
    unittest.main()
