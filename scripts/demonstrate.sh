#!/usr/bin/env bash
# The main job without a display: opens the program on a show on a virtual display, uploads it to a simulated prop through the
# window, exports the same show, and leaves what came of it in out/. demonstrate.sh [PROJECT]
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/setup.sh
project=${1:-examples/sample.gsw3}
bin=$PWD/build/release/bin
out=$PWD/out

if [ -z "${GLOWSMITH_DEMONSTRATING:-}" ]; then
    export GLOWSMITH_DEMONSTRATING=1
    exec scripts/with-display.sh "$0" "$project"
fi

rm -rf "$out"
mkdir -p "$out/received" "$out/ports" "$out/home"
"$bin/glowsmith-prop" --once --out "$out/received" --link "$out/ports" >"$out/prop.log" 2>&1 &
prop=$!

# The demonstration neither reads nor writes the user's settings, and asks no server for updates.
export HOME=$out/home XDG_CONFIG_HOME=$out/home XDG_DATA_HOME=$out/home QT_LOGGING_RULES='*=false'
export GLOWSMITH_PORT_PATTERN=$out/ports/COM%1 GLOWSMITH_UPDATE_URL=http://127.0.0.1:9/version
"$bin/glowsmith" "$project" >"$out/program.log" 2>&1 &
program=$!
trap 'kill $prop $program 2>/dev/null || true; rm -rf "$out/home" "$out/ports" extemp.tmp extemp2.tmp' EXIT

# The main window is the one that is at least as wide as its smallest size.
main_window() {
    local window
    for window in $(xdotool search --onlyvisible --name . 2>/dev/null); do
        WIDTH=0
        eval "$(xdotool getwindowgeometry --shell "$window" 2>/dev/null)"
        [ "$WIDTH" -ge 1000 ] && echo "$window" && return 0
    done
    return 1
}

# wait_for SECONDS COMMAND...: tries until it succeeds.
wait_for() {
    local tries=$(($1 * 4))
    shift
    until "$@" >/dev/null 2>&1; do
        kill -0 "$program" 2>/dev/null || return 1
        tries=$((tries - 1))
        [ $tries -gt 0 ] || return 1
        sleep 0.25
    done
}

press_return_until_main() {
    main_window && return 0
    xdotool key Return
    sleep 0.7
    main_window
}

fail() {
    say "$1"
    cat "$out/program.log" "$out/prop.log" >&2 || true
    exit 1
}

say "Starting the program"
wait_for 30 xdotool search --onlyvisible --name . || fail "the start dialog did not appear"
# The start dialog, and before it the word that no update server could be reached, close by Return.
wait_for 40 press_return_until_main || fail "the main window did not appear"
window=$(main_window)
xdotool windowsize --sync "$window" 1300 885 || true
xdotool windowfocus "$window" || true
# The play-head goes into a pattern, so that the simulated prop has something to show.
xdotool mousemove --window "$window" 540 470 click 1 || true
sleep 2
import -window "$window" "$out/window.png"

say "Uploading through the window"
xdotool key ctrl+u
wait_for 60 test -s "$out/received/show-1.png" || fail "the simulated prop received nothing"
wait "$prop" || fail "the simulated prop found fault with what it received"

say "Exporting the same show"
"$bin/glowsmith-cli" export "$project" -o "$out/show.bin" >/dev/null || fail "the export failed"
"$bin/glowsmith-cli" show "$out/show.bin" -o "$out/show.png" >/dev/null || fail "the show cannot be drawn"

cat "$out/prop.log"
say "Done. In out/:"
cat <<TEXT
out/window.png              the window with the show
out/show.bin                the show as a file for the prop
out/show.png                what a prop will show of it
out/received/show-1.header  the bytes that the simulated prop received: the header,
out/received/show-1.frames  and the frame data
out/received/show-1.png     what the simulated prop showed
TEXT
