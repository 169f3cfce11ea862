#!/usr/bin/env bash
# Builds the programs, records a video of people walking across a road, and shows what was recorded. Run again, it
# installs, downloads and builds only what is left to do, and records anew.
#
# usage: scripts/demo.sh [--max-frames N] [--no-show] [VIDEO]
#   VIDEO            a video of your own; without it, vtest.avi out of Debian's package opencv-doc, which is
#                    downloaded once
#   --max-frames N   record the first N frames only
#   --no-show        show no live window; without a display, and with CI set, none is shown anyway
source "$(dirname "$(realpath "${BASH_SOURCE[0]}")")/common.sh"

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
        -h | --help) usage; exit 0 ;;
        -*) misused "unknown option $1" ;;
        *) [[ -z $video ]] || misused "more than one video"; video=$1 ;;
    esac
    shift
done
if [[ -n $video ]]; then
    [[ -f $video && -r $video ]] || fail "there is no video $video that can be read"
    video=$(realpath "$video")
fi

cd "$top"
demo=$top/build/demo
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
    (cd "$folder" && "${apt_get[@]}" download opencv-doc) || {
        ((EUID == 0)) && "${apt_get[@]}" update && (cd "$folder" && "${apt_get[@]}" download opencv-doc)
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

build release kelrecord kelreplay
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
    --render "$frames" --render-every 100 || fail "recording failed"

say "verifying $recording"
"$kelreplay" verify "$recording" || fail "the recording is not sound"
"$kelreplay" info "$recording" || fail "the recording could not be read"

frame=$(busiest_frame)
say "replaying frame $frame"
"$kelreplay" render "$recording" "$frame" "$replayed" --video "$video" \
    || fail "frame $frame could not be rendered"
"$kelreplay" render "$recording" "$frame" "$operator" --video "$video" --view rgbd "${scene[@]}" \
    || fail "frame $frame could not be rendered in the operator's view"

say "look at $replayed and $operator, the frames in $frames and the recording in $recording"
