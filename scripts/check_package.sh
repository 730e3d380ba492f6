#!/usr/bin/env bash
# check_package.sh DEB VERSION: unpacks the Debian package into a scratch root and checks what a
# user gets: the files, the dependencies, both programs as installed, the desktop entry and its
# launcher, the AppStream data, the file type and the manual pages.
set -euo pipefail
deb=$1
version=$2
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
fail() {
    echo "package: $*" >&2
    exit 1
}

dpkg-deb -x "$deb" "$root"
echo "package: $(basename "$deb"), $(dpkg-deb -c "$deb" | grep -vc '/$') files"
depends=$(dpkg-deb -f "$deb" Depends)
for lib in libc6 libstdc++6 libqt6widgets6; do
    [[ $depends == *"$lib ("* ]] || fail "Depends lacks $lib: $depends"
done
for field in Maintainer Section Description; do
    [[ -n $(dpkg-deb -f "$deb" "$field") ]] || fail "no $field"
done

share=$root/usr/share
app=com.loomvault.vkleditor
for f in usr/bin/vkleditor usr/bin/vklcheck usr/libexec/vkleditor/vkleditor-desktop \
    usr/share/man/man1/vkleditor.1.gz usr/share/man/man1/vklcheck.1.gz \
    "usr/share/applications/$app.desktop" "usr/share/metainfo/$app.metainfo.xml" \
    usr/share/mime/packages/vkleditor.xml \
    usr/share/icons/hicolor/scalable/apps/vkleditor.svg \
    usr/share/icons/hicolor/48x48/apps/vkleditor.png \
    usr/share/icons/hicolor/scalable/mimetypes/text-x-vkl-menu.svg \
    usr/share/vkleditor/examples/drilling.vkl usr/share/vkleditor/examples/bitmaps/holes.bmp; do
    [[ -f $root/$f ]] || fail "missing /$f"
done

# The programs as installed: versions, and vklcheck on the installed examples.
[[ $("$root/usr/bin/vklcheck" --version) == "vklcheck $version" ]] || fail "vklcheck --version"
# No display and no Qt platform: --version must not start the window, nor take the lock.
mkdir -m 700 "$root/run"
out=$(env -u DISPLAY -u WAYLAND_DISPLAY QT_QPA_PLATFORM=none XDG_RUNTIME_DIR="$root/run" \
    "$root/usr/bin/vkleditor" --version)
[[ $out == "vkleditor $version" ]] || fail "vkleditor --version gave '$out'"
[[ -z $(ls -A "$root/run") ]] || fail "vkleditor --version took the single-instance lock"
examples=$share/vkleditor/examples
# Each reads without a loss and survives saving (no third SHORTCUT line after a save).
expected=("drilling.vkl: 15 rows, 4 submenus, 1 SHORTCUT pair, 0 skipped lines"
    "werkstatt.vkl: 6 rows, 2 submenus, 1 SHORTCUT pair, 0 skipped lines"
    "fixtures.vkl: 5 rows, 1 submenu, 1 SHORTCUT pair, 0 skipped lines")
for line in "${expected[@]}"; do
    name=${line%%:*}
    got=$(cd "$examples" && "$root/usr/bin/vklcheck" "$name") || fail "vklcheck $name failed"
    [[ $got == "$line" ]] || fail "vklcheck $name: '$got'"
done
"$root/usr/bin/vklcheck" --json "$examples/werkstatt.vkl" | grep -q '"Text2": *"Werkstatt"' ||
    fail "vklcheck --json on werkstatt.vkl"

# The launcher passes the three fields; the language follows LC_ALL, LC_MESSAGES, LANG.
launcher=$root/usr/libexec/vkleditor/vkleditor-desktop
grep -q 'exec "/usr/bin/vkleditor" "desktop|/usr/share/vkleditor|' "$launcher" ||
    fail "launcher does not start /usr/bin/vkleditor with the data folder"
sed 's|exec "/usr/bin/vkleditor"|printf "%s\\n"|' "$launcher" >"$root/launcher"
lang_of() { env -i "$@" sh "$root/launcher"; }
[[ $(lang_of LANG=de_DE.UTF-8) == "desktop|/usr/share/vkleditor|2" ]] || fail "German LANG"
[[ $(lang_of LANG=de_CH.UTF-8 LC_ALL=en_GB.UTF-8) == *"|1" ]] || fail "LC_ALL wins over LANG"
[[ $(lang_of LANG=en_US.UTF-8 LC_MESSAGES=de_AT.UTF-8) == *"|2" ]] || fail "LC_MESSAGES"
[[ $(lang_of LANG=fr_FR.UTF-8) == *"|1" ]] || fail "French is English"
[[ $(lang_of) == *"|1" ]] || fail "no locale is English"

desktop-file-validate "$share/applications/$app.desktop"
grep -q "^Exec=/usr/libexec/vkleditor/vkleditor-desktop$" "$share/applications/$app.desktop" ||
    fail "desktop entry does not start the launcher"
appstreamcli validate --no-net --pedantic "$share/metainfo/$app.metainfo.xml"
grep -q "<release version=\"$version\"" "$share/metainfo/$app.metainfo.xml" ||
    fail "metainfo has no release $version"

# The file type: valid shared-mime-info, and *.vkl maps to it with its icon.
mkdir -p "$root/mime/packages"
cp "$share/mime/packages/vkleditor.xml" "$root/mime/packages/"
update-mime-database "$root/mime" 2>/dev/null
grep -q '^text/x-vkl-menu:\*\.vkl$' "$root/mime/globs" || fail "no glob *.vkl"
grep -q '^text/x-vkl-menu:text-x-vkl-menu$' "$root/mime/icons" || fail "no icon for the type"

for page in vkleditor vklcheck; do
    warnings=$(zcat "$share/man/man1/$page.1.gz" | groff -man -ww -z -Tutf8 2>&1)
    [[ -z $warnings ]] || fail "$page.1: $warnings"
    zcat "$share/man/man1/$page.1.gz" | grep -q "VKL Editor $version" || fail "$page.1 version"
done
echo "package: contents, programs, launcher, desktop entry, metainfo, file type and manual pages OK"
