"""The "perft" self-test: walks the stored positions through the search's
move picker and evaluation and checks every leaf count."""
import os
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from engine import Engine  # noqa: E402

ENGINE = sys.argv[1] if len(sys.argv) > 1 else "build/vorlaxen"


class SelfTest(unittest.TestCase):
    def test_every_enabled_entry_matches_and_the_position_is_kept(self):
        with Engine(ENGINE, timeout=120.0) as engine:
            engine.read_line()  # greeting
            engine.send("position fen 6k1/5ppp/8/8/8/8/5PPP/R5K1 w - - 0 1")
            engine.send("perft")
            lines = engine.read_until("------ Test finished with 0 errors ------")
            self.assertEqual(sum(1 for l in lines if l == "###### Test OK ########"), 30)
            self.assertFalse(any("Error in Test" in l for l in lines))
            self.assertIn("perft 3: 53392", lines)
            at = lines.index("perft 3: 53392")
            self.assertEqual(lines[at + 1], "")
            self.assertEqual([l.split(": ")[0] for l in lines[at + 2:at + 7]],
                             ["captures", "ep", "castles", "promotions", "checks"])
            self.assertEqual(lines[at + 7], "###### Test OK ########")
            self.assertEqual(lines[0], "Testing position:")
            engine.send("go depth 2")
            best = engine.read_until(lambda l: l.startswith("bestmove"))[-1]
            self.assertEqual(best, "bestmove a1a8")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
