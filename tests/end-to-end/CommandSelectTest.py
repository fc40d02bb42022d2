"""Translates selections of decks and lets an independent reader look at every shape of them:

    CommandSelectTest.py QUILLMARCH SAMPLES

A selected text must come back between the pseudo engine's marks, and every other shape, and every
other part of the file, as it was.
"""
import pathlib
import sys
import tempfile
import unittest

from lxml import etree

from command import Command
from deck_changes import Changes, texts, top_shapes
from deck_text import Deck, marked

PROGRAM, SAMPLES = sys.argv[1], pathlib.Path(sys.argv[2])
del sys.argv[1:3]


class SelectTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="quillmarch-select-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.command = Command(PROGRAM, self.folder / "home")

    def run_on(self, deck, *words):
        self.output = self.folder / "out.pptx"
        self.output.unlink(missing_ok=True)
        self.outcome = self.command.run("translate", deck, "--to", "xx", "--engine", "pseudo",
                                        "--output", self.output, *words)
        return self.outcome.code

    def select(self, deck, *selections):
        words = [word for what in selections for word in ("--select", what)]
        self.assertEqual(self.run_on(SAMPLES / deck, *words), 0, self.outcome.err)
        return Changes(SAMPLES / deck, self.output)

    def refused(self, *words):
        self.assertEqual(self.run_on(SAMPLES / "quarterly-review.pptx", *words), 2, self.outcome.err)
        self.assertFalse(self.output.exists())
        self.assertEqual(len(self.outcome.err_lines), 1, self.outcome.err)
        return self.outcome.err_lines[0]

    def assert_marked(self, changes, *places):
        """These shapes are marked throughout, and nothing else is changed."""
        self.assertEqual(changes.shapes, set(places))
        self.assertFalse(changes.elsewhere)
        self.assertEqual(changes.parts, {changes.slides[slide - 1] for slide, _ in places})
        for slide, place in places:
            old, new = changes.texts(slide, place)
            self.assertEqual(new, [marked(text) if any(map(str.isalpha, text)) else text for text in old])


class Shapes(SelectTest):
    def test_a_shape_by_its_name(self):
        self.assert_marked(self.select("quarterly-review.pptx", "3:Title"), (3, 1))

    def test_a_shape_by_its_number(self):
        self.assert_marked(self.select("quarterly-review.pptx", "2:#2"), (2, 2))

    def test_several_shapes_by_commas_or_by_repeating_the_option(self):
        for selections in (["3:Title,3:#3"], ["3:Title", "3:#3"], ["3:#3,3:Title,3:#1"]):
            self.assert_marked(self.select("quarterly-review.pptx", *selections), (3, 1), (3, 3))

    def test_a_table_and_a_whole_group(self):
        self.assert_marked(self.select("quarterly-review.pptx", "3:Results"), (3, 2))
        self.assert_marked(self.select("quarterly-review.pptx", "4:Journey"), (4, 2))

    def test_one_member_of_a_group_and_not_its_group(self):
        changes = self.select("quarterly-review.pptx", "4:#2/2")
        self.assertEqual(changes.shapes, {(4, 2)})
        self.assertFalse(changes.elsewhere)
        old, new = changes.texts(4, 2)
        differing = [(one, other) for one, other in zip(old, new) if one != other]
        self.assertGreater(len(old), len(differing))
        self.assertGreater(len(differing), 0)
        for one, other in differing:
            self.assertEqual(other, marked(one))

    def test_the_view_of_the_events_is_that_of_a_selection(self):
        self.assertEqual(self.run_on(SAMPLES / "quarterly-review.pptx", "--select", "3:Title", "--json"), 0)
        self.assertIn('"phase":"shapes"', self.outcome.out)


class Slides(SelectTest):
    def test_the_named_slides_with_their_notes_and_no_other(self):
        changes = self.select("quarterly-review.pptx", "2,5-6")
        self.assertEqual({slide for slide, _ in changes.shapes}, {2, 5, 6})
        self.assertFalse(changes.elsewhere)
        notes = {target for number in (2, 5, 6)
                 for what, target in changes.before.relations(changes.slides[number - 1]).values()
                 if what == "notesSlide"}
        own = {changes.slides[number - 1] for number in (2, 5, 6)}
        self.assertTrue(own <= changes.parts)
        self.assertTrue(changes.parts <= own | notes, changes.parts)

    def test_slides_come_in_the_order_in_which_they_are_named(self):
        self.select("quarterly-review.pptx", "6,1")
        self.assertEqual(self.run_on(SAMPLES / "quarterly-review.pptx", "--select", "6,1", "--json"), 0)
        out = self.outcome.out
        self.assertLess(out.index("Next steps"), out.index("Quarterly review"))


class Text(SelectTest):
    def test_a_piece_of_a_text_and_nothing_around_it(self):
        changes = self.select("quarterly-review.pptx", "3:Title:9+2")
        self.assertEqual(changes.shapes, {(3, 1)})
        self.assertFalse(changes.elsewhere)
        old, new = changes.texts(3, 1)
        self.assertEqual(old, ["Results by region"])
        self.assertEqual(new, ["Results " + marked("by") + " region"])

    def test_a_whole_paragraph_keeps_its_end(self):
        deck = SAMPLES / "quarterly-review.pptx"
        root = etree.fromstring(Deck(deck).data("ppt/slides/slide2.xml"))
        before = texts(top_shapes(root)[1])
        changes = self.select("quarterly-review.pptx", f"2:#2:1+{len(before[0]) + 1}")
        old, new = changes.texts(2, 2)
        self.assertEqual(new, [marked(old[0])] + old[1:])
        self.assertEqual(changes.shapes, {(2, 2)})


class Refusals(SelectTest):
    def test_shapes_of_several_slides(self):
        self.assertIn("shapes on several slides cannot be selected together",
                      self.refused("--select", "3:#1,4:#1"))

    def test_selections_that_no_host_has(self):
        self.assertIn("slides and shapes cannot", self.refused("--select", "2,3:#1"))
        self.assertIn("only by itself", self.refused("--select", "3:#1:1+2,3:#2"))
        self.assertIn("only by itself", self.refused("--select", "3:#1:1+2", "--select", "3:#1:5+2"))
        self.assertIn("only with others of the same group", self.refused("--select", "4:#1,4:#2/1"))

    def test_what_is_no_selection(self):
        for word in ("x", "0", "7-5", "1-", "-1", "3:", ":#1", "3:#", "3:#0", "3:#1/", "3:#x", "2,,3",
                     "2 ,3", "99999999999", "3:#99999999999"):
            self.assertIn("--select takes", self.refused("--select=" + word), word)

    def test_a_slide_besides(self):
        self.assertIn("--slide", self.refused("--select", "2", "--slide", "2"))

    def test_what_the_deck_has_not(self):
        self.assertIn("there is no slide 7; the deck has 6 slides", self.refused("--select", "5-7"))
        self.assertIn('there is no shape "Nobody" on slide 3', self.refused("--select", "3:Nobody"))
        self.assertIn("there is no shape #9 on slide 3", self.refused("--select", "3:#9"))
        self.assertIn("there is no shape #2/99 on slide 4", self.refused("--select", "4:#2/99"))
        self.assertIn('has 17 characters', self.refused("--select", "3:Title:9+10"))
        self.assertIn("has no text", self.refused("--select", "3:Results:1+2"))

    def test_a_selection_without_text_is_a_run_that_failed(self):
        self.assertEqual(self.run_on(SAMPLES / "shapes-of-all-kinds.pptx", "--select", "2:Digits alone"), 1)
        self.assertIn("the selection holds no text to translate; nothing was saved", self.outcome.err)
        self.assertFalse(self.output.exists())


if __name__ == "__main__":
    unittest.main()
