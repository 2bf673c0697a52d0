"""Changes one thing at a time in the library and sees whether the tests notice.

Works on copies of the tree in FOLDER, one for each processor; the tree itself stays as it is. A
mutant is killed when a test fails, crashes or takes too long, and when it does not compile. One that
the compiler turns into the same code as the original is none, and another takes its place. What lives
has to be explained in living.txt beside this script, a line each: the mutant as this script prints
it, a tab, the reason. Mutants are drawn by seed, so that a run can be repeated.
"""
import argparse
import collections
import concurrent.futures
import hashlib
import os
import pathlib
import queue
import random
import resource
import shutil
import signal
import subprocess
import sys
import time

from mutants import mutants_of

ROOT = pathlib.Path(__file__).resolve().parents[2]
SOURCES = ["VUKSim/VUKSimRpm.m/src", "platform/VUKSimUtt/src"]
PROGRAMS = ["unit_tests", "replaced_platform_tests", "format_tests", "scenario_tests",
            "VUKSimUtt_test"]
NEAREST = {"VUKSim": "unit_tests", "platform": "VUKSimUtt_test"}
TOO_LONG = 60  # seconds of one processor, for one test program; all of them take a few
STUCK = 900  # seconds on the clock, for one that waits for ever
SAME = "same code"


def limit_processor_time():
    """Not by the clock: on a busy machine that would kill mutants which no test notices."""
    resource.setrlimit(resource.RLIMIT_CPU, (TOO_LONG, TOO_LONG + 5))


class Workshop:
    """A copy of the tree and its build, where one mutant at a time is tried."""

    def __init__(self, folder):
        self.tree = folder / "tree"
        self._build = folder / "build"
        self._scratch = folder / "scratch"
        shutil.rmtree(self.tree, ignore_errors=True)
        shutil.copytree(ROOT, self.tree, symlinks=True,
                        ignore=shutil.ignore_patterns("build", ".git", "__pycache__"))
        # A build of an earlier run may be of a mutant, and newer than what was copied.
        for path in (path for folder in SOURCES for path in (self.tree / folder).iterdir()):
            path.touch()
        subprocess.run(["cmake", "-S", self.tree, "-B", self._build, "-G", "Ninja",
                        "-DCMAKE_CXX_COMPILER=g++", "-DVUKSIM_BUILD_TOOLS=OFF",
                        "-DCMAKE_CXX_FLAGS=-O1 -D_GLIBCXX_ASSERTIONS",
                        "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON"],
                       check=True, stdout=subprocess.DEVNULL)
        if not self.builds():
            sys.exit("the tree does not build as it is")
        found = [path for path in self._build.rglob("*")
                 if path.name in PROGRAMS and path.is_file()]
        if len(found) != len(PROGRAMS):
            sys.exit(f"expected {PROGRAMS}, found {found}")
        self._programs = sorted(found, key=lambda path: PROGRAMS.index(path.name))
        self._codes = {path: self._code_of(path) for path in self._build.rglob("src/*.cpp.o")}

    @staticmethod
    def _code_of(path):
        return hashlib.sha256(path.read_bytes()).digest()

    def is_same_code(self, mutant):
        """Whether the last build came to the original's code, which has no debug information."""
        name = f"{pathlib.PurePath(mutant.file).name}.o"
        objects = [path for path in self._codes if path.name == name]
        assert objects, f"{mutant.file} was not compiled"
        return all(self._code_of(path) == self._codes[path] for path in objects)

    def builds(self):
        return subprocess.run(["ninja", "-C", self._build, *PROGRAMS], stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, check=False).returncode == 0

    def verdict_of_tests(self, first=""):
        """Runs all programs, beginning with `first`, until one notices."""
        for program in sorted(self._programs, key=lambda path: path.name != first):
            shutil.rmtree(self._scratch, ignore_errors=True)
            self._scratch.mkdir()
            environment = {"TMPDIR": str(self._scratch), "PATH": "/usr/bin:/bin"}
            try:
                result = subprocess.run([program, "--gtest_brief=1", "--gtest_fail_fast=1"],
                                        cwd=self._scratch, env=environment,
                                        stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL, timeout=STUCK, check=False,
                                        preexec_fn=limit_processor_time)
            except subprocess.TimeoutExpired:
                return "killed: too long"
            if result.returncode == -signal.SIGXCPU:
                return "killed: too long"
            if result.returncode != 0:
                return f"killed: {program.name}"
        return "LIVES"

    def verdict_of(self, mutant):
        path = self.tree / mutant.file
        original = path.read_text()
        path.write_text(mutant.applied(original))
        try:
            if not self.builds():
                return "killed: does not compile"
            if self.is_same_code(mutant):
                return SAME
            return self.verdict_of_tests(NEAREST[mutant.file.split("/", 1)[0]])
        finally:
            path.write_text(original)


def explanations():
    file = pathlib.Path(__file__).with_name("living.txt")
    lines = file.read_text().splitlines() if file.exists() else []
    return dict(line.split("\t", 1) for line in lines if line and not line.startswith("#"))


def verdicts(drawn, workshops):
    """Tries mutants in whichever workshop is free; yields verdicts in the mutants' order."""
    free = queue.SimpleQueue()
    for workshop in workshops:
        free.put(workshop)

    def verdict_of(mutant):
        workshop = free.get()
        try:
            return workshop.verdict_of(mutant)
        finally:
            free.put(workshop)

    with concurrent.futures.ThreadPoolExecutor(len(workshops)) as pool:
        ahead = collections.deque()
        for mutant in drawn:
            ahead.append(pool.submit(verdict_of, mutant))
            if len(ahead) > len(workshops):
                yield ahead.popleft().result()
        while ahead:
            yield ahead.popleft().result()


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--count", type=int, default=300, help="how many mutants (300)")
    parser.add_argument("--seed", type=int, default=1, help="which ones (1)")
    parser.add_argument("--only", default="", help="only in files whose path contains this")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(),
                        help="how many at a time (one for each processor)")
    parser.add_argument("--folder", type=pathlib.Path, default=ROOT / "build/mutation",
                        help="where copy and build go (build/mutation)")
    return parser.parse_args()


def main():
    options = arguments()
    workshops = [Workshop(options.folder / str(number)) for number in range(options.jobs)]
    start = time.monotonic()
    if workshops[0].verdict_of_tests() != "LIVES":
        sys.exit("the tests fail without any change")
    print(f"the tests take {time.monotonic() - start:.1f} s", flush=True)

    tree = workshops[0].tree
    files = [path for folder in SOURCES for path in sorted((tree / folder).glob("*.cpp"))
             if options.only in str(path.relative_to(tree))]
    everything = [mutant for path in files
                  for mutant in mutants_of(str(path.relative_to(tree)), path.read_text())]
    drawn = random.Random(options.seed).sample(everything, len(everything))
    explained, counts, unexplained = explanations(), collections.Counter(), []
    tried = 0
    for mutant, verdict in zip(drawn, verdicts(drawn, workshops)):
        if tried == options.count:
            break
        tried += verdict != SAME
        if verdict == "LIVES" and mutant.key() in explained:
            verdict = "lives, explained"
        elif verdict == "LIVES":
            unexplained.append(mutant)
        counts[verdict] += 1
        print(f"{tried:4} {verdict:26} line {mutant.line:3} {mutant.key()}", flush=True)

    print(f"\n{tried} of {len(everything)} mutants, seed {options.seed}:")
    for verdict, count in counts.most_common():
        print(f"  {count:5}  {verdict}")
    killed = sum(count for verdict, count in counts.items() if verdict.startswith("killed"))
    print(f"{100 * killed / tried:.1f} % killed, {len(unexplained)} live without a reason")
    return 1 if unexplained or killed < 0.95 * tried else 0


if __name__ == "__main__":
    sys.exit(main())
