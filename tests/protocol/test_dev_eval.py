"""vorlaxen-dev eval: the trace table, its last line and rejected positions."""
import re
import subprocess
import sys
import unittest

DEV = sys.argv[2] if len(sys.argv) > 2 else "build/vorlaxen-dev"

GROUPS = ["Material", "Imbalance", "Piece-square", "Pawns", "Pawn up", "Knights", "Bishops", "Rooks",
          "Queens", "King safety", "Threats", "Passed pawns", "Tempo/contempt"]


def run_eval(*args):
    return subprocess.run([DEV, "eval", *args], capture_output=True, text=True, timeout=60)


def final_value(stdout):
    last = stdout.strip().splitlines()[-1]
    m = re.fullmatch(r"eval (-?\d+)", last)
    assert m, last
    return int(m.group(1))


def totals(stdout):
    rows = {}
    for line in stdout.splitlines():
        name, _, rest = line.partition("|")
        cells = [c.split() for c in rest.split("|")[:-1]]
        if name.strip() in GROUPS + ["Sum"] and cells:
            rows[name.strip()] = tuple(int(x) for x in cells[-1])
    return rows


class DevEval(unittest.TestCase):
    def test_every_group_and_step_is_printed(self):
        r = run_eval("startpos")
        self.assertEqual(r.returncode, 0, r.stderr)
        rows = totals(r.stdout)
        for g in GROUPS:
            self.assertIn(g, rows)
        self.assertEqual(rows["Material"], (0, 0))
        self.assertEqual(rows["Tempo/contempt"], (19, 21))
        for step in ("phase 128", "blended ", "complexity ", "few files ", "scale factor "):
            self.assertIn(step, r.stdout)
        self.assertGreater(final_value(r.stdout), 0)

    def test_group_totals_add_up_to_the_sum(self):
        fen = "r1bq1rk1/pp2bppp/2n1pn2/3p4/2PP4/2N1PN2/PP2BPPP/R2QKB1R w KQ - 0 9".split()
        r = run_eval(*fen)
        self.assertEqual(r.returncode, 0, r.stderr)
        rows = totals(r.stdout)
        mg = sum(rows[g][0] for g in GROUPS)
        eg = sum(rows[g][1] for g in GROUPS)
        self.assertEqual((mg, eg), rows["Sum"])

    def test_colour_mirrored_position_gives_the_same_value(self):
        a = run_eval(*"r1bq1rk1/pp2bppp/2n1pn2/3p4/2PP4/2N1PN2/PP2BPPP/R2QKB1R w KQ - 0 9".split())
        b = run_eval(*"r2qkb1r/pp2bppp/2n1pn2/2pp4/3P4/2N1PN2/PP2BPPP/R1BQ1RK1 b kq - 0 9".split())
        self.assertEqual(final_value(a.stdout), final_value(b.stdout))

    def test_endgame_function_positions(self):
        r = run_eval("8/8/8/4k3/8/8/8/3NKN2", "w", "-", "-")
        self.assertEqual(r.returncode, 0, r.stderr)
        self.assertIn("endgame function", r.stdout)
        self.assertEqual(final_value(r.stdout), 0)

    def test_rejected_positions_exit_with_status_2(self):
        for args in ([], ["not", "a", "fen"], ["8/8/8/8/8/8/8/8", "w", "-", "-"]):
            r = run_eval(*args)
            self.assertEqual(r.returncode, 2, args)
            self.assertTrue(r.stderr.strip(), args)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
