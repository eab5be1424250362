"""Strength-limited play through the pipe: the node budget ends the search, a
clock search then waits (never past its clock) while still answering commands,
no tablebase is probed, and a fresh start of the engine plays differently."""
import os
import re
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from engine import ENGINE, SYZYGY, EngineTestCase, is_bestmove, needs_syzygy, start  # noqa: E402


def max_field(lines, name):
    return max((int(m.group(1)) for m in (re.search(r" %s (\d+)" % name, l) for l in lines) if m), default=0)


def limit(engine, elo):
    engine.send("setoption name UCI_LimitStrength value true")
    engine.send("setoption name UCI_Elo value %d" % elo)


class Limited(EngineTestCase):
    def timed_go(self, position, go):
        self.engine.sync()
        start = time.monotonic()
        lines, best, _ = self.go(position, go)
        return lines, best, time.monotonic() - start

    def test_fixed_depth_ends_after_about_the_budget(self):
        limit(self.engine, 850)
        lines, _, seconds = self.timed_go("position startpos", "go depth 30")
        self.assertLessEqual(max_field(lines, "nodes"), 10 + 6 + 40)  # full material: 10 nodes, up to 6 more
        self.assertLess(seconds, 3.0)  # no clock, no wait
        moves = {self.go("position startpos moves e2e4", "go depth 30")[1] for _ in range(6)}
        self.assertGreater(len(moves), 1)  # the generator is never reseeded

    def test_clock_search_waits_but_not_past_its_clock(self):
        limit(self.engine, 850)
        for _ in range(3):  # target 1038 ms: 342..2076 ms in all
            seconds = self.timed_go("position startpos", "go wtime 60000 btime 60000")[2]
            self.assertTrue(0.33 <= seconds < 2.7, seconds)
        # A target (about 3 s) beyond the clock; the hard limit (330 ms) still holds.
        self.engine.send("setoption name Time Buffer (sec) value 0")
        seconds = self.timed_go("position startpos moves e2e4", "go wtime 1000 btime 1000 winc 5000 binc 5000")[2]
        self.assertLess(seconds, 1.0)
        self.engine.send("position startpos")
        self.engine.send("go ponder wtime 5000 btime 5000")  # the budget is spent, then ponderhit
        time.sleep(0.3)
        self.engine.send("ponderhit")
        self.engine.read_until(is_bestmove, 2.0)

    def test_isready_stop_and_quit_act_during_the_wait(self):
        limit(self.engine, 850)
        for end in ("stop", "quit"):
            self.engine.send("position startpos")
            self.engine.send("go wtime 600000 btime 600000")  # target 10.5 s: at least 3.4 s of waiting
            time.sleep(0.4)
            self.engine.send("isready")
            self.assertFalse(any(is_bestmove(l) for l in self.engine.read_until("readyok", 1.0)))
            self.engine.send(end)
            self.engine.read_until(is_bestmove, 1.0)
        self.assertEqual(self.engine.wait(2.0), 0)

    @needs_syzygy
    def test_limited_search_reports_no_tbhits(self):
        self.engine.send("setoption name Syzygy Path value " + SYZYGY)
        position = "position fen 8/8/8/4k3/8/8/1r6/1R2K2R w - - 0 1"  # five men; Rxb2 leaves four
        self.assertGreater(max_field(self.go(position, "go depth 8")[0], "tbhits"), 0)
        limit(self.engine, 2800)
        self.assertEqual(max_field(self.go(position, "go depth 8")[0], "tbhits"), 0)


class FreshStarts(unittest.TestCase):
    def test_each_start_plays_its_own_limited_game(self):
        # The same commands to three new processes: the node budget, the noisy
        # tables and evaluations come from a generator seeded anew at each start.
        positions = ["startpos", "fen r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq - 2 3"]
        starts = []
        for _ in range(3):
            engine = start(self, ENGINE, timeout=20.0)
            limit(engine, 1200)
            replies = []
            for position in positions:  # the last line with a score, the nodes searched and the move
                engine.send("position " + position)
                engine.send("go depth 30")
                lines = engine.read_until(is_bestmove)
                last = [l for l in lines if " score " in l][-1]
                replies.append((re.search(r" score \S+ -?\d+", last).group(0), max_field(lines, "nodes"), lines[-1]))
            starts.append(tuple(replies))
        self.assertEqual(len(set(starts)), 3, starts)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
