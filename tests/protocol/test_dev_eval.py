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
    # Rows adding up to the sum and colour symmetry: the unit tests, over many positions.
    def test_every_group_and_step_is_printed(self):
        r = run_eval("startpos")
        self.assertEqual(r.returncode, 0, r.stderr)
        rows = totals(r.stdout)
        self.assertEqual(sorted(rows), sorted(GROUPS + ["Sum"]))
        self.assertEqual(rows["Material"], (0, 0))
        self.assertEqual(rows["Tempo/contempt"], (19, 21))
        for step in ("phase 128", "blended ", "complexity ", "few files ", "scale factor "):
            self.assertIn(step, r.stdout)
        self.assertGreater(final_value(r.stdout), 0)

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
