"""Searching with several threads, as a GUI or match runner sets it up.
`make test-tsan` runs this file against a ThreadSanitizer build, so every
wait allows for a slow engine."""
import os
import re
import subprocess
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from engine import ENGINE, EngineError, EngineTestCase, is_bestmove  # noqa: E402
from test_match import OPENINGS, forfeits, match, summary_counts  # noqa: E402

TIMEOUT = 120.0
# How much slower than a release build the engine under test runs (the
# ThreadSanitizer build polls its input just as often, in nodes, but searches
# far fewer of them per second).
TIME_SCALE = float(os.environ.get("VORLAXEN_TIME_SCALE", "1"))
# A sanitizer's runtime needs far more address space than the engine.
SANITIZED = bool(os.environ.get("VORLAXEN_SANITIZER"))
MIDGAME = "position fen r1bq1rk1/pp2bppp/2n1pn2/2pp4/3P4/2PBPN2/PP1N1PPP/R2QK2R w KQ - 0 8"


class ThreadsTestCase(EngineTestCase):
    timeout = TIMEOUT

    def set_threads(self, n):
        self.engine.send("setoption name Threads value %d" % n)

    def seconds_to_bestmove(self, command):
        start_time = time.monotonic()
        self.engine.send(command)
        self.engine.read_until(is_bestmove)
        return time.monotonic() - start_time


class Commands(ThreadsTestCase):
    def test_stop_ponderhit_and_quit_end_a_four_thread_search_at_once(self):
        self.set_threads(4)
        self.engine.send(MIDGAME)
        self.engine.send("go infinite")
        self.engine.read_until(lambda l: l.startswith("info depth 6 "))
        self.assertLess(self.seconds_to_bestmove("stop"), 0.5 * TIME_SCALE)
        self.assertEqual(self.engine.sync(), [])

        # A pondering search goes on whatever its clock says; after
        # "ponderhit" the 100 ms clock ends it.
        self.engine.send("go ponder wtime 100 btime 100")
        self.engine.read_until(lambda l: l.startswith("info depth 6 "))
        with self.assertRaises(EngineError):
            self.engine.read_until(is_bestmove, 1.0)
        self.assertLess(self.seconds_to_bestmove("ponderhit"), 0.5 * TIME_SCALE)
        self.assertEqual(self.engine.sync(), [])

        self.engine.send("go infinite")
        self.engine.read_until(lambda l: l.startswith("info depth 5 "))
        self.engine.send("quit")
        self.engine.read_until(is_bestmove)
        self.assertEqual(self.engine.wait(30), 0)

    def test_new_game_and_count_changes_leave_one_thread_searching_as_before(self):
        # One thread searches the same tree whatever ran before it: a
        # four-thread search, a shrink, a grow and a new game in between.
        self.set_threads(1)
        first = self.go(MIDGAME, "go depth 9")[0]
        for n in (4, 2, 3):
            self.set_threads(n)
            self.go(MIDGAME, "go depth 9")
        self.set_threads(1)
        self.engine.send("ucinewgame")
        again = self.go(MIDGAME, "go depth 9")[0]
        nodes = lambda lines: [re.search(r" nodes \d+", l)[0] for l in lines if l.startswith("info time ")]
        self.assertEqual(nodes(first), nodes(again))


class Output(ThreadsTestCase):
    def test_bench_searches_with_one_thread_whatever_threads_says(self):
        totals = []
        for n in (1, 2):
            self.set_threads(n)
            self.engine.send("bench -10")
            totals.append(self.engine.read_until(lambda l: l.startswith("Nodes searched"))[-1])
        self.assertEqual(totals[0], totals[1])

    def test_multipv_and_searchmoves_with_threads(self):
        self.set_threads(3)
        self.engine.send("setoption name MultiPV value 3")
        lines, best, _ = self.go(MIDGAME, "go depth 7")
        last = [l for l in lines if l.startswith("info multipv ") and " depth 7 " in l][-3:]
        self.assertEqual([l.split()[2] for l in last], ["1", "2", "3"])
        first_moves = [l.split(" pv ")[1].split()[0] for l in last]
        self.assertEqual(len(set(first_moves)), 3)
        self.assertEqual(best, first_moves[0])
        scores = [int(re.search(r" score cp (-?\d+) ", l).group(1)) for l in last]
        self.assertEqual(sorted(scores, reverse=True), scores)

        self.engine.send("setoption name MultiPV value 1")
        allowed = ["e1g1", "a2a4", "b2b4"]
        lines, best, _ = self.go(MIDGAME, "go movetime 300 searchmoves " + " ".join(allowed))
        self.assertIn(best, allowed)
        self.assertLessEqual({l.split(" pv ")[1].split()[0] for l in lines if " pv " in l}, set(allowed))

    def test_sixty_four_threads_on_a_one_megabyte_table(self):
        self.engine.send("setoption name Hash value 1")
        self.set_threads(64)
        self.assertEqual(self.engine.sync(), [])
        self.assertRegex(self.go(MIDGAME, "go movetime 1000")[1], r"^[a-h][1-8][a-h][1-8][nbrq]?$")

    @unittest.skipIf(SANITIZED, "the sanitizer runtime cannot run in a small address space")
    def test_threads_that_cannot_be_had_are_reported_and_the_rest_search(self):
        # 600 MB of address space hold 64 MB of table and a few dozen helpers,
        # far from the 1023 asked for.
        r = subprocess.run(["sh", "-c", 'ulimit -v 600000; exec "$0"', ENGINE], capture_output=True, text=True,
                           input="setoption name Threads value 1024\nisready\nposition startpos\ngo depth 8\nquit\n",
                           timeout=TIMEOUT)
        self.assertEqual(r.returncode, 0, r.stdout)
        m = re.search(r"^info string Could not start search thread (\d+); searching with (\d+) threads$", r.stdout, re.M)
        self.assertIsNotNone(m, r.stdout)
        self.assertEqual(int(m.group(1)), int(m.group(2)) + 1)
        self.assertRegex(r.stdout, r"(?m)^bestmove [a-h][1-8][a-h][1-8]")


class Legality(unittest.TestCase):
    def test_every_move_of_fast_multi_thread_games_is_legal(self):
        # The match runner referees every move; two and four threads share a
        # small table written by all of them at once.
        r = match("--engine", ENGINE, "--name", "four", "--option", "Threads=4", "--option", "Hash=2",
                  "--engine", ENGINE, "--name", "two", "--option", "Threads=2", "--option", "Hash=2",
                  "--games", "6", "--tc", "1+0.02", "--openings", str(OPENINGS), "--seed", "11",
                  timeout=900)
        self.assertEqual(r.returncode, 0, r.stderr)
        self.assertEqual(sum(summary_counts(r.stdout)), 6, r.stdout)
        for name, counts in forfeits(r.stdout).items():
            self.assertEqual(counts[:2], (0, 0), name + ": " + r.stdout)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
