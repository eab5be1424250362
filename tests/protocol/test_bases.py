"""Vorlaxenbases end to end: vorlaxen-tbgen makes files, the engine loads them,
probes them in the search and reports sbhits; the generator's own errors."""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from engine import ENGINE, NO_BASES, start  # noqa: E402

TBGEN = os.path.join(os.path.dirname(ENGINE), "vorlaxen-tbgen")
LOADING = "info string loading vorlaxenbases "
FOUND_3 = "info string vorlaxenbasses with 3 men found (0 MB)"


def tbgen(*args):
    r = subprocess.run([TBGEN, *args], capture_output=True, text=True, timeout=300)
    return r.returncode, r.stderr


class Generator(unittest.TestCase):
    def test_bad_arguments_and_an_unwritable_directory_are_refused_with_a_message(self):
        for args, status, text in ((["kxk"], 2, "unknown material"), (["kqrbnk"], 2, "at most five"),
                                   ([], 2, "usage"),
                                   (["--out", "/proc/vorlaxen-no-such-dir", "krk"], 1, "output directory")):
            code, err = tbgen(*args)
            self.assertEqual(code, status, args)
            self.assertIn(text, err, args)


class EngineWithBases(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.dir = tempfile.mkdtemp(prefix="vorlaxen-bases-")
        cls.addClassCleanup(shutil.rmtree, cls.dir)
        cls.bases = os.path.join(cls.dir, "vorlaxenbases")
        code, err = tbgen("--out", cls.bases, "krk", "kqk")
        assert code == 0, err

    def krk_search(self, options=(), depth=6):
        e = start(self, ENGINE, cwd=self.dir)
        e.sync()
        for option in options:
            e.send("setoption name " + option)
        e.sync()
        e.send("position fen 8/8/8/4k3/8/8/8/R3K3 w - - 0 1")
        e.send("go depth %d" % depth)
        return [l for l in e.read_until(lambda l: l.startswith("bestmove")) if " pv " in l]

    def test_krk_searches_report_sbhits_unless_switched_off_or_nothing_loaded(self):
        pv = self.krk_search()
        self.assertTrue(pv and all(" sbhits " in l for l in pv), pv)
        score = re.search(r" score (cp|mate) (-?\d+)", pv[-1])
        self.assertTrue(score.group(1) == "mate" or int(score.group(2)) > 5000, pv[-1])
        for option in ("Use Vorlaxenbases value false", "UCI_VorlaxenbasesPath value /nonexistent/krk.tbe"):
            self.assertFalse([l for l in self.krk_search([option], 4) if "sbhits" in l], option)

    def test_loading_by_default_list_file_option_and_missing_file(self):
        # Directories, list files and broken files: the loader's unit tests.
        e = start(self, ENGINE, cwd=self.dir)
        self.assertEqual(e.sync(), [LOADING + "vorlaxenbases/krk.tbe", LOADING + "vorlaxenbases/kqk.tbe", FOUND_3])
        self.assertEqual(e.sync(), [])
        krk, missing = os.path.join(self.bases, "krk.tbe"), os.path.join(self.bases, "kpk.TBE")
        e.send("setoption name UCI_VorlaxenbasesPath value " + krk)
        self.assertEqual(e.sync(), [LOADING + krk, FOUND_3])
        e.send("setoption name UCI_VorlaxenbasesPath value " + missing)
        self.assertEqual(e.sync(), ["info string vorlaxenbases not found: " + missing, NO_BASES])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
