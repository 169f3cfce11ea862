#!/usr/bin/env bash
# Draws the pictures in docs/images anew: the views of the library, as the example rgbdFrame shows them.
#
# usage: scripts/screenshots.sh FOLDER
#   FOLDER   holds the recorded frame: five_people_color.png and five_people_depth_mm.png
set -euo pipefail

say() { printf 'screenshots: %s\n' "$*"; }
fail() { say "$*" >&2; exit 1; }

case ${1:-} in
    -h | --help) sed -n '/^# usage/,/^[^#]/s/^# //p' "${BASH_SOURCE[0]}"; exit 0 ;;
esac
if (($# != 1)) || [[ $1 == -* ]]; then
    printf 'screenshots: give the folder of the recorded frame (usage: scripts/screenshots.sh FOLDER)\n' >&2
    exit 2
fi
frame=()
for name in five_people_color.png five_people_depth_mm.png; do
    [[ -r $1/$name ]] || fail "there is no $1/$name"
    frame+=("$(realpath "$1/$name")")
done

cd "$(dirname "${BASH_SOURCE[0]}")/.."
images=docs/images
largest=150000 # bytes of a picture
export QT_QPA_PLATFORM=offscreen

scripts/setup.sh

say "building rgbdFrame in build"
cmake --preset release -DKEL_BUILD_TESTS=ON </dev/null || fail "the configuration failed: see the lines above"
cmake --build --preset release --target rgbdFrame </dev/null || fail "the build failed: see the lines above"

# draw OPTIONS...: draws the frame; what the plane fit prints is not wanted here.
draw() { build/bin/rgbdFrame "${frame[@]}" "$@" </dev/null >/dev/null || fail "the picture could not be drawn"; }

mkdir -p "$images"
draw --keys GPZA --out "$images/view-rgbd.png" --small
# Smaller letters than a screen's, or the labels of people side by side would cover one another.
QT_FONT_DPI=62 draw --keys DIE --out "$images/view-rgbd-depth.png"
draw --timeline "$images/view-timeline.png"

for picture in "$images"/view-*.png; do
    size=$(stat -c %s "$picture")
    say "$picture: $size bytes"
    ((size <= largest)) || fail "$picture is larger than $largest bytes"
done
