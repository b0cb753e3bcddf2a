#!/bin/sh
# Installs what is missing, builds Vantrel and starts it (it stays resident; Shift+Ctrl+2 captures).
set -eu
cd "$(dirname "$0")/.."
sh scripts/deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j2 --target Vantrel
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  # No desktop here (a bare server): give Vantrel a virtual screen so it can still run.
  echo "run.sh: no display; starting a virtual one (Xvfb :99)" >&2
  Xvfb :99 -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 &
  export DISPLAY=:99
  sleep 1
fi
exec build/Vantrel.app/Contents/MacOS/Vantrel
