"""Strength-limited play as a GUI sees it: the node budget ends the search,
the engine then waits a human-looking time under a clock without ever running
past its clock, answers commands while it waits, and never probes tablebases."""
import glob
import os
import re
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from test_search import SearchTestCase, is_bestmove  # noqa: E402

ENGINE = sys.argv[1] if len(sys.argv) > 1 else "build/vorlaxen"
UCI_MOVE = re.compile(r"^([a-h][1-8][a-h][1-8][nbrq]?|0000)$")
HERE = os.path.dirname(os.path.abspath(__file__))
# Syzygy tables for the tablebase test: $VORLAXEN_SYZYGY_PATH, else the shared folder beside the checkout.
SYZYGY = os.environ.get("VORLAXEN_SYZYGY_PATH", os.path.join(HERE, "..", "..", "..", "shared", "syzygy"))


def max_field(lines, name):
    values = [int(m.group(1)) for m in (re.search(r" %s (\d+)" % name, l) for l in lines) if m]
    return max(values, default=0)


class LimitedTestCase(SearchTestCase):
    def limit(self, elo):
        self.engine.send("setoption name UCI_LimitStrength value true")
        self.engine.send("setoption name UCI_Elo value %d" % elo)

    def timed_go(self, position, go, timeout=None):
        """One search; returns (lines before "bestmove", the move, seconds until it was answered)."""
        self.engine.sync()
        start = time.monotonic()
        lines, best, _ = self.go(position, go, timeout)
        self.assertRegex(best, UCI_MOVE)
        return lines, best, time.monotonic() - start

    def assert_still_waiting(self):
        """"isready" is answered at once, and no "bestmove" came before it."""
        self.engine.send("isready")
        self.assertFalse(any(is_bestmove(l) for l in self.engine.read_until("readyok", 1.0)))


class NodeBudget(LimitedTestCase):
    def test_fixed_depth_ends_after_about_the_budget(self):
        # Full material: at most 10 + 6 nodes at 850 Elo, 640 + 110 at 1450.
        for elo, budget in ((850, 16), (1450, 750)):
            self.limit(elo)
            for _ in range(3):
                lines, _, seconds = self.timed_go("position startpos", "go depth 30")
                self.assertLessEqual(max_field(lines, "nodes"), budget + 40, elo)
                self.assertLess(seconds, 3.0)  # no clock: no waiting

    def test_successive_searches_differ(self):
        self.limit(850)
        moves = {self.timed_go("position startpos moves e2e4", "go depth 30")[1] for _ in range(8)}
        self.assertGreater(len(moves), 1)


class Waiting(LimitedTestCase):
    def test_clock_search_waits_a_third_to_twice_the_target(self):
        # wtime 60000 from the start position: target 1038 ms, so 342..2076 ms in all.
        self.limit(850)
        for _ in range(3):
            _, _, seconds = self.timed_go("position startpos", "go wtime 60000 btime 60000")
            self.assertGreaterEqual(seconds, 0.33)
            self.assertLess(seconds, 2.076 + 0.6)

    def test_the_wait_never_passes_the_clock(self):
        # A large increment makes the target (about 3 s) longer than the clock
        # itself; the hard limit (330 ms) still holds.
        self.limit(850)
        self.engine.send("setoption name Time Buffer (sec) value 0")
        for _ in range(3):
            _, _, seconds = self.timed_go("position startpos moves e2e4", "go wtime 1000 btime 1000 winc 5000 binc 5000")
            self.assertLess(seconds, 1.0)
        _, _, seconds = self.timed_go("position startpos", "go wtime 300 btime 300")
        self.assertLess(seconds, 0.3)

    def start_long_wait(self):
        # Target about 10.5 s: the wait lasts 3.4 s at least.
        self.limit(850)
        self.engine.send("position startpos")
        self.engine.send("go wtime 600000 btime 600000")
        time.sleep(0.4)

    def test_isready_and_stop_act_during_the_wait(self):
        self.start_long_wait()
        self.assert_still_waiting()
        self.engine.send("stop")
        self.assertRegex(self.engine.read_until(is_bestmove, 1.0)[-1].split()[1], UCI_MOVE)

    def test_quit_acts_during_the_wait(self):
        self.start_long_wait()
        self.engine.send("quit")
        self.assertEqual(self.engine.wait(2.0), 0)


class OddSearches(LimitedTestCase):
    def test_every_search_kind_ends_with_one_legal_answer(self):
        cases = [
            ("position fen 7k/8/8/8/8/8/6q1/7K w - - 0 1", "go depth 10", "h1g2"),  # single move
            ("position fen 7k/6Q1/6K1/8/8/8/8/8 b - - 0 1", "go wtime 1000 btime 1000", "0000"),  # mated
            ("position fen 7k/5Q2/6K1/8/8/8/8/8 b - - 0 1", "go depth 5", "0000"),  # stalemate
            ("position startpos", "go depth 8 searchmoves a2a3", "a2a3"),
            ("position fen 4k3/8/8/8/8/8/8/R3K3 b - - 0 1", "go movetime 200", None),
            ("position fen R3k3/8/8/8/8/8/8/4K3 b - - 0 1", "go nodes 5", None),  # in check
            ("position startpos moves e2e4 e7e5 g1f3", "go wtime 2000 btime 2000 winc 20 binc 20", None),
        ]
        for elo in (850, 1700, 2800):
            self.limit(elo)
            for position, go, expected in cases:
                _, best, _ = self.timed_go(position, go)
                if expected:
                    self.assertEqual(best, expected, (elo, position, go))

    def test_infinite_and_ponder_wait_for_the_gui(self):
        self.limit(1200)
        self.engine.send("position startpos")
        self.engine.send("go infinite")
        time.sleep(0.3)
        self.assert_still_waiting()
        self.engine.send("stop")
        self.engine.read_until(is_bestmove, 2.0)
        self.engine.send("go ponder wtime 5000 btime 5000")
        time.sleep(0.3)
        self.assert_still_waiting()
        self.engine.send("ponderhit")
        self.engine.read_until(is_bestmove, 5.0)


class Tablebases(LimitedTestCase):
    def test_limited_search_reports_no_tbhits(self):
        if not glob.glob(os.path.join(SYZYGY, "*.rtbw")):
            self.skipTest("no Syzygy tables in %s (set VORLAXEN_SYZYGY_PATH)" % SYZYGY)
        self.engine.send("setoption name Syzygy Path value %s" % os.path.abspath(SYZYGY))
        # Five men, and a rook capture leads to four.
        position = "position fen 8/8/8/4k3/8/8/1r6/1R2K2R w - - 0 1"
        lines, _, _ = self.timed_go(position, "go depth 8")
        if max_field(lines, "tbhits") == 0:
            self.skipTest("this build probes no Syzygy tables yet")
        self.limit(2800)
        lines, _, _ = self.timed_go(position, "go depth 8")
        self.assertEqual(max_field(lines, "tbhits"), 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
