"""The Windows and the ARM64 engine, run here as a GUI on those systems would
run them: the Windows program under Wine, the ARM64 program under qemu's
user-mode emulator. Each must answer like the native engine: the same "uci"
listing, the same search trees, the self-test, and a search that stops when
told. The Windows engine also meets what only Windows users send: lines ending
in "\\r\\n", and paths with drive letters and backslashes.

usage: test_platforms.py windows|arm64 ENGINE NATIVE_ENGINE [NATIVE_TBGEN]
"""
import os
import re
import shutil
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from engine import SYZYGY, is_bestmove, per_position, run, start  # noqa: E402

KIND = sys.argv[1] if len(sys.argv) > 1 else "windows"
ENGINE = sys.argv[2] if len(sys.argv) > 2 else "build-windows/vorlaxen.exe"
NATIVE = sys.argv[3] if len(sys.argv) > 3 else "build/vorlaxen"
TBGEN = sys.argv[4] if len(sys.argv) > 4 else os.path.join(os.path.dirname(NATIVE), "vorlaxen-tbgen")
SIGNATURE = 31765960
# Emulated, everything is slower: generous limits for searches and starts.
TIMEOUT = 60.0

if KIND == "windows":
    # Wine's own prefix beside the engine, made on the first start; no debug chatter.
    os.environ.setdefault("WINEPREFIX", os.path.join(os.path.abspath(os.path.dirname(ENGINE)), "wine"))
    os.environ.setdefault("WINEDEBUG", "-all")
    RUNNER = [shutil.which("wine") or "wine"]
else:
    RUNNER = [shutil.which("qemu-aarch64") or "qemu-aarch64"]


def windows_path(path):
    """A Linux path as the Windows program sees it: Wine's drive Z: is /."""
    return "Z:" + os.path.abspath(path).replace("/", "\\")


class Engines:
    """The checks every platform's engine passes."""

    def engine(self):
        return start(self, *RUNNER, os.path.abspath(ENGINE), timeout=TIMEOUT)

    def test_the_uci_listing_is_the_native_one(self):
        native = start(self, os.path.abspath(NATIVE), timeout=TIMEOUT)
        native.send("uci")
        e = self.engine()
        e.send("uci")
        # The greeting names the build the processor allows; the rest is identical.
        self.assertEqual(e.greeting.split(" 64 bit")[0], native.greeting.split(" 64 bit")[0])
        self.assertEqual(e.read_until("uciok"), native.read_until("uciok"))

    def test_the_self_test_passes(self):
        e = self.engine()
        e.send("perft")
        lines = e.read_until("------ Test finished with 0 errors ------", timeout=600)
        self.assertEqual(sum(1 for l in lines if l == "###### Test OK ########"), 30)

    def test_go_infinite_searches_until_stop(self):
        e = self.engine()
        e.send("position startpos moves e2e4")
        e.send("go infinite")
        before = e.read_until(lambda l: " depth 6 " in l)
        e.send("stop")
        self.assertFalse([l for l in before if is_bestmove(l)])
        self.assertTrue(is_bestmove(e.read_until(is_bestmove)[-1]))
        e.sync()
        e.send("quit")
        self.assertEqual(e.wait(), 0)


@unittest.skipUnless(KIND == "windows", "Windows engine")
class Windows(Engines, unittest.TestCase):
    def test_the_bench_signature(self):
        status, out = run(*RUNNER, ENGINE, "bench", timeout=600)
        self.assertEqual(status, 0)
        self.assertIn("Nodes searched  : %d" % SIGNATURE, out)

    def test_lines_ending_in_cr_lf_are_the_same_commands(self):
        e = self.engine()
        for line in (b"uci\r", b"setoption name Hash value 32\r", b"isready\r"):
            e.send(line)
        lines = e.read_until("readyok")
        self.assertIn("uciok", lines)
        self.assertFalse([l for l in lines if "Unknown" in l or "\r" in l], lines)
        e.send(b"quit\r")
        self.assertEqual(e.wait(), 0)

    def test_quit_or_a_closed_pipe_during_a_search_ends_the_engine(self):
        # Two threads searching: the helper's start and its end at quit.
        for end in ("quit", "close"):
            with self.subTest(end=end):
                e = self.engine()
                e.send("setoption name Threads value 2")
                e.send("go infinite")
                e.read_until(lambda l: " depth 5 " in l)
                if end == "quit":
                    e.send("quit")
                else:
                    e.close_input()
                self.assertEqual(e.wait(30), 0)

    @unittest.skipUnless(os.path.isdir(SYZYGY), "no Syzygy tables beside the project")
    def test_syzygy_tables_from_a_windows_path_list(self):
        e = self.engine()
        e.sync()
        # ";" separates the directories, the drive letters' ":" does not.
        e.send("setoption name Syzygy Path value C:\\no\\such\\dir;" + windows_path(SYZYGY))
        self.assertEqual(e.sync(), ["info string Found 40 syzygy tablebases"])
        e.send("position fen 8/8/8/8/8/2k5/8/KQ6 w - - 0 1")
        e.send("go depth 6")
        lines = e.read_until(is_bestmove)
        self.assertTrue(any(re.search(r" tbhits [1-9]", l) for l in lines), lines[-3:])

    @unittest.skipUnless(os.path.exists(TBGEN), "no database generator")
    def test_bases_made_by_the_linux_generator(self):
        with tempfile.TemporaryDirectory() as dir:
            bases = os.path.join(dir, "vorlaxenbases")
            status, _ = run(TBGEN, "--out", bases, "krk", "kqk", timeout=600)
            self.assertEqual(status, 0)
            e = self.engine()
            e.sync()
            e.send("setoption name UCI_VorlaxenbasesPath value " + windows_path(bases))
            self.assertEqual(e.sync()[-1], "info string vorlaxenbasses with 3 men found (0 MB)")
            e.send("position fen 8/8/8/4k3/8/8/8/R3K3 w - - 0 1")
            e.send("go depth 6")
            pv = [l for l in e.read_until(is_bestmove) if " pv " in l]
            self.assertTrue(pv and all(" sbhits " in l for l in pv), pv[-1:])


@unittest.skipUnless(KIND == "arm64", "ARM64 engine")
class Arm64(Engines, unittest.TestCase):
    def test_bench_searches_the_native_trees(self):
        status, native = run(NATIVE, "bench", "-6", timeout=600)
        self.assertEqual(status, 0)
        status, out = run(*RUNNER, ENGINE, "bench", "-6", timeout=600)
        self.assertEqual(status, 0)
        self.assertEqual(len(per_position(native)), 35)
        self.assertEqual(per_position(out), per_position(native))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
