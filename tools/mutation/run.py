"""Changes one thing at a time in the library and sees whether the tests notice.

Works on a copy of the tree, in FOLDER; the tree itself stays as it is. A mutant is killed when a
test fails, crashes or takes too long, and when it does not compile. What lives has to be explained
in living.txt beside this script, a line each: the mutant as this script prints it, a tab, the reason.
Mutants are drawn by seed, so that a run can be repeated.
"""
import argparse
import collections
import pathlib
import random
import shutil
import subprocess
import sys
import time

from mutants import mutants_of

ROOT = pathlib.Path(__file__).resolve().parents[2]
SOURCES = ["VUKSim/VUKSimRpm.m/src", "platform/VUKSimUtt/src"]
PROGRAMS = ["unit_tests", "replaced_platform_tests", "format_tests", "scenario_tests",
            "VUKSimUtt_test"]
TOO_LONG = 60  # seconds, for one test program; all of them take a few


def copy_tree(folder):
    tree = folder / "tree"
    shutil.rmtree(tree, ignore_errors=True)
    shutil.copytree(ROOT, tree, ignore=shutil.ignore_patterns("build", ".git", "__pycache__"))
    return tree


def configure(tree, build):
    subprocess.run(["cmake", "-S", tree, "-B", build, "-G", "Ninja", "-DCMAKE_CXX_COMPILER=g++",
                    "-DCMAKE_CXX_FLAGS=-O1 -D_GLIBCXX_ASSERTIONS",
                    "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON"], check=True, stdout=subprocess.DEVNULL)


def built(build):
    return subprocess.run(["ninja", "-C", build, *PROGRAMS], stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL, check=False).returncode == 0


def programs_in(build):
    found = [path for path in build.rglob("*") if path.name in PROGRAMS and path.is_file()]
    if len(found) != len(PROGRAMS):
        sys.exit(f"expected {PROGRAMS}, found {found}")
    return sorted(found, key=lambda path: PROGRAMS.index(path.name))


def verdict_of_tests(programs, scratch):
    for program in programs:
        shutil.rmtree(scratch, ignore_errors=True)
        scratch.mkdir()
        try:
            result = subprocess.run([program, "--gtest_brief=1", "--gtest_fail_fast=1"], cwd=scratch,
                                    env={"TMPDIR": str(scratch), "PATH": "/usr/bin:/bin"},
                                    stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                    stderr=subprocess.DEVNULL, timeout=TOO_LONG, check=False)
        except subprocess.TimeoutExpired:
            return "killed: too long"
        if result.returncode != 0:
            return f"killed: {program.name}"
    return "LIVES"


def explanations():
    file = pathlib.Path(__file__).with_name("living.txt")
    lines = file.read_text().splitlines() if file.exists() else []
    return dict(line.split("\t", 1) for line in lines if line and not line.startswith("#"))


def try_one(mutant, tree, build, programs, scratch):
    path = tree / mutant.file
    original = path.read_text()
    path.write_text(mutant.applied(original))
    try:
        if not built(build):
            return "killed: does not compile"
        return verdict_of_tests(programs, scratch)
    finally:
        path.write_text(original)


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--count", type=int, default=300, help="how many mutants (300)")
    parser.add_argument("--seed", type=int, default=1, help="which ones (1)")
    parser.add_argument("--only", default="", help="only in files whose path contains this")
    parser.add_argument("--folder", type=pathlib.Path, default=ROOT / "build/mutation",
                        help="where copy and build go (build/mutation)")
    return parser.parse_args()


def main():
    options = arguments()
    options.folder.mkdir(parents=True, exist_ok=True)
    tree, build = copy_tree(options.folder), options.folder / "build"
    configure(tree, build)
    if not built(build):
        sys.exit("the tree does not build as it is")
    programs, scratch = programs_in(build), options.folder / "scratch"
    start = time.monotonic()
    if verdict_of_tests(programs, scratch) != "LIVES":
        sys.exit("the tests fail without any change")
    print(f"the tests take {time.monotonic() - start:.1f} s", flush=True)

    files = [path for folder in SOURCES for path in sorted((tree / folder).glob("*.cpp"))
             if options.only in str(path.relative_to(tree))]
    everything = [mutant for path in files
                  for mutant in mutants_of(str(path.relative_to(tree)), path.read_text())]
    chosen = random.Random(options.seed).sample(everything, min(options.count, len(everything)))
    explained, counts, unexplained = explanations(), collections.Counter(), []
    for number, mutant in enumerate(chosen, 1):
        verdict = try_one(mutant, tree, build, programs, scratch)
        if verdict == "LIVES" and mutant.key() in explained:
            verdict = "lives, explained"
        elif verdict == "LIVES":
            unexplained.append(mutant)
        counts[verdict] += 1
        print(f"{number:4} {verdict:26} line {mutant.line:3} {mutant.key()}", flush=True)

    print(f"\n{len(chosen)} of {len(everything)} mutants, seed {options.seed}:")
    for verdict, count in counts.most_common():
        print(f"  {count:5}  {verdict}")
    killed = sum(count for verdict, count in counts.items() if verdict.startswith("killed"))
    print(f"{100 * killed / len(chosen):.1f} % killed, {len(unexplained)} live without a reason")
    return 1 if unexplained or killed < 0.95 * len(chosen) else 0


if __name__ == "__main__":
    sys.exit(main())
