#!/usr/bin/env bash
# What `make run` starts. Until the application exists: the command frames
# the program sends to the sensor, each with its name.
set -euo pipefail
cd "$(dirname "$0")/.."
exec ./build/default/bin/orv-frames "$@"
