#!/usr/bin/env bash
# Installs the Debian packages the editor needs to build, test and run, when any is missing.
set -euo pipefail
PACKAGES=(
    cmake ninja-build g++ pkg-config python3
    qt6-base-dev nlohmann-json3-dev
    libgtest-dev libgmock-dev libbenchmark-dev
    clang clang-format libclang-rt-14-dev
    xvfb xauth imagemagick fonts-dejavu-core xdotool
    dpkg-dev desktop-file-utils appstream shared-mime-info groff-base
    g++-mingw-w64-x86-64-posix googletest wine wine64
)
missing=()
for p in "${PACKAGES[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done
if ((${#missing[@]} == 0)); then
    echo "deps: all ${#PACKAGES[@]} packages present"
    exit 0
fi
SUDO=""
if [[ $(id -u) -ne 0 ]]; then
    SUDO="sudo"
fi
echo "deps: installing ${missing[*]}"
$SUDO apt-get update -qq
DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
