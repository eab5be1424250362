"""Vorlaxenbases end to end: vorlaxen-tbgen makes files, the engine loads
them (by file, list file, directory and default path), probes them in the
search and reports sbhits; the generator's own errors."""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from engine import Engine  # noqa: E402

ENGINE = os.path.abspath(sys.argv[1] if len(sys.argv) > 1 else "build/vorlaxen")
TBGEN = os.path.join(os.path.dirname(ENGINE), "vorlaxen-tbgen")
KRK = "position fen 8/8/8/4k3/8/8/8/R3K3 w - - 0 1"


def tbgen(*args):
    r = subprocess.run([TBGEN, *args], capture_output=True, text=True, timeout=300)
    return r.returncode, r.stderr


class Generator(unittest.TestCase):
    def test_bad_arguments_are_refused_with_a_message(self):
        for args, status, text in ((["kxk"], 2, "unknown material"), (["kqrbnk"], 2, "at most five"),
                                   (["kk"], 2, "no piece"), (["--all", "6"], 2, "--all wants"),
                                   ([], 2, "usage")):
            code, err = tbgen(*args)
            self.assertEqual(code, status, args)
            self.assertIn(text, err, args)

    def test_an_unwritable_directory_is_reported(self):
        code, err = tbgen("--out", "/proc/vorlaxen-no-such-dir", "krk")
        self.assertEqual(code, 1)
        self.assertIn("output directory", err)


class EngineWithBases(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.dir = tempfile.mkdtemp(prefix="vorlaxen-bases-")
        code, err = tbgen("--out", os.path.join(cls.dir, "vorlaxenbases"), "krk", "kqk")
        assert code == 0, err
        cls.bases = os.path.join(cls.dir, "vorlaxenbases")

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.dir)

    def start(self):
        engine = Engine(ENGINE, cwd=self.dir)
        self.addCleanup(engine.kill)
        engine.read_line()  # greeting
        return engine

    def search(self, engine, depth=6):
        engine.send(KRK)
        engine.send("go depth %d" % depth)
        return engine.read_until(lambda l: l.startswith("bestmove"))

    def test_the_default_list_file_is_read_by_the_first_isready(self):
        e = self.start()
        self.assertEqual(e.sync(), ["info string loading vorlaxenbases vorlaxenbases/krk.tbe",
                                    "info string loading vorlaxenbases vorlaxenbases/kqk.tbe",
                                    "info string vorlaxenbasses with 3 men found (0 MB)"])
        self.assertEqual(e.sync(), [])

    def test_a_krk_search_reports_sbhits_and_a_winning_score(self):
        e = self.start()
        e.sync()
        lines = self.search(e)
        pv = [l for l in lines if " pv " in l]
        self.assertTrue(pv)
        self.assertTrue(all(" sbhits " in l for l in pv), pv[-1])
        score = re.search(r" score (cp|mate) (-?\d+)", pv[-1])
        self.assertTrue(score.group(1) == "mate" or int(score.group(2)) > 5000, pv[-1])

    def test_no_sbhits_when_switched_off(self):
        e = self.start()
        e.sync()
        e.send("setoption name Use Vorlaxenbases value false")
        lines = self.search(e)
        self.assertFalse([l for l in lines if "sbhits" in l])

    def test_loading_by_file_directory_and_missing_file(self):
        e = self.start()
        e.sync()
        krk = os.path.join(self.bases, "krk.tbe")
        e.send("setoption name UCI_VorlaxenbasesPath value " + krk)
        self.assertEqual(e.sync(), ["info string loading vorlaxenbases " + krk,
                                    "info string vorlaxenbasses with 3 men found (0 MB)"])
        e.send("setoption name UCI_VorlaxenbasesPath value " + self.bases)
        lines = e.sync()
        self.assertEqual(sorted(lines[:-1]), sorted("info string loading vorlaxenbases %s/%s" % (self.bases, f)
                                                    for f in ("krk.tbe", "kqk.tbe")))
        missing = os.path.join(self.bases, "kpk.TBE")
        e.send("setoption name UCI_VorlaxenbasesPath value " + missing)
        self.assertEqual(e.sync(), ["info string vorlaxenbases not found: " + missing,
                                    "info string vorlaxenbasses with 0 men found (0 MB)"])
        lines = self.search(e, 3)
        self.assertFalse([l for l in lines if "sbhits" in l])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
