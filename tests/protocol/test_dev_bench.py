"""vorlaxen-dev bench: every build searches identical trees: the one chosen for
this processor, the base build with popcnt and the base build without it."""
import os
import subprocess
import sys
import unittest

DEV = sys.argv[2] if len(sys.argv) > 2 else "build/vorlaxen-dev"


def bench(*args, env=None):
    full_env = dict(os.environ, **env) if env else None
    return subprocess.run([DEV, "bench", *args], capture_output=True, text=True, timeout=300, env=full_env)


def per_position(output):
    """(nodes of the last info line, bestmove line) for every searched position."""
    result, nodes = [], None
    for line in output.splitlines():
        words = line.split()
        if "nodes" in words and words[0] == "info":
            nodes = int(words[words.index("nodes") + 1])
        if line.startswith("bestmove"):
            result.append((nodes, line))
    return result


class DevBench(unittest.TestCase):
    def test_every_build_gives_the_same_nodes_and_moves_for_every_position(self):
        hw = bench("-7")
        if hw.returncode == 2 and "popcnt" in hw.stderr:
            self.skipTest("processor without popcnt")
        portable = bench("--portable", "-7")
        base = bench("-7", env={"VORLAXEN_BUILD": "base"})
        for r in (hw, portable, base):
            self.assertEqual(r.returncode, 0, r.stderr)
        a = per_position(hw.stdout)
        self.assertEqual(len(a), 35)
        self.assertEqual(a, per_position(portable.stdout))
        self.assertEqual(a, per_position(base.stdout))
        lines = hw.stdout.splitlines()
        self.assertEqual(lines[-2], portable.stdout.splitlines()[-2])
        self.assertEqual(lines[-4], "")
        self.assertRegex(lines[-3], r"^Total time \(ms\) : \d+$")
        self.assertRegex(lines[-2], r"^Nodes searched  : \d+$")
        self.assertRegex(lines[-1], r"^Nodes/second    : \d+$")

    def test_threads_search_every_position_to_its_depth(self):
        # Helpers beside the main thread: every position still reaches its
        # depth (its last iteration summary) and is answered once.
        r = bench("--threads", "3", "-10")
        self.assertEqual(r.returncode, 0, r.stderr)
        self.assertEqual(len(per_position(r.stdout)), 35)
        self.assertRegex(r.stdout.splitlines()[-2], r"^Nodes searched  : \d+$")

    def test_bad_arguments(self):
        for args in (["x"], ["--fast"], ["99"], ["--threads", "0"], ["--threads", "1025"], ["--threads"]):
            r = bench(*args)
            self.assertEqual(r.returncode, 2, args)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
