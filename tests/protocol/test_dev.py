"""vorlaxen-dev bench, perft and eval: every build searches identical trees,
the divide output and counts, the evaluation's trace table, and rejected
arguments. (The match runner and wdl-fit: test_match.)"""
import os
import re
import subprocess
import sys
import unittest

from engine import per_position

DEV = sys.argv[2] if len(sys.argv) > 2 else "build/vorlaxen-dev"

GROUPS = ["Material", "Imbalance", "Piece-square", "Pawns", "Pawn up", "Knights", "Bishops", "Rooks",
          "Queens", "King safety", "Threats", "Passed pawns", "Tempo/contempt"]


def dev(*args, env=None):
    full_env = dict(os.environ, **env) if env else None
    return subprocess.run([DEV, *args], capture_output=True, text=True, timeout=300, env=full_env)


class DevBench(unittest.TestCase):
    def test_every_build_gives_the_same_nodes_and_moves_for_every_position(self):
        hw = dev("bench", "-7")
        if hw.returncode == 2 and "popcnt" in hw.stderr:
            self.skipTest("processor without popcnt")
        portable = dev("bench", "--portable", "-7")
        base = dev("bench", "-7", env={"VORLAXEN_BUILD": "base"})
        for r in (hw, portable, base):
            self.assertEqual(r.returncode, 0, r.stderr)
        a = per_position(hw.stdout)
        self.assertEqual(len(a), 35)
        self.assertEqual(a, per_position(portable.stdout))
        self.assertEqual(a, per_position(base.stdout))
        # The summary is the engine's own (test_search.Bench checks its lines).
        total = hw.stdout.splitlines()[-2]
        self.assertRegex(total, r"^Nodes searched  : \d+$")
        self.assertEqual(total, portable.stdout.splitlines()[-2])

    def test_threads_search_every_position_to_its_depth(self):
        # Helpers beside the main thread: every position still reaches its
        # depth (its last iteration summary) and is answered once.
        r = dev("bench", "--threads", "3", "-10")
        self.assertEqual(r.returncode, 0, r.stderr)
        self.assertEqual(len(per_position(r.stdout)), 35)
        self.assertRegex(r.stdout.splitlines()[-2], r"^Nodes searched  : \d+$")


class DevPerft(unittest.TestCase):
    def test_start_position_divide(self):
        r = dev("perft", "3", "startpos")
        self.assertEqual(r.returncode, 0, r.stderr)
        lines = r.stdout.splitlines()
        self.assertEqual(len(lines), 22)
        # Generation order: pieces before pawns, which go file by file.
        self.assertEqual([l.split(": ")[0] for l in lines[:20]],
                         "b1a3 b1c3 g1f3 g1h3 a2a3 a2a4 b2b3 b2b4 c2c3 c2c4 d2d3 d2d4 e2e3 e2e4 f2f3 f2f4 g2g3 g2g4 "
                         "h2h3 h2h4".split())
        self.assertEqual(sum(int(l.split(": ")[1]) for l in lines[:20]), 8902)
        self.assertEqual(lines[20], "nodes 8902")
        self.assertRegex(lines[21], r"^time_ms \d+$")

    def test_fen_as_remaining_arguments(self):
        kiwipete = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -".split()
        for args, expected in ((["3", *kiwipete], "nodes 97862"),
                               (["3", *kiwipete, "--portable"], "nodes 97862"),
                               # Chess960 castling, written king takes rook
                               (["1", "4k3/8/8/8/8/8/8/RK6", "w", "A", "-"], "b1a1: 1")):
            r = dev("perft", *args)
            self.assertEqual(r.returncode, 0, r.stderr)
            self.assertIn(expected, r.stdout.splitlines(), args)


class DevEval(unittest.TestCase):
    # Rows adding up to the sum and colour symmetry: the unit tests, over many positions.
    def test_every_group_and_step_is_printed(self):
        r = dev("eval", "startpos")
        self.assertEqual(r.returncode, 0, r.stderr)
        rows = {}
        for line in r.stdout.splitlines():
            name, _, rest = line.partition("|")
            if name.strip() in GROUPS + ["Sum"]:
                rows[name.strip()] = tuple(int(x) for x in rest.split("|")[-2].split())
        self.assertEqual(sorted(rows), sorted(GROUPS + ["Sum"]))
        self.assertEqual(rows["Material"], (0, 0))
        self.assertEqual(rows["Tempo/contempt"], (19, 21))
        for step in ("phase 128", "blended ", "complexity ", "few files ", "scale factor "):
            self.assertIn(step, r.stdout)
        self.assertGreater(int(re.fullmatch(r"eval (-?\d+)", r.stdout.splitlines()[-1]).group(1)), 0)

    def test_endgame_function_positions(self):
        r = dev("eval", "8/8/8/4k3/8/8/8/3NKN2", "w", "-", "-")
        self.assertEqual(r.returncode, 0, r.stderr)
        self.assertEqual(r.stdout.splitlines()[-2:], ["endgame function (phase 0)", "eval 0"])


class BadArguments(unittest.TestCase):
    def test_exit_with_status_2_and_a_message(self):
        for args in (["bench", "x"], ["bench", "--fast"], ["bench", "99"], ["bench", "--threads", "0"],
                     ["bench", "--threads", "1025"], ["bench", "--threads"],
                     ["perft", "3", "not", "a", "fen"], ["perft", "3", "8/8/8/8/8/8/8/8", "w", "-", "-"],
                     ["perft", "3", "4k3/8/8/8/8/8/8/4R1K1", "w", "-", "-"], ["perft", "0", "startpos"],
                     ["perft", "x", "startpos"], ["perft", "3"],
                     ["eval"], ["eval", "not", "a", "fen"], ["eval", "8/8/8/8/8/8/8/8", "w", "-", "-"]):
            r = dev(*args)
            self.assertEqual(r.returncode, 2, args)
            self.assertTrue(r.stderr.strip(), args)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
