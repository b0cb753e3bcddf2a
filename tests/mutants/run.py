#!/usr/bin/env python3
"""Applies each mutant of mutants.txt to a copy of the tree, builds the unit tests and runs
them; prints each mutant's fate and the count killed. Slow (a build per mutant): run by hand,
  python3 tests/mutants/run.py [--keep BUILD_DIR] [N ...]
Exit status 0 when every mutant listed is killed."""

import filecmp
import os
import shutil
import signal
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
SOURCE = os.path.dirname(os.path.dirname(HERE))


def mutants():
    out = []
    for line in open(os.path.join(HERE, "mutants.txt"), encoding="utf-8"):
        if line.strip() and not line.startswith("#"):
            path, change = line.rstrip("\n").split(": ", 1)
            out.append((path, *change.split(" → ")))
    return out


def sh(argv, cwd, env=None):
    return subprocess.run(argv, cwd=cwd, env=env, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)


def main():
    args = sys.argv[1:]
    work = args.pop(args.index("--keep") + 1) if "--keep" in args else tempfile.mkdtemp(prefix="vantrel-mutants-")
    args = [a for a in args if a != "--keep"]
    tree, build = os.path.join(work, "src"), os.path.join(work, "build")
    # A kept copy is brought up to date file by file (new times, so the build sees them).
    for root, dirs, files in os.walk(SOURCE):
        dirs[:] = [d for d in dirs if not d.startswith("build") and d != ".git"]
        for f in files:
            src = os.path.join(root, f)
            dst = os.path.join(tree, os.path.relpath(src, SOURCE))
            if not os.path.exists(dst) or not filecmp.cmp(src, dst, shallow=False):
                os.makedirs(os.path.dirname(dst), exist_ok=True)
                shutil.copy(src, dst)
    # Stopped half-way, the mutated file is put back all the same.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(2))
    env = dict(os.environ, QT_QPA_PLATFORM="offscreen")
    if sh(["cmake", "-S", tree, "-B", build, "-DCMAKE_BUILD_TYPE=Debug"], tree).returncode:
        sys.exit("cmake failed")
    listed = mutants()
    chosen = [int(a) for a in args] or range(1, len(listed) + 1)
    build_all = ["cmake", "--build", build, "-j2"]
    if sh(build_all, tree).returncode:
        sys.exit("the unmutated tree does not build")
    killed, failed = 0, []
    for n in chosen:
        path, old, new = listed[n - 1]
        file = os.path.join(tree, path)
        text = open(file).read()
        if text.count(old) != 1:
            print(f"{n:3} {path}: text not found once: {old}")
            failed.append(n)
            continue
        open(file, "w").write(text.replace(old, new))
        try:
            if sh(build_all, tree).returncode:
                fate = "does not build"
                failed.append(n)
            else:
                r = sh(["ctest", "-LE", "e2e", "--stop-on-failure"], build, env)
                fate = "killed" if r.returncode else "SURVIVED"
                killed += r.returncode != 0
                if not r.returncode:
                    failed.append(n)
        finally:
            open(file, "w").write(text)
        print(f"{n:3} {fate:14} {path}: {new.strip()}", flush=True)
    sh(build_all, tree)
    print(f"{killed} of {len(chosen)} mutants killed")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
