"""Drives the engine through pipes, as a chess GUI would. Every read has a
time limit, so that a hung engine fails a test instead of hanging it."""
import queue
import os
import subprocess
import sys
import tempfile
import threading
import time
import unittest

DEFAULT_TIMEOUT = 10.0
NO_BASES = "info string vorlaxenbasses with 0 men found (0 MB)"
ENGINE = os.path.abspath(sys.argv[1] if len(sys.argv) > 1 else "build/vorlaxen")
DEV = sys.argv[2] if len(sys.argv) > 2 else "build/vorlaxen-dev"
SYZYGY = os.path.abspath(os.environ.get("VORLAXEN_SYZYGY_DIR", os.path.join(
    os.path.dirname(os.path.abspath(__file__)), "..", "..", "..", "shared", "syzygy")))
needs_syzygy = unittest.skipUnless(os.path.isfile(os.path.join(SYZYGY, "KQvK.rtbw")),
                                   "no Syzygy tables in %s (set VORLAXEN_SYZYGY_DIR)" % SYZYGY)


def is_bestmove(line):
    return line.startswith("bestmove")


class EngineError(AssertionError):
    pass


class Engine:
    def __init__(self, path, *args, timeout=DEFAULT_TIMEOUT, cwd=None):
        self.timeout = timeout
        self.proc = subprocess.Popen([path, *args], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                     stderr=subprocess.DEVNULL, bufsize=0, cwd=cwd)
        self._lines = queue.Queue()
        self._pump = threading.Thread(target=self._read_stdout, daemon=True)
        self._pump.start()

    def _read_stdout(self):
        for raw in iter(self.proc.stdout.readline, b""):
            self._lines.put(raw.rstrip(b"\r\n").decode("utf-8", errors="replace"))
        self._lines.put(None)  # end of output

    def send(self, line):
        data = line if isinstance(line, bytes) else line.encode()
        self.proc.stdin.write(data + b"\n")
        self.proc.stdin.flush()

    def read_line(self, timeout=None):
        try:
            line = self._lines.get(timeout=self.timeout if timeout is None else timeout)
        except queue.Empty:
            raise EngineError("no output line within %.1f s" % (self.timeout if timeout is None else timeout))
        if line is None:
            self._lines.put(None)
            raise EngineError("the engine closed its output")
        return line

    def read_until(self, match, timeout=None):
        """Lines up to and including the first one that equals match (a str)
        or satisfies it (a callable)."""
        test = match if callable(match) else (lambda l: l == match)
        deadline = time.monotonic() + (self.timeout if timeout is None else timeout)
        lines = []
        while True:
            left = deadline - time.monotonic()
            if left <= 0:
                raise EngineError("no line matching %r; got %r" % (match, lines[-10:]))
            lines.append(self.read_line(left))
            if test(lines[-1]):
                return lines

    def sync(self, timeout=None):
        self.send("isready")
        return self.read_until("readyok", timeout)[:-1]

    def close_input(self):
        self.proc.stdin.close()

    def wait(self, timeout=None):
        try:
            return self.proc.wait(timeout=self.timeout if timeout is None else timeout)
        except subprocess.TimeoutExpired:
            raise EngineError("the engine did not exit")

    def kill(self):
        if self.proc.poll() is None:
            self.proc.kill()
        self.proc.wait()
        # The pump ends at the end of the output; closing the pipe under it
        # could let its next read land on a descriptor reused by a later engine.
        self._pump.join()
        for f in (self.proc.stdin, self.proc.stdout):
            try:
                f.close()
            except (OSError, ValueError):
                pass


def start(case, path, *args, cwd=None, timeout=DEFAULT_TIMEOUT):
    """An engine for one test, killed at its end, its greeting read (kept in
    .greeting). Without cwd it runs in a fresh empty directory (case.tmp),
    where no databases lie under their default path."""
    if cwd is None:
        tmp = tempfile.TemporaryDirectory()
        case.addCleanup(tmp.cleanup)
        cwd = case.tmp = tmp.name
    engine = Engine(path, *args, timeout=timeout, cwd=cwd)
    case.addCleanup(engine.kill)
    engine.greeting = engine.read_line()
    return engine


class EngineTestCase(unittest.TestCase):
    timeout = 20.0

    def setUp(self):
        self.engine = start(self, ENGINE, timeout=self.timeout)
        self.assertEqual(self.engine.sync(), [NO_BASES])

    def go(self, position, go, timeout=None):
        """Runs one search to its "bestmove"; returns (lines before it, best
        move, ponder move or None). No second "bestmove" may follow."""
        self.engine.send(position)
        self.engine.send(go)
        lines = self.engine.read_until(is_bestmove, timeout)
        self.assertRegex(lines[-1], r"^bestmove \S+( ponder \S+)?$")
        words = lines[-1].split()
        for line in self.engine.sync():
            self.assertFalse(is_bestmove(line), "a second bestmove: " + line)
        return lines[:-1], words[1], words[3] if len(words) == 4 else None


def run(path, *args, stdin=b"", timeout=DEFAULT_TIMEOUT, cwd=None, env=None):
    """Runs the engine to its end (env: variables added); returns (exit status, output lines)."""
    full_env = dict(os.environ, **env) if env else None
    r = subprocess.run([path, *args], input=stdin, capture_output=True, timeout=timeout, cwd=cwd, env=full_env)
    return r.returncode, r.stdout.decode("utf-8", errors="replace").splitlines()


def per_position(lines):
    """(nodes of the last info line, bestmove line) of every searched position
    of a bench's or a search's output lines."""
    result, nodes = [], None
    for line in lines:
        words = line.split()
        if words[:1] == ["info"] and "nodes" in words:
            nodes = int(words[words.index("nodes") + 1])
        if line.startswith("bestmove"):
            result.append((nodes, line))
    return result
