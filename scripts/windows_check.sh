#!/usr/bin/env bash
# windows_check.sh LINUX_VKLCHECK: builds the core, vklcheck.exe and the core tests for Windows
# with MinGW-w64 and runs them under Wine: the core tests, then vklcheck.exe against the Linux
# vklcheck on the same files (tests/windows/agreement.py). No display is needed.
set -euo pipefail
cd "$(dirname "$0")/.."
linux_vklcheck=$(realpath "$1")
build=build/windows

bash scripts/build.sh "$build" -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-x86_64.cmake \
    -DCMAKE_BUILD_TYPE=Debug -DVKL_GUI=OFF -DVKL_BENCH=OFF -DVKL_WERROR=ON

# A Wine prefix of the build's own, made without questions: no Mono or Gecko installers, no
# display, no debug chatter. UTF-8 locale: Wine passes arguments to Windows in UTF-16 from it.
export WINEPREFIX=$PWD/$build/wine WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" LC_ALL=C.UTF-8
unset DISPLAY WAYLAND_DISPLAY
mkdir -p "$WINEPREFIX"
# One server for all runs below, gone a minute after the last (already up: status 2).
wineserver -p 60 || (($? == 2))
trap 'wineserver -k >/dev/null 2>&1 || true' EXIT
if [[ ! -f $WINEPREFIX/system.reg ]]; then
    echo "windows: creating the Wine prefix $WINEPREFIX"
    wineboot --init >/dev/null 2>&1
fi

echo "windows: core tests (vkl_core_tests.exe under Wine)"
log=$build/core-tests.log
if ! wine "$build/tests/vkl_core_tests.exe" --gtest_brief=1 >"$log" 2>&1; then
    cat "$log"
    exit 1
fi
grep -E '^\[(==========|  PASSED  |  FAILED  )\]' "$log"

echo "windows: vklcheck.exe against the Linux vklcheck"
python3 tests/windows/agreement.py "$linux_vklcheck" "$build/src/vklcheck.exe" tests/data
