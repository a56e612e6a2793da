#!/usr/bin/env bash
# run_fuzzer.sh BINARY TARGET_DIR: fuzzes for $FUZZ_SECONDS (default 20) from
# the target's seed corpus and regressions, without writing into the tree.
# A crash leaves its input in the printed folder: copy it into regressions/.
set -euo pipefail
bin=$1
dir=$2
seconds=${FUZZ_SECONDS:-20}
work=$(mktemp -d /tmp/orvane-fuzz-XXXXXX)
mkdir -p "$work/corpus" "$work/artifacts"
cp -r "$dir/corpus/." "$work/corpus/" 2>/dev/null || true
rm -f "$work/corpus/.gitkeep"
set +e
"$bin" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
  -artifact_prefix="$work/artifacts/" "$work/corpus" "$dir/regressions" 2>"$work/log"
status=$?
set -e
tail -n 15 "$work/log"
if [ $status -ne 0 ]; then
  echo "fuzzer failed (exit $status); crashing inputs kept in $work/artifacts" >&2
  exit $status
fi
rm -rf "$work"
