#!/usr/bin/env bash
# The Debian package as a user gets it: built from the build tree, checked by
# lintian and the desktop's validators, unpacked into a private root, and its
# program delivering a shot to its own stand-in simulator.
# Usage: package_test.sh <CPackConfig.cmake>
set -euo pipefail

# Polls file $1 (at most 60 s) for a line matching $2 and prints it.
wait_for_line() {
  for _ in $(seq 600); do grep -m1 -E "$2" "$1" && return 0; sleep 0.1; done
  cat "$1" >&2
  return 1
}

if [ "$1" = --run ]; then  # the unpacked program and simulator on address $4
  root=$2 dir=$3
  ip link set lo up 2> /dev/null || true
  printf '[E6]\nHost=%s\n' "$4" > "$dir/config/Orvane X/settings.ini"
  "$root/usr/bin/trusim-emulator" --bind "$4" > "$dir/sim.txt" 2>&1 &
  sim=$!
  (cd "$dir" && exec env -u DISPLAY -u WAYLAND_DISPLAY HOME="$dir" XDG_CONFIG_HOME="$dir/config" \
     XDG_RUNTIME_DIR="$dir" "$root/usr/bin/OrvaneWin" -demo -console -debug > "$dir/app.txt" 2>&1) &
  app=$!
  trap 'kill $app $sim 2> /dev/null; wait' EXIT
  read -r club back side < <(wait_for_line "$dir/sim.txt" '^Shot 1: ' |
    sed -E 's/^Shot 1: ([^,]+),.* back spin (-?[0-9]+), side spin (-?[0-9]+)$/\1 \2 \3/')
  # The shot the simulator got is the one the program reports, and the
  # string tables were found from the program's own location.
  wait_for_line "$dir/app.txt" "^Shot 1: $club: ball speed .*, back spin $back, side spin $side, "
  ! grep -F "strings.tsv" "$dir/app.txt"
  exit
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cpack -G DEB --config "$1" -B "$work/out" > "$work/cpack.txt" || { cat "$work/cpack.txt"; exit 1; }
deb=$(ls "$work"/out/*.deb)
lintian --fail-on error "$deb"
dpkg-deb -x "$deb" "$work/root"
desktop-file-validate "$work"/root/usr/share/applications/*.desktop
appstreamcli validate --no-net "$work"/root/usr/share/metainfo/*.metainfo.xml
"$work/root/usr/bin/OrvaneWin" --version | grep -x "Orvane X [0-9.]*"
"$work/root/usr/bin/OrvaneWin" --help | grep -q -- "-debug_file"

# Port 2483 is fixed: a private network, where the system allows one, keeps
# other simulators on this machine out of the way.
mkdir -m 700 "$work/run" && mkdir -p "$work/run/config/Orvane X"
run=("$0" --run "$work/root" "$work/run" "127.$((RANDOM % 200 + 20)).$((RANDOM % 250 + 1)).7")
if unshare -rn true 2> /dev/null; then unshare -rn "${run[@]}"; else "${run[@]}"; fi
