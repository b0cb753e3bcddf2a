#!/bin/sh
# Every C++ source as the project's .clang-format writes it; names the files that differ.
#   sh scripts/check-format.sh        (clang-format -i FILE mends one)
set -eu
cd "$(dirname "$0")/.."
bad=$(git ls-files '*.cpp' '*.h' | while read -r f; do
  clang-format --dry-run -Werror "$f" >/dev/null 2>&1 || echo "$f"
done)
if [ -n "$bad" ]; then
  echo "not formatted as .clang-format says:" >&2
  echo "$bad" >&2
  exit 1
fi
echo "format: every source as .clang-format writes it"
