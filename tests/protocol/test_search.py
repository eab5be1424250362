"""The search as a GUI sees it: "go" and its limits, "info" lines, one legal
"bestmove" per "go"; the "bench" and "perft" (self-test) commands."""
import os
import re
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from engine import ENGINE, EngineError, EngineTestCase, is_bestmove, run, start  # noqa: E402


class Searches(EngineTestCase):
    def test_depth_search_reports_every_iteration_then_a_legal_move(self):
        lines, best, ponder = self.go("position startpos", "go depth 5")
        starts = [l for l in lines if re.fullmatch(r"info depth \d+ seldepth \d+", l)]
        self.assertEqual(starts, ["info depth %d seldepth %d" % (d, d) for d in range(1, 6)])
        self.assertEqual(sum(1 for l in lines if l.startswith("info time ")), 5)
        self.assertIsNotNone(ponder)
        last = [l for l in lines if " pv " in l][-1]
        self.assertRegex(last, r"^info depth 5 seldepth \d+ time \d+ score (cp|mate) -?\d+ .*nodes \d+ "
                               r"(nps \d+ )?hashfull \d+ pv( [a-h][1-8][a-h][1-8][nbrq]?)+$")
        self.assertEqual(last.split(" pv ")[1].split()[0], best)

    def test_mates_are_counted_in_moves_and_their_result_is_certain(self):
        self.engine.send("setoption name UCI_ShowWDL value true")
        lines, best, ponder = self.go("position fen 6k1/5ppp/8/8/8/8/5PPP/R5K1 w - - 0 1", "go depth 4")
        self.assertEqual((best, ponder), ("a1a8", None))
        # The side being mated: the unit tests (output_test).
        self.assertRegex([l for l in lines if " pv " in l][-1], " score mate 1 wdl 1000 0 0 nodes ")

    def test_root_without_a_legal_move_answers_the_null_move(self):
        for fen, go in (("7k/5Q2/6K1/8/8/8/8/8 b - - 0 1", "go depth 5"),  # stalemate
                        ("7k/6Q1/6K1/8/8/8/8/8 b - - 0 1", "go movetime 200")):  # checkmate
            _, best, ponder = self.go("position fen " + fen, go)
            self.assertEqual((best, ponder), ("0000", None), fen)


class Options(EngineTestCase):
    def test_show_wdl_only_adds_the_field(self):
        # The lines agree once the field and the clock fields are taken out.
        # Its place among the fields and the shares: the unit tests (output_test).
        position = "position fen r1bq1rk1/pp2bppp/2n1pn2/3p4/2PP4/2N1PN2/PP3PPP/R2QKB1R w KQ - 0 8"
        strip = lambda ls: [re.sub(r" (time|nps) \d+| wdl \d+ \d+ \d+", "", l) for l in ls]
        runs = []
        for on in ("false", "true"):
            self.engine.send("setoption name UCI_ShowWDL value " + on)
            self.engine.send("ucinewgame")
            runs.append(self.go(position, "go depth 8")[0])
        self.assertFalse(any(" wdl " in l for l in runs[0]))
        self.assertEqual(strip(runs[0]), strip(runs[1]))
        for line in (l for l in runs[1] if " score " in l):
            self.assertRegex(line, r" score (cp|mate) -?\d+( lowerbound| upperbound)? wdl \d+ \d+ \d+ nodes ")

    def test_multipv_beyond_the_moves_and_the_single_legal_move_is_played(self):
        # Three numbered lines in order: test_threads.Output.
        self.engine.send("setoption name MultiPV value 3")
        lines, best, _ = self.go("position fen 7k/8/8/8/8/8/6q1/7K w - - 0 1", "go depth 3")
        self.assertEqual(best, "h1g2")
        self.assertFalse(any(l.startswith("info multipv 2") for l in lines))

    def test_chess960_castling_is_written_king_takes_rook(self):
        self.engine.send("setoption name UCI_Chess960 value true")
        best = self.go("position fen 1r2k1r1/pppppppp/8/8/8/8/PPPPPPPP/1R2K1R1 w GBgb - 0 1",
                       "go depth 3 searchmoves e1g1")[1]
        self.assertEqual(best, "e1g1")


class Limits(EngineTestCase):
    # isready, stop, quit and ponderhit during a search: test_uci, test_threads and test_limit.
    def test_movetime_ends_the_search_in_time(self):
        # A tiny clock: test_threads.Commands (after ponderhit).
        start = time.monotonic()
        self.go("position startpos", "go movetime 500")
        self.assertLess(time.monotonic() - start, 3.0)

    def test_node_limit(self):
        lines = self.go("position startpos", "go nodes 30000")[0]
        nodes = [int(re.search(r" nodes (\d+)", l).group(1)) for l in lines if " nodes " in l]
        self.assertLess(max(nodes), 30000 + 30000)

    def test_infinite_with_a_depth_still_waits_for_stop(self):
        self.engine.send("position startpos")
        self.engine.send("go infinite depth 2")
        self.engine.read_until("info depth 2 seldepth 2", 3.0)
        self.engine.read_until(lambda l: l.startswith("info time"), 3.0)
        with self.assertRaises(EngineError):  # nothing more until "stop"
            self.engine.read_line(0.5)
        self.engine.send("stop")
        self.engine.read_until(is_bestmove, 3.0)


class OtherCommands(unittest.TestCase):
    def test_bench_searches_every_position_then_sums_up(self):
        status, lines = run(ENGINE, "bench", "-10", timeout=60)
        self.assertEqual(status, 0)
        self.assertEqual(sum(1 for l in lines if is_bestmove(l)), 35)
        self.assertEqual(lines[-4], "")
        self.assertRegex(lines[-3], r"^Total time \(ms\) : \d+$")
        # Pinned like the full bench's signature. `make mutate` switches the pin off, so that a
        # fault must be caught by a test of the behaviour it breaks.
        if not os.environ.get("VORLAXEN_NO_PINNED_TOTALS"):
            self.assertEqual(lines[-2], "Nodes searched  : 282069")
        self.assertRegex(lines[-2], r"^Nodes searched  : \d+$")
        self.assertRegex(lines[-1], r"^Nodes/second    : \d+$")
        # The depth offset applies to every position: the first (16 plies) searches 6.
        first = lines[:next(i for i, l in enumerate(lines) if is_bestmove(l))]
        starts = [l for l in first if re.fullmatch(r"info depth \d+ seldepth \d+", l)]
        self.assertEqual(starts[-1], "info depth 6 seldepth 6")

    def test_self_test_every_enabled_entry_matches_and_the_position_is_kept(self):
        # The stored positions walked through the search's move picker and evaluation.
        engine = start(self, ENGINE, timeout=120.0)
        engine.send("position fen 6k1/5ppp/8/8/8/8/5PPP/R5K1 w - - 0 1")
        engine.send("perft")
        lines = engine.read_until("------ Test finished with 0 errors ------")
        self.assertEqual(sum(1 for l in lines if l == "###### Test OK ########"), 30)
        self.assertIn("perft 3: 53392", lines)
        engine.send("go depth 2")
        self.assertEqual(engine.read_until(is_bestmove)[-1], "bestmove a1a8")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
