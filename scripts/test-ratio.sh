#!/bin/sh
# Test lines against code lines, as the project's rule counts them: every file under tests/
# (C++, Python, shell, CMake) against the program's C++ sources and headers outside tests/ and
# bench/. The rule: tests are a quarter to a third of the code.
set -eu
cd "$(dirname "$0")/.."
code=$(git ls-files -- '*.cpp' '*.h' | grep -v -E '^(tests|bench)/' | xargs cat | wc -l)
tests=$(git ls-files -- 'tests/*' | xargs cat | wc -l)
echo "tests: $tests lines"
echo "code:  $code lines"
# Tenths of a percent, and the bounds exactly: at least a quarter, at most a third.
echo "ratio: $((tests * 100 / code)).$((tests * 1000 / code % 10)) % (the rule: a quarter to a third)"
if [ $((tests * 4)) -lt "$code" ] || [ $((tests * 3)) -gt "$code" ]; then echo "outside the rule"; else echo "within the rule"; fi
