#!/usr/bin/env python3
"""Prints the include graph between the program's folders and fails on an include that runs
upward or sideways. Each folder is a layer with a rank; a file may include its own folder's
headers and those of folders of a lower rank, nothing else.
  python3 scripts/check-layers.py [--graph]"""

import os
import re
import sys
from collections import Counter

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
# Lowest first. Folders of one rank are peers and do not include each other.
RANKS = {
    "platform/core": 0,
    "platform/files": 1, "platform/display": 1, "platform/system": 1, "platform/portal": 1,
    "platform/store": 2, "platform/hotkeys": 2,
    "platform/desktop": 3,
    "platform/framework": 4,
    "prefs": 5, "capture": 5, "recent": 5, "output/export": 5,
    "editor": 6, "output": 6,
    "app": 7,
}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"')


def layer_of(path):
    """The deepest layer folder that holds the path, or None."""
    best = None
    for layer in RANKS:
        if path.startswith(layer + "/") and (best is None or len(layer) > len(best)):
            best = layer
    return best


def main():
    edges, bad, stray = Counter(), [], []
    for folder, _, files in os.walk(ROOT):
        rel_folder = os.path.relpath(folder, ROOT)
        if rel_folder.split(os.sep)[0] in (".git", "tests", "bench", "tools") or rel_folder.startswith("build"):
            continue
        for name in files:
            if not name.endswith((".h", ".cpp")):
                continue
            rel = os.path.join(rel_folder, name).replace(os.sep, "/")
            source = layer_of(rel)
            if source is None:
                stray.append(rel)
                continue
            for n, line in enumerate(open(os.path.join(folder, name), encoding="utf-8"), 1):
                m = INCLUDE.match(line)
                target = m and layer_of(m.group(1))
                if not target or target == source:
                    continue
                edges[(source, target)] += 1
                if RANKS[target] >= RANKS[source]:
                    bad.append(f"{rel}:{n}: {source} includes {m.group(1)} ({target} is not below it)")
    if "--graph" in sys.argv or bad:
        for (s, t), count in sorted(edges.items(), key=lambda e: (-RANKS[e[0][0]], e[0])):
            print(f"{s:20} -> {t:20} {count:3}")
    for line in stray:
        print(f"{line}: in no layer folder")
    for line in bad:
        print(line)
    if bad or stray:
        sys.exit(f"{len(bad) + len(stray)} include(s) against the layers")
    print(f"layers: {sum(edges.values())} includes between {len(RANKS)} folders, none upward")


if __name__ == "__main__":
    main()
