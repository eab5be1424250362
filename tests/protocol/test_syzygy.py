"""Syzygy tablebases as a GUI sees them: the "Syzygy Path" option and its
messages, broken and vanished files, and the root resolved by the tables
("score cp 28000" / "cp 0" / "cp -28000", "tbhits", only moves that keep
the result). The tables come from $VORLAXEN_SYZYGY_DIR, else ../shared/syzygy
beside the source tree; tests that need them are skipped without them."""
import os
import re
import shutil
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from engine import Engine  # noqa: E402

ENGINE = os.path.abspath(sys.argv[1] if len(sys.argv) > 1 else "build/vorlaxen")
HERE = os.path.dirname(os.path.abspath(__file__))
TABLES = os.environ.get("VORLAXEN_SYZYGY_DIR", os.path.join(HERE, "..", "..", "..", "shared", "syzygy"))
HAVE_TABLES = os.path.isfile(os.path.join(TABLES, "KQvK.rtbw"))
needs_tables = unittest.skipUnless(HAVE_TABLES, "no Syzygy tables in " + TABLES)

KQVK = "position fen 8/8/8/2k5/8/8/8/3QK3 w - - 0 1"


class SyzygyTestCase(unittest.TestCase):
    def setUp(self):
        tmp = tempfile.TemporaryDirectory()
        self.addCleanup(tmp.cleanup)
        self.tmp = tmp.name
        # Started in an empty directory: no Vorlaxenbases under their default path.
        self.engine = Engine(ENGINE, timeout=20.0, cwd=self.tmp)
        self.engine.read_line()  # greeting
        self.assertEqual(self.engine.sync(), ["info string vorlaxenbasses with 0 men found (0 MB)"])

    def tearDown(self):
        self.engine.kill()

    def set_path(self, value):
        self.engine.send("setoption name Syzygy Path value " + value)
        return self.engine.sync()

    def directory(self, name, tables=(), data=None):
        """A directory under the test's temporary one, with links to real
        tables or, given data, files of that content."""
        path = os.path.join(self.tmp, name)
        os.makedirs(path, exist_ok=True)
        for table in tables:
            target = os.path.join(path, table + ".rtbw")
            if data is None:
                os.symlink(os.path.abspath(os.path.join(TABLES, table + ".rtbw")), target)
            else:
                with open(target, "wb") as f:
                    f.write(data)
        return path

    def go(self, position, depth=3):
        self.engine.send(position)
        self.engine.send("go depth %d" % depth)
        lines = self.engine.read_until(lambda l: l.startswith("bestmove"))
        return lines[:-1], lines[-1].split()[1]


def last_score(lines):
    scores = [re.search(r" score (cp|mate) (-?\d+)", l) for l in lines]
    scores = [m.group(1) + " " + m.group(2) for m in scores if m]
    return scores[-1] if scores else None


def has_tbhits(lines):
    return any(" tbhits " in l for l in lines)


class PathOption(SyzygyTestCase):
    def test_no_path_registers_nothing_and_says_nothing(self):
        for value in ("<empty>", ""):
            self.assertEqual(self.set_path(value), [], value)

    def test_missing_directories_find_no_tables(self):
        self.assertEqual(self.set_path("/nonexistent/tables;/nonexistent/more"),
                         ["info string Found 0 syzygy tablebases"])

    @needs_tables
    def test_a_table_in_the_second_directory_is_found(self):
        first, second = self.directory("first"), self.directory("second", ["KQvK"])
        for separator in (";", ":"):
            self.assertEqual(self.set_path(first + separator + second), ["info string Found 1 syzygy tablebases"])
            lines, _ = self.go(KQVK)
            self.assertEqual(last_score(lines), "cp 28000")
            self.assertTrue(has_tbhits(lines), lines)

    @needs_tables
    def test_broken_files_fail_the_probe_and_the_search_goes_on(self):
        with open(os.path.join(TABLES, "KQvK.rtbw"), "rb") as f:
            real = f.read()
        for name, data in (("magic", b"\0" * 64), ("truncated", real[:40]), ("empty", b""),
                           ("cut", real[:len(real) // 2])):
            self.assertEqual(self.set_path(self.directory(name, ["KQvK"], data)),
                             ["info string Found 1 syzygy tablebases"])
            lines, best = self.go(KQVK, depth=2)
            self.assertIn("Corrupted table.", lines, name)
            self.assertFalse(has_tbhits(lines), name)
            self.assertNotEqual(best, "0000", name)

    @needs_tables
    def test_a_table_gone_before_its_first_probe_is_reported(self):
        path = self.directory("gone", ["KQvK"])
        self.assertEqual(self.set_path(path), ["info string Found 1 syzygy tablebases"])
        shutil.rmtree(path)
        lines, _ = self.go(KQVK, depth=2)
        self.assertIn("Could not find KQvK.rtbw", lines)
        self.assertFalse(has_tbhits(lines))


@needs_tables
class RootProbe(SyzygyTestCase):
    def setUp(self):
        super().setUp()
        self.assertEqual(self.set_path(TABLES)[-1][:18], "info string Found ")

    def test_the_root_score_is_the_tables_result(self):
        for fen, score in (("8/8/8/8/8/1k6/R7/3K4 w - - 0 1", "cp 28000"),   # the rook is attacked but safe
                           ("8/8/8/8/8/1k6/R7/3K4 b - - 0 1", "cp 0"),       # Kxa2
                           ("8/8/8/8/8/2k5/8/R3K3 b - - 0 1", "cp -28000"),
                           ("8/r1B5/8/2R5/8/k1K5/8/8 w - - 0 1", "cp 0")):   # a win beyond 50 moves
            lines, _ = self.go("position fen " + fen)
            self.assertEqual(last_score(lines), score, fen)
            self.assertTrue(has_tbhits(lines), fen)

    def test_only_moves_that_keep_the_win_are_searched(self):
        lines, best = self.go("position fen 8/8/8/8/8/1k6/R7/3K4 w - - 0 1", depth=1)
        self.assertIn(best, ["a2a1", "a2a5", "a2a6", "a2a7", "a2a8", "a2c2", "a2d2", "a2e2", "a2f2", "a2g2", "a2h2"])
        searched = {l.split(" pv ")[1].split()[0] for l in lines if " pv " in l}
        self.assertNotIn("a2b2", searched)

    def test_options_switch_the_tables_and_the_50_move_rule(self):
        self.engine.send("setoption name Syzygy 50 Moves Rule value false")
        lines, _ = self.go("position fen 8/r1B5/8/2R5/8/k1K5/8/8 w - - 0 1")
        self.assertEqual(last_score(lines), "cp 28000")
        self.engine.send("setoption name Use Syzygy Databases value false")
        lines, _ = self.go(KQVK)
        self.assertFalse(has_tbhits(lines))
        self.assertNotEqual(last_score(lines), "cp 28000")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
