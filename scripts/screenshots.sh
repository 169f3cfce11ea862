#!/usr/bin/env bash
# Draws the pictures in docs/images anew: the views of the library, as the example rgbdFrame shows them.
#
# usage: scripts/screenshots.sh FOLDER
#   FOLDER   holds the recorded frame: five_people_color.png and five_people_depth_mm.png
source "$(dirname "$(realpath "${BASH_SOURCE[0]}")")/common.sh"

case ${1:-} in
    -h | --help) usage; exit 0 ;;
    -*) misused "unknown option $1" ;;
esac
(($# == 1)) || misused "give the folder of the recorded frame"
frame=()
for name in five_people_color.png five_people_depth_mm.png; do
    [[ -r $1/$name ]] || fail "there is no $1/$name"
    frame+=("$(realpath "$1/$name")")
done

cd "$top"
images=docs/images
largest=150000 # bytes of a picture
export QT_QPA_PLATFORM=offscreen

scripts/setup.sh

build release rgbdFrame

# draw OPTIONS...: draws the frame; what the plane fit prints is not wanted here.
draw() { build/bin/rgbdFrame "${frame[@]}" "$@" >/dev/null || fail "the picture could not be drawn"; }

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
