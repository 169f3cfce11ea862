#!/usr/bin/env bash
# Builds the programs, records a video of people walking across a road, and shows what was recorded.
#
# usage: scripts/demo.sh [--max-frames N] [--no-show] [VIDEO]
#   VIDEO            a video of your own; without it, vtest.avi out of Debian's package opencv-doc, which is
#                    downloaded once
#   --max-frames N   record the first N frames only
#   --no-show        show no live window; without a display, and with CI set, none is shown anyway
set -euo pipefail

say() { printf 'demo: %s\n' "$*"; }
fail() { say "$*" >&2; exit 1; }
misused() { printf 'demo: %s (usage: scripts/demo.sh [--max-frames N] [--no-show] [VIDEO])\n' "$*" >&2; exit 2; }

show=yes
limit=()
video=
while (($#)); do
    case $1 in
        --max-frames)
            [[ ${2:-} =~ ^[1-9][0-9]*$ ]] || misused "--max-frames needs a number"
            limit=(--max-frames "$2")
            shift
            ;;
        --no-show) show=no ;;
        -h | --help) sed -n '/^# usage/,/^[^#]/s/^# //p' "${BASH_SOURCE[0]}"; exit 0 ;;
        -*) misused "unknown option $1" ;;
        *) [[ -z $video ]] || misused "more than one video"; video=$1 ;;
    esac
    shift
done
if [[ -n $video ]]; then
    [[ -r $video ]] || fail "there is no video $video"
    video=$(realpath "$video")
fi

cd "$(dirname "${BASH_SOURCE[0]}")/.."
demo=$PWD/build/demo
recording=$demo/recording
frames=$demo/frames
replayed=$demo/replayed.png
operator=$demo/operator.png

# Takes vtest.avi out of the package without unpacking the rest of it.
fetch_video() {
    local folder=$demo/download member=./usr/share/doc/opencv-doc/examples/data/vtest.avi
    local apt_get=(apt-get -q -o APT::Sandbox::User=root -o Acquire::Retries=3)
    say "fetching vtest.avi: Debian's package opencv-doc, about 100 MB, is downloaded for it"
    rm -rf "$folder"
    mkdir -p "$folder"
    (cd "$folder" && "${apt_get[@]}" download opencv-doc </dev/null) || {
        ((EUID == 0)) && "${apt_get[@]}" update </dev/null \
            && (cd "$folder" && "${apt_get[@]}" download opencv-doc </dev/null)
    } || fail "opencv-doc could not be downloaded; give a video of your own: scripts/demo.sh VIDEO"
    dpkg-deb --fsys-tarfile "$folder"/opencv-doc_*.deb | tar -xO "$member" >"$folder/vtest.avi" \
        || fail "opencv-doc holds no vtest.avi; give a video of your own: scripts/demo.sh VIDEO"
    mv "$folder/vtest.avi" "$video"
    rm -rf "$folder"
}

# The frame with the most blobs; the last one where there are none.
busiest_frame() {
    awk -F'"' '/<Frame /{ frame = $2; blobs = 0; if (most == 0) best = frame }
               /dataType="kelDataBlob"/{ if (++blobs > most) { most = blobs; best = frame } }
               END { print best }' "$recording/dataflow.xml"
}

scripts/setup.sh

say "building the programs in build"
cmake --preset release </dev/null || fail "the configuration failed: see the lines above"
cmake --build --preset release --target kelrecord kelreplay </dev/null \
    || fail "the build failed: see the lines above"
kelrecord=build/bin/kelrecord
kelreplay=build/bin/kelreplay

mkdir -p "$demo"
settings=()
scene=()
if [[ -z $video ]]; then
    # The file names no date, and the people in it are small. Its camera is known.
    scene=(--keys Z --calibration examples/data/vtest_camera.yml --context examples/data/vtest_context.yml)
    settings=(--fps 7 --start 2009-01-01T00:00:00Z --min-area 300 --min-dimension 15)
    video=$demo/vtest.avi
    [[ -s $video ]] || fetch_video
fi

live=()
if [[ $show == yes && -z ${CI:-} && -n ${DISPLAY:-}${WAYLAND_DISPLAY:-} ]]; then
    live=(--show)
fi

say "recording $video"
rm -rf "$frames" "$replayed" "$operator"
mkdir -p "$frames"
"$kelrecord" "$video" --out "$recording" --overwrite "${settings[@]}" "${limit[@]}" "${live[@]}" \
    --render "$frames" --render-every 100 </dev/null || fail "recording failed"

say "verifying $recording"
"$kelreplay" verify "$recording" </dev/null || fail "the recording is not sound"
"$kelreplay" info "$recording" </dev/null || fail "the recording could not be read"

frame=$(busiest_frame)
say "replaying frame $frame"
"$kelreplay" render "$recording" "$frame" "$replayed" --video "$video" </dev/null \
    || fail "frame $frame could not be rendered"
"$kelreplay" render "$recording" "$frame" "$operator" --video "$video" --view rgbd "${scene[@]}" </dev/null \
    || fail "frame $frame could not be rendered in the operator's view"

say "look at $replayed and $operator, the frames in $frames and the recording in $recording"
