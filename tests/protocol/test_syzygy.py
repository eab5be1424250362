"""Syzygy tablebases as a GUI sees them: the "Syzygy Path" option and its
messages, broken and vanished files, and the root resolved by the tables."""
import os
import re
import shutil
import sys
import unittest
from pathlib import Path

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from engine import SYZYGY as TABLES, EngineTestCase, needs_syzygy  # noqa: E402

KQVK = "position fen 8/8/8/2k5/8/8/8/3QK3 w - - 0 1"
FOUND_1 = ["info string Found 1 syzygy tablebases"]


class SyzygyTestCase(EngineTestCase):
    def set_path(self, value):
        self.engine.send("setoption name Syzygy Path value " + value)
        return self.engine.sync()

    def directory(self, name, data=None):
        """A directory holding KQvK.rtbw: a link to the real table, or a file of that content."""
        path = os.path.join(self.tmp, name)
        os.makedirs(path)
        target = os.path.join(path, "KQvK.rtbw")
        if data is None:
            os.symlink(os.path.join(TABLES, "KQvK.rtbw"), target)
        else:
            Path(target).write_bytes(data)
        return path

    def search(self, position, depth=3):
        """(info lines, last score, whether tbhits were reported)."""
        lines, best, _ = self.go(position, "go depth %d" % depth)
        self.assertNotEqual(best, "0000")
        scores = re.findall(r" score (\w+ -?\d+)", "\n".join(lines))
        return lines, scores[-1] if scores else None, any(" tbhits " in l for l in lines)


class PathOption(SyzygyTestCase):
    def test_no_path_and_missing_directories(self):
        self.assertEqual(self.set_path(""), [])  # "<empty>": test_uci
        self.assertEqual(self.set_path("/nonexistent/tables;/nonexistent/more"),
                         ["info string Found 0 syzygy tablebases"])

    @needs_syzygy
    def test_a_table_in_the_second_directory_is_found(self):
        first, second = os.path.join(self.tmp, "first"), self.directory("second")
        os.makedirs(first)
        for separator in (";", ":"):
            self.assertEqual(self.set_path(first + separator + second), FOUND_1)
            self.assertEqual(self.search(KQVK)[1:], ("cp 28000", True))

    @needs_syzygy
    def test_broken_and_vanished_files_fail_the_probe_and_the_search_goes_on(self):
        real = Path(TABLES, "KQvK.rtbw").read_bytes()
        for name, data in (("magic", b"\0" * 64), ("empty", b""), ("cut", real[:len(real) // 2]),
                           ("gone", None)):
            path = self.directory(name, data)
            self.assertEqual(self.set_path(path), FOUND_1)
            if data is None:
                shutil.rmtree(path)
            lines, _, tbhits = self.search(KQVK, depth=2)
            self.assertIn("Could not find KQvK.rtbw" if data is None else "Corrupted table.", lines, name)
            self.assertFalse(tbhits, name)


@needs_syzygy
class RootProbe(SyzygyTestCase):
    def setUp(self):
        super().setUp()
        self.assertEqual(self.set_path(TABLES)[-1][:18], "info string Found ")

    def test_the_root_score_is_the_tables_result_and_certain(self):
        # Which root moves the tables keep: the unit tests (syzygy_test).
        self.engine.send("setoption name UCI_ShowWDL value true")
        for fen, score, wdl in (("8/8/8/8/8/1k6/R7/3K4 b - - 0 1", "cp 0", "0 1000 0"),  # Kxa2
                                ("8/8/8/8/8/2k5/8/R3K3 b - - 0 1", "cp -28000", "0 0 1000"),
                                # a win beyond 50 moves
                                ("8/r1B5/8/2R5/8/k1K5/8/8 w - - 0 1", "cp 0", "0 1000 0")):
            lines, found, tbhits = self.search("position fen " + fen)
            self.assertEqual((found, tbhits), (score, True), fen)
            for line in (l for l in lines if " score " in l):
                self.assertRegex(line, r" score %s (lowerbound |upperbound )?wdl %s nodes " % (score, wdl))

    def test_options_switch_the_tables_and_the_50_move_rule(self):
        self.engine.send("setoption name Syzygy 50 Moves Rule value false")
        self.assertEqual(self.search("position fen 8/r1B5/8/2R5/8/k1K5/8/8 w - - 0 1")[1], "cp 28000")
        self.engine.send("setoption name Use Syzygy Databases value false")
        _, score, tbhits = self.search(KQVK)
        self.assertFalse(tbhits)
        self.assertNotEqual(score, "cp 28000")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
