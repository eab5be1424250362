"""The UCI front end: greeting, "uci" listing, command words, "position",
"setoption", command-line mode, ending, and input that must not upset it."""
import os
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from engine import ENGINE, NO_BASES, EngineTestCase, is_bestmove, run, start  # noqa: E402


def run_engine(*args, **kw):
    """Command-line mode in an empty directory, where the default database list does not exist."""
    with tempfile.TemporaryDirectory() as tmp:
        return run(ENGINE, *args, cwd=tmp, **kw)


# The greeting names the build chosen for this processor; test_processors
# checks that choice on each processor model.
GREETING = run_engine()[1][0]
BASE_GREETING = GREETING.replace(" BMI2", "")

UCI_LISTING = [
    "id name Vorlaxen 13 x64",
    "id author Quenstel",
    "option name Hash type spin min 1 max 65536 default 64",
    "option name Ponder type check default false",
    "option name MultiPV type spin min 1 max 20 default 1",
    "option name UCI_EngineAbout type string default Vorlaxen by Quenstel, https://vorlaxen.org",
    "option name UCI_Chess960 type check default false",
    "option name UCI_ShowCurrLine type check default false",
    "option name UCI_LimitStrength type check default false",
    "option name UCI_Elo type spin min 850 max 2800 default 1400",
    "option name Keep Hash Tables type check default true",
    "option name Clear Hash type button",
    "option name Use Vorlaxenbases type check default true",
    "option name UCI_VorlaxenbasesPath type string default vorlaxenbases/bases.ini",
    "option name Use Syzygy Databases type check default true",
    "option name Syzygy 50 Moves Rule type check default true",
    "option name Syzygy Path type string default <empty>",
    "option name Contempt type spin min -300 max 300 default 0",
    "option name Time Buffer (sec) type spin min 0 max 60 default 1",
    "option name Time Usage Percent type spin min 50 max 200 default 100",
    "option name Threads type spin min 1 max 1024 default 1",
    "option name UCI_ShowWDL type check default false",
    "uciok",
]


class UciTestCase(EngineTestCase):
    def setUp(self):
        super().setUp()
        self.assertEqual(self.engine.greeting, GREETING)

    def answer(self, command):
        self.engine.send(command)
        return self.engine.sync()

    def listing(self):
        self.engine.send("uci")
        return self.engine.read_until("uciok")


class StartAndCommandWords(UciTestCase):
    def test_uci_lists_identity_and_the_options_in_order(self):
        self.assertEqual(self.listing(), UCI_LISTING)

    def test_command_words_are_exact_and_case_sensitive(self):
        # The databases are loaded by the first "isready" only: no second report.
        for command, answer in (("UCI", "UCI"), ("", ""), ("   ", ""), ("hello world", "hello"), ("IsReady", "IsReady"),
                                ("  stop   ", None), ("ponderhit", None), ("ucinewgame", None)):
            self.assertEqual(self.answer(command), ["unknown command: " + answer] if answer is not None else [], command)


class PositionCommand(UciTestCase):
    def test_accepted_positions_write_nothing_and_the_others_are_rejected(self):
        for command in ("position startpos moves e2e5 e2e4", "position fen 4k3/8/8/8/8/8/8/4R1K1 b - -",
                        "position fen 1r2k1r1/8/8/8/8/8/8/1R2K1R1 w GBgb - 0 1 moves e1g1"):
            self.assertEqual(self.answer(command), [], command)
        for command in ("position", "position startpos e2e4", "position fen 8/8/8/8/8/8/8/8 x - -"):
            self.assertEqual(self.answer(command), ["illegal position command"], command)
        for fen in ("4k3/8/8/8/8/8/8/8 w - -", "4k3/8/8/8/8/8/8/K3K3 w - -", "4k2P/8/8/8/8/8/8/4K3 w - -",
                    "4k3/8/8/8/8/8/8/p3K3 b - -", "4k3/8/8/8/8/NNNNNNNN/NNNNNNNN/4K3 w - -",
                    "4k3/8/8/8/8/PPPPPPPP/BBB5/4K3 w - -", "4k3/8/8/8/8/8/8/4R1K1 w - -", "8/8/8/8/8/3kK3/8/8 b - -"):
            self.assertEqual(self.answer("position fen " + fen), ["illegal position command"], fen)


class SetOptionCommand(UciTestCase):
    def test_unknown_names_are_reported(self):
        for command, name in (("setoption name Has value 1", "Has"),
                              ("setoption name Clear  Hashes", "Clear Hashes")):
            self.assertEqual(self.answer(command), ["option not found: " + name], command)

    def test_accepted_and_rejected_values_show_in_the_listing(self):
        # Which values each kind of option refuses: the unit tests (options_test).
        for command in ("setoption name hash value 128MB", "setoption name contempt value -300",
                        "setoption name UCI_EngineAbout value a   spaced    text",
                        "setoption name Clear Hash", "setoption name Syzygy Path value <empty>"):
            self.assertEqual(self.answer(command), [], command)
        self.assertEqual(self.answer("setoption name UCI_VorlaxenbasesPath value /nonexistent/bases.ini"), [NO_BASES])
        changed = {2: "option name Hash type spin min 1 max 65536 default 128MB",
                   17: "option name Contempt type spin min -300 max 300 default -300",
                   5: "option name UCI_EngineAbout type string default a spaced text",
                   13: "option name UCI_VorlaxenbasesPath type string default /nonexistent/bases.ini"}
        self.assertEqual(self.listing(), [changed.get(i, line) for i, line in enumerate(UCI_LISTING)])


class Ending(unittest.TestCase):
    def test_end_of_input_without_quit(self):
        self.assertEqual(run_engine(stdin=b"position startpos moves e2e4\n"), (0, [GREETING]))

    def test_quit_with_more_words_ends_without_more_input(self):
        # Words after any plain command are ignored; quit shows it without an answer to wait for.
        for line in ("quit now", " quit"):
            engine = start(self, ENGINE)
            engine.send(line)  # input stays open
            self.assertEqual(engine.wait(5), 0, repr(line))

    def test_lines_after_quit_are_not_executed(self):
        self.assertEqual(run_engine(stdin=b"isready\nquit\nisready\n"), (0, [GREETING, NO_BASES, "readyok"]))


class CommandLineMode(unittest.TestCase):
    def test_the_environment_can_ask_for_the_base_build(self):
        self.assertRegex(GREETING, r"^info string Hello from Vorlaxen 13 64 bit ASM( HWPopCnt)?( BMI2)?$")
        self.assertEqual(run_engine("isready", env={"VORLAXEN_BUILD": "base"}), (0, [BASE_GREETING, NO_BASES, "readyok"]))
        self.assertEqual(run_engine("isready", env={"VORLAXEN_BUILD": "other"}), (0, [GREETING, NO_BASES, "readyok"]))

    def test_arguments_run_as_one_command_and_standard_input_is_not_read(self):
        for args, answer in ((["uci"], UCI_LISTING),
                             ("setoption name Hashes value 1".split(), ["option not found: Hashes"])):
            self.assertEqual(run_engine(*args, stdin=b"uci\n"), (0, [GREETING] + answer), args)


START_MOVES = {"%s2%s%s" % (f, f, r) for f in "abcdefgh" for r in "34"} | {"b1a3", "b1c3", "g1f3", "g1h3"}


def best_move(lines):
    return lines[-1].split()[1]


class DuringSearch(UciTestCase):
    # quit during a search: test_threads.Commands and test_limit.
    def test_isready_is_answered_and_other_commands_wait_for_the_search(self):
        e = self.engine
        e.send("position startpos")
        e.send("go infinite")
        e.send("isready")
        self.assertNotIn("bestmove", " ".join(e.read_until("readyok")))
        e.send("position fen 4k3/8/8/8/8/8/8/4K2R w K -")
        e.send("setoption name Hashes value 3")
        e.send("isready")
        self.assertEqual([l for l in e.read_until("readyok")[:-1] if not l.startswith("info")], [])
        e.send("stop")
        lines = e.read_until(is_bestmove)
        self.assertIn(best_move(lines), START_MOVES)
        self.assertEqual(e.read_line(), "option not found: Hashes")
        e.send("go depth 1")
        self.assertIn(best_move(e.read_until(is_bestmove))[:2], ("e1", "h1"))

    def test_ponderhit_ends_a_finished_pondering_search(self):
        e = self.engine
        e.send("position startpos moves e2e4")
        e.send("go ponder depth 2")
        self.assertEqual([l for l in e.sync() if not l.startswith("info")], [])
        e.send("ponderhit")
        self.assertTrue(best_move(e.read_until(is_bestmove)))

    def test_waiting_search_on_the_command_line_ends_as_if_quit_came(self):
        for args in (("go", "depth", "2", "infinite"), ("go", "ponder", "depth", "2")):
            code, lines = run_engine(*args)
            self.assertEqual(code, 0, args)
            self.assertIn(best_move(lines), START_MOVES, args)


class HostileInput(UciTestCase):
    def test_binary_junk_and_a_100_kb_line(self):
        junk = bytes(b for b in range(256) if b != 10)
        self.engine.send(junk)
        self.engine.send(b"\x00\xff\xfe position \x00 fen \x80")
        self.engine.send(b"x" * 100_000)
        # 20,000 plies; then a move that is not legal, 20,000 times.
        self.engine.send(("position startpos moves " + "g1f3 g8f6 f3g1 f6g8 " * 5_000 + "e2e4 " * 20_000).encode())
        self.engine.send(("setoption name " + "Hash " * 20_000 + "value 1").encode())
        lines = self.engine.sync()
        self.assertEqual(lines[-1][:30], "option not found: Hash Hash Ha")
        self.assertEqual(lines[-2], "unknown command: " + "x" * 100_000)

    def test_absurd_numbers(self):
        for command in ("setoption name Hash value 0", "setoption name Contempt value -2147483649",
                        "position fen 4k3/8/8/8/8/8/8/4K3 w - - 99999999999999999999 -5",
                        "position fen 4k3/8/8/8/8/8/8/4K3 w - z9 0 1",
                        "setoption name Time Buffer (sec) value 18446744073709551616"):
            self.engine.send(command)
        self.assertEqual(self.engine.sync(30), [])
        self.assertIn("option name Hash type spin min 1 max 65536 default 64", self.listing())

    def test_impossible_en_passant_fields_are_searched_safely(self):
        # Pasted positions no game reaches: a capture that would uncover a
        # diagonal check, and fields with no double-stepped pawn behind them.
        for fen in ("8/5bk1/8/2Pp4/8/1K6/8/8 w - d6 0 1", "4R3/qQ6/4qP1n/3pP2k/2K3p1/8/5P2/8 w - d6 18 179"):
            self.assertNotIn(self.go("position fen " + fen, "go depth 8", 30)[1], ("c5d6", "e5d6", "0000"), fen)

    def test_absurd_search_limits_still_give_a_move(self):
        # How each number is read: the unit tests (commands_test).
        for go in ("go depth 0", "go wtime -100", "go nodes 1", "go movestogo 2147483647 wtime 300",
                   "go wtime 2147483647 btime -2147483648 winc 2147483647 movestogo -3 depth 3"):
            self.assertIn(self.go("position startpos", go, 30)[1], START_MOVES, go)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
