"""vorlaxen-dev perft: output format, counts and rejected positions."""
import subprocess
import sys
import unittest

DEV = sys.argv[2] if len(sys.argv) > 2 else "build/vorlaxen-dev"


def perft(*args):
    return subprocess.run([DEV, "perft", *args], capture_output=True, text=True, timeout=120)


class DevPerft(unittest.TestCase):
    def test_start_position_divide(self):
        r = perft("3", "startpos")
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

    def test_fen_as_remaining_arguments_and_portable_build(self):
        fen = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -".split()
        for extra in ([], ["--portable"]):
            r = perft("3", *fen, *extra)
            self.assertEqual(r.returncode, 0, r.stderr)
            self.assertIn("nodes 97862", r.stdout)

    def test_chess960_castling_written_king_takes_rook(self):
        r = perft("1", "4k3/8/8/8/8/8/8/RK6", "w", "A", "-")
        self.assertEqual(r.returncode, 0, r.stderr)
        self.assertIn("b1a1: 1", r.stdout)

    def test_rejected_positions_exit_with_status_2(self):
        for args in (["3", "not", "a", "fen"], ["3", "8/8/8/8/8/8/8/8", "w", "-", "-"],
                     ["3", "4k3/8/8/8/8/8/8/4R1K1", "w", "-", "-"], ["0", "startpos"], ["x", "startpos"],
                     ["3"]):
            r = perft(*args)
            self.assertEqual(r.returncode, 2, args)
            self.assertTrue(r.stderr.strip(), args)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
