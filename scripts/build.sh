#!/usr/bin/env bash
# build.sh DIR [cmake options...]: configures (once) and builds one build tree with Ninja.
set -euo pipefail
dir=$1
shift
cmake -S "$(dirname "$0")/.." -B "$dir" -G Ninja "$@" >/dev/null
cmake --build "$dir" -j "$(nproc)"
