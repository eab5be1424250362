"""vorlaxen-dev match: a short real match between two engine processes, the
summary and PGN it writes, forfeits by misbehaving engines, and usage errors."""
import os
import re
import subprocess
import sys
import tempfile
import textwrap
import unittest
from pathlib import Path

from engine import DEV, ENGINE

OPENINGS = Path(__file__).resolve().parents[2] / "tools" / "match" / "openings.epd"

# A stand-in engine that answers the handshake and then misbehaves on "go"
# in the way named by its argument.
FAKE_ENGINE = textwrap.dedent("""\
    import sys, time
    mode = sys.argv[1]
    for line in sys.stdin:
        cmd = line.split()[:1]
        if cmd == ["uci"]:
            print("id name fake-" + mode + "\\nuciok", flush=True)
        elif cmd == ["isready"]:
            print("readyok", flush=True)
        elif cmd == ["quit"]:
            break
        elif cmd == ["go"] and mode == "illegal":
            print("bestmove a1a1", flush=True)
        elif cmd == ["go"] and mode == "crash":
            sys.exit(3)
        elif cmd == ["go"]:  # silent
            time.sleep(60)
    """)


def match(*args, timeout=300):
    return subprocess.run([DEV, "match", *args], capture_output=True, text=True, timeout=timeout)


def summary_counts(out):
    m = re.search(r"^W/D/L: (\d+)/(\d+)/(\d+)$", out, re.M)
    return tuple(map(int, m.groups())) if m else None


def forfeits(out):
    """{name: (illegal, crashes, time losses)} from the summary."""
    found = re.findall(r"^Forfeits by (.+): illegal moves (\d+), crashes (\d+), time losses (\d+)$", out, re.M)
    return {name: tuple(map(int, rest)) for name, *rest in found}


def pgn_games(text):
    games = []
    for chunk in re.split(r"\n\n(?=\[Event )", text.strip()):
        tags = dict(re.findall(r'^\[(\w+) "(.*)"\]$', chunk, re.M))
        movetext = chunk.split("\n\n", 1)[1] if "\n\n" in chunk else ""
        games.append((tags, movetext))
    return games


class Match(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.tmp = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.tmp.cleanup)
        cls.fake = os.path.join(cls.tmp.name, "fake_engine.py")
        Path(cls.fake).write_text(FAKE_ENGINE)

    def test_short_match_between_two_engine_processes(self):
        pgn = os.path.join(self.tmp.name, "games.pgn")
        r = match("--engine", ENGINE, "--name", "first", "--engine", ENGINE, "--name", "second",
                  "--games", "4", "--tc", "0.5+0.05", "--openings", str(OPENINGS), "--seed", "7",
                  "--concurrency", "2", "--pgn", pgn, "--sprt", "0", "10")
        self.assertEqual(r.returncode, 0, r.stderr)
        out = r.stdout
        self.assertEqual(len(re.findall(r"^Game \d+ \(", out, re.M)), 4, out)
        wdl = summary_counts(out)
        self.assertRegex(out, r"Score: [\d.]+/4 = [01]\.\d{3}")
        # The two pairs of games, counted by the first engine's points, hold
        # exactly the points of the single games.
        pairs = [int(n) for n in re.search(r"^Pentanomial \[0, 0\.5, 1, 1\.5, 2\]: (\d+) (\d+) (\d+) (\d+) (\d+)$",
                                           out, re.M).groups()]
        self.assertEqual(sum(pairs), 2)
        self.assertEqual(sum(k * n for k, n in enumerate(pairs)), 2 * wdl[0] + wdl[1])
        # Finite estimates, also when both pairs ended alike; only an interval
        # bound may be unbounded (a score interval reaching 0 or 1).
        number, bound = r"[+-]\d+\.\d", r"(?:[+-]\d+\.\d|[+-]inf)"
        self.assertRegex(out, r"Elo difference: %s, 95%% interval \[%s, %s\] \(2 pairs\)" % (number, bound, bound))
        self.assertRegex(out, r"Normalized Elo: %s, 95%% interval \[%s, %s\]" % (number, number, number))
        self.assertRegex(out, r"LOS: \d+\.\d%")
        self.assertRegex(out, r"SPRT \(elo0 0, elo1 10\): LLR -?[\d.]+, bounds \[-2\.944, 2\.944\], "
                              r"(continue|H0 accepted|H1 accepted)")
        counts = forfeits(out)
        self.assertEqual(set(counts), {"first", "second"})
        for name, (illegal, crashes, _) in counts.items():
            self.assertEqual((illegal, crashes), (0, 0), name)

        games = pgn_games(Path(pgn).read_text())
        fit = subprocess.run([DEV, "wdl-fit", "--holdout", "2", pgn], capture_output=True, text=True, timeout=60)
        self.assertEqual(fit.returncode, 0, fit.stderr)
        self.assertRegex(fit.stdout, r"(?m)^4 games: \d+ positions fitted, \d+ held out \(every 2-th game\)$")
        self.assertRegex(fit.stdout, r"(?m)^constexpr WdlModel WDL_MODEL = \{\{\S+, \S+, \S+, \S+\}, \{\S+, \S+, \S+, \S+\}\};$")
        for tags, movetext in games:
            self.assertLessEqual({"Event", "Site", "Date", "Round", "White", "Black", "Result", "SetUp", "FEN",
                                  "TimeControl", "Termination", "PlyCount"}, set(tags))
            self.assertTrue(movetext.rstrip().endswith(tags["Result"]))
            self.assertEqual(tags["TimeControl"], "0.5+0.05")
            # The moves are legal SAN: wdl-fit read them back above.
            without_comments = re.sub(r"\{[^}]*\}", "", movetext)
            sans = [t for t in without_comments.split() if not re.match(r"^\d+\.+$|^(1-0|0-1|1/2-1/2)$", t)]
            self.assertEqual(len(sans), int(tags["PlyCount"]))
        # Each opening is played twice with colours reversed.
        a, b = ({int(t["Round"]): t for t, _ in games}[n] for n in (1, 2))
        self.assertEqual(a["FEN"], b["FEN"])
        self.assertEqual((a["White"], a["Black"]), (b["Black"], b["White"]))

    def test_forfeits_are_counted_by_kind(self):
        for mode, counts, termination in (("illegal", (2, 0, 0), "rules infraction"),
                                          ("crash", (0, 2, 0), "abandoned"), ("silent", (0, 0, 2), "time forfeit")):
            with self.subTest(mode=mode):
                pgn = os.path.join(self.tmp.name, mode + ".pgn")
                r = match("--engine", ENGINE, "--engine", f"{sys.executable} {self.fake} {mode}", "--games", "2",
                          "--tc", "0.3+0.05", "--pgn", pgn)
                self.assertEqual(r.returncode, 0, r.stderr)
                self.assertEqual(summary_counts(r.stdout), (2, 0, 0), r.stdout)
                self.assertEqual(forfeits(r.stdout)["fake-" + mode], counts, r.stdout)
                games = pgn_games(Path(pgn).read_text())
                self.assertEqual([t["Termination"] for t, _ in games], [termination] * 2)

    def test_usage_errors_exit_with_status_2(self):
        bad = os.path.join(self.tmp.name, "bad.epd")
        Path(bad).write_text("# a good line, then a broken one\n\n"
                             "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1\n"
                             "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBN w KQkq - 0 1\n")
        bad_pgn = os.path.join(self.tmp.name, "bad.pgn")
        Path(bad_pgn).write_text("1. e4 e5 2. Ke3\n")
        common = ["--games", "2", "--tc", "1+0.1"]
        cases = [
            (["--engine", "/nonexistent/engine", "--engine", ENGINE, *common], "not found"),
            (["--engine", ENGINE, "--engine", ENGINE, "--openings", bad, *common], "bad.epd:4:"),
            (["--engine", ENGINE, "--engine", ENGINE, "--openings", bad_pgn, *common],
             "bad.pgn: line 1: no legal move 'Ke3'"),
            (["--engine", ENGINE, "--engine", "true", *common], "uciok"),
            (["--engine", ENGINE, "--engine", "cat", *common], "uciok"),  # never answers
            (["--engine", ENGINE, "--games", "2", "--tc", "1+0.1"], "two --engine"),
            (["--engine", ENGINE, "--engine", ENGINE, "--games", "2", "--tc", "fast"], "--tc"),
        ]
        for args, message in cases:
            with self.subTest(args=args):
                r = match(*args, timeout=60)
                self.assertEqual(r.returncode, 2, r.stdout + r.stderr)
                self.assertIn(message, r.stderr)

    def test_openings_from_the_first_plies_of_pgn_games(self):
        # The two games of the first opening start after four plies of the
        # first PGN game; a game over within four plies is left out.
        openings = os.path.join(self.tmp.name, "openings.pgn")
        Path(openings).write_text('[Event "a"]\n1. e4 e5 2. Nf3 {book} Nc6 3. Bb5 a6 1-0\n\n'
                                  '[Event "b"]\n1. f3 e5 2. g4 Qh4# 0-1\n')
        pgn = os.path.join(self.tmp.name, "from_pgn.pgn")
        r = match("--engine", ENGINE, "--engine", ENGINE, "--games", "2", "--tc", "0.2+0.02",
                  "--openings", openings, "--plies", "4", "--pgn", pgn)
        self.assertEqual(r.returncode, 0, r.stderr)
        self.assertIn("1 openings", r.stdout)
        fens = [t["FEN"] for t, _ in pgn_games(Path(pgn).read_text())]
        self.assertEqual(fens, ["r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq - 2 3"] * 2)

    def test_shipped_opening_set(self):
        lines = [l for l in OPENINGS.read_text().splitlines() if l.strip() and not l.lstrip().startswith("#")]
        self.assertGreaterEqual(len(lines), 100)
        self.assertEqual(len(set(lines)), len(lines))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
