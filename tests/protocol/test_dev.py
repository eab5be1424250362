"""vorlaxen-dev bench, perft and eval: every build searches identical trees,
the divide output and counts, the evaluation's trace table, and rejected
arguments. (The match runner and wdl-fit: test_match.)"""
import os
import re
import subprocess
import sys
import unittest

from engine import DEV, per_position

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
        # Helpers beside the main thread: every position is still answered once.
        threads = dev("bench", "--threads", "3", "-10")
        for r in (hw, portable, base, threads):
            self.assertEqual(r.returncode, 0, r.stderr)
        a = per_position(hw.stdout.splitlines())
        self.assertEqual(len(a), 35)
        self.assertEqual(a, per_position(portable.stdout.splitlines()))
        self.assertEqual(a, per_position(base.stdout.splitlines()))
        self.assertEqual(len(per_position(threads.stdout.splitlines())), 35)


class DevPerft(unittest.TestCase):
    def test_divide_of_the_start_position_and_of_a_fen_in_the_remaining_arguments(self):
        kiwipete = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -".split()
        for args, expected in ((["3", "startpos"], "nodes 8902"),
                               (["3", *kiwipete, "--portable"], "nodes 97862"),
                               # Chess960 castling, written king takes rook
                               (["1", "4k3/8/8/8/8/8/8/RK6", "w", "A", "-"], "b1a1: 1")):
            r = dev("perft", *args)
            self.assertEqual(r.returncode, 0, r.stderr)
            self.assertIn(expected, r.stdout.splitlines(), args)
        lines = dev("perft", "3", "startpos").stdout.splitlines()
        self.assertEqual(len(lines), 22)
        # Generation order: pieces before pawns, which go file by file.
        self.assertEqual([l.split(": ")[0] for l in lines[:6]], "b1a3 b1c3 g1f3 g1h3 a2a3 a2a4".split())
        self.assertRegex(lines[21], r"^time_ms \d+$")


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
        for args in (["bench", "--fast"], ["bench", "99"], ["bench", "--threads", "0"],
                     ["bench", "--threads", "1025"],
                     ["perft", "3", "4k3/8/8/8/8/8/8/4R1K1", "w", "-", "-"], ["perft", "0", "startpos"],
                     ["perft", "3"], ["eval"], ["eval", "not", "a", "fen"]):
            r = dev(*args)
            self.assertEqual(r.returncode, 2, args)
            self.assertTrue(r.stderr.strip(), args)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
