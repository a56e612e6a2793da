#!/usr/bin/env bash
# What `make run` starts: the stand-in simulator on port 2483 and the program
# with the demo sensor, in a window, or on the console when there is no
# display. Extra arguments go to the program (e.g. -debug). Ctrl-C ends both.
set -uo pipefail
cd "$(dirname "$0")/.."
bin=./build/default/bin

args=(-demo)
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  args+=(-console)
fi

"$bin/trusim-emulator" --port 2483 > >(sed -u 's/^/[simulator] /') &
emulator=$!
trap 'kill "$emulator" 2>/dev/null; wait "$emulator" 2>/dev/null' EXIT

"$bin/OrvaneWin" "${args[@]}" "$@"
