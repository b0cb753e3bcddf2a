#!/usr/bin/env python3
"""Applies each mutant of mutants.txt to a copy of the tree, builds, runs the unit tests; prints
each mutant's fate and the count killed. Slow (a build per mutant), so outside ctest:
  python3 tests/mutants/run.py [--keep WORK_DIR] [N ...]   (a kept WORK_DIR builds faster next time)
Exit status 0 when every mutant chosen is killed."""

import os
import shutil
import signal
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
SOURCE = os.path.dirname(os.path.dirname(HERE))


def sh(argv, cwd, env=None):
    return subprocess.run(argv, cwd=cwd, env=env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode


def main():
    args = sys.argv[1:]
    work = args.pop(args.index("--keep") + 1) if "--keep" in args else tempfile.mkdtemp(prefix="vantrel-mutants-")
    chosen = [int(a) for a in args if a != "--keep"]
    tree, build = os.path.join(work, "src"), os.path.join(work, "build")
    # copy2 keeps times: the build of a kept copy redoes only what changed.
    shutil.copytree(SOURCE, tree, ignore=shutil.ignore_patterns("build*", ".git"), dirs_exist_ok=True)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(2))  # stopped, the mutated file is put back all the same
    build_all = ["cmake", "--build", build, "-j2"]
    if sh(["cmake", "-S", tree, "-B", build, "-DCMAKE_BUILD_TYPE=Debug"], tree) or sh(build_all, tree):
        sys.exit("the unmutated tree does not build")
    listed = [line.rstrip("\n").split(": ", 1) for line in open(os.path.join(HERE, "mutants.txt"), encoding="utf-8")
              if line.strip() and not line.startswith("#")]
    killed = 0
    for n in chosen or range(1, len(listed) + 1):
        path, (old, new) = listed[n - 1][0], listed[n - 1][1].split(" → ")
        file = os.path.join(tree, path)
        text = open(file).read()
        if text.count(old) != 1:
            fate = "not found once"
        else:
            open(file, "w").write(text.replace(old, new))
            try:
                fate = ("does not build" if sh(build_all, tree) else
                        "killed" if sh(["ctest", "-LE", "e2e", "--stop-on-failure"], build,
                                       dict(os.environ, QT_QPA_PLATFORM="offscreen")) else "SURVIVED")
            finally:
                open(file, "w").write(text)
        killed += fate == "killed"
        print(f"{n:3} {fate:14} {path}: {new.strip()}", flush=True)
    sh(build_all, tree)
    print(f"{killed} of {len(chosen or listed)} mutants killed")
    sys.exit(0 if killed == len(chosen or listed) else 1)


if __name__ == "__main__":
    main()
