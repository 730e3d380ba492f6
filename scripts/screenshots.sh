#!/usr/bin/env bash
# Makes the PNGs in docs/screenshots/ under Xvfb (no display of yours is touched): the window
# with examples/drilling.vkl open, the pop-up menu of a submenu in the tree, and the preview
# window of a submenu bitmap. It drives the editor with xdotool at fixed positions of a
# 1600x1000 screen with the DejaVu fonts, as on a fresh Debian 12 machine; rerun it after the
# window changes and look at the pictures.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD

if [[ ${1:-} != --inside ]]; then
    bash scripts/deps.sh
    bash scripts/build.sh build/release -DCMAKE_BUILD_TYPE=Release
    mkdir -p docs/screenshots
    # A white screen behind the windows: there is no window manager to frame them.
    exec xvfb-run -a -s "-screen 0 1600x1000x24 -wr" bash "$0" --inside
fi

# A scratch home for the editor: its lock and last-folder file stay out of the user's own
# folders, and the Open dialog starts in examples/.
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export XDG_CACHE_HOME=$scratch/cache XDG_RUNTIME_DIR=$scratch/run
mkdir -p -m 700 "$XDG_CACHE_HOME/vkleditor" "$XDG_RUNTIME_DIR"
printf '"%s/"\r\n' "$root/examples" >"$XDG_CACHE_HOME/vkleditor/ZOVDEF2.txt"

shots=$root/docs/screenshots
build/release/src/vkleditor "vkleditor|$root|1" &
pid=$!
trap 'kill $pid 2>/dev/null || true; rm -rf "$scratch"' EXIT
w=$(xdotool search --sync --onlyvisible --name '^VKL Editor$' | head -1)
sleep 1

click() {  # click BUTTON X Y: positions inside the main window
    xdotool mousemove --window "$w" "$2" "$3" click "$1"
    sleep 1
}
# The main window's area of the screen, for shots that hold a pop-up too.
eval "$(xdotool getwindowgeometry --shell "$w")"
area="${WIDTH}x${HEIGHT}+${X}+${Y}"

click 1 18 18  # toolbar: open
xdotool type --delay 20 drilling.vkl
xdotool key Return
sleep 1.5
xdotool mousemove --window "$w" 700 650  # no hover highlight in the shot
import -window "$w" "$shots/main-window.png"

click 3 1174 237  # the submenu "Threads" in the tree: its pop-up menu
import -window root -crop "$area" +repage "$shots/popup-menu.png"
xdotool key Escape
sleep 0.5

click 1 1146 183  # the submenu "Holes": its bitmap in the preview window
preview=$(xdotool search --onlyvisible --name '.' | grep -v "^$w\$" | tail -1)
# Beside the main window, on the white screen.
xdotool windowmove "$preview" $((X + WIDTH + 24)) $((Y + 180))
sleep 0.5
import -window root -crop "1600x${HEIGHT}+0+${Y}" +repage "$shots/preview.png"
mogrify -strip "$shots"/*.png  # no capture dates: a rerun changes only what changed
echo "screenshots: $(ls "$shots")"
