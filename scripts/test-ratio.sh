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
echo "ratio: $((tests * 100 / code)) % (the rule: 25-33 %)"
