#!/usr/bin/env bash
# Installs what is missing, builds the editor and starts it. The host application passes
# three "|"-separated fields; by hand we pass "vkleditor|<install dir>|<language>".
# Without a display the editor starts under Xvfb, a screenshot is saved and the run ends.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
bash scripts/build.sh build/release -DCMAKE_BUILD_TYPE=Release -DVKL_TESTS=OFF -DVKL_BENCH=OFF
# The Open dialog starts in the folder the last-folder file names (ZOVDEF2.txt, one line): when
# there is none yet, it names examples/, so a newcomer's first Open lands on the examples.
state=${XDG_CACHE_HOME:-$HOME/.cache}/vkleditor
if [[ ! -e $state/ZOVDEF2.txt ]]; then
    mkdir -p -m 700 "$state"
    printf '"%s/"\r\n' "$PWD/examples" >"$state/ZOVDEF2.txt"
fi
lang=${VKL_LANG:-1}
args=("vkleditor|$PWD|$lang")
if [[ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]]; then
    exec build/release/src/vkleditor "${args[@]}"
fi
shot=$PWD/build/vkleditor-screenshot.png
echo "run: no display; starting the editor under Xvfb for 4 seconds"
xvfb-run -a -s "-screen 0 1600x1000x24" bash -c '
    "$1" "$2" & pid=$!
    sleep 4
    import -window root "$3"
    kill $pid 2>/dev/null || true
    wait $pid 2>/dev/null || true
' _ "$PWD/build/release/src/vkleditor" "${args[@]}" "$shot"
echo "run: the editor came up; screenshot saved to $shot"
