#!/bin/sh
# Who may include what (docs/architecture.md): fails on every include that goes upstairs or sideways, and says which line.
# check-includes.sh [ROOT]: the project's root, by default the one that this script stands in.
cd "${1:-$(dirname "$0")/..}" || exit 2
find src tools -name '*.h' -o -name '*.cpp' | sort | xargs awk '
function refuse(why) { printf "%s:%d: %s: %s\n", FILENAME, FNR, $0, why; bad = 1 }
# The floors of src/show, from the ground up. wire and beats stand beside draw and image, and film beside wire.
BEGIN { floor["base"] = 1; floor["model"] = 2; floor["draw"] = 3; floor["image"] = 4; floor["wire"] = 5; floor["film"] = 5; floor["beats"] = 5 }
FNR == 1 {
    split(FILENAME, path, "/")
    home = path[1] == "src" ? path[2] : path[1]
    own = home == "show" ? path[3] : path[2]
    name = FILENAME; sub(/.*\//, "", name)
    ofWindow = name ~ /^mainwindow.*\.cpp$/
}
/^#include <Qt(Widgets|Charts|Multimedia|Network|SerialPort)\// && home == "show" { refuse("src/show knows Qt Core and Gui only") }
/^#include <(dsp|maths|base)\// && own != "beats" { refuse("src/show/beats alone hears beats") }
/^#include "/ {
    split($2, quoted, "\""); header = quoted[2]
    split(header, part, "/"); folder = part[1]
    if (header ~ /^ui_/) {
        if (home == "show" || home == "tools") refuse("no forms here")
        else if (header == "ui_mainwindow.h" && !ofWindow) refuse("the main window'\''s form is known to mainwindow*.cpp only")
        next
    }
    if (header !~ /\//) {
        if (home != "tools") refuse("include paths start at src/")
        next
    }
    if (home == "app" || (home == "tools" && (folder == "show" || folder == own))) next
    if (home == "show") {
        if (folder != "show") refuse("src/show includes itself only")
        else if (floor[part[2]] > floor[own]) refuse("upstairs within src/show")
        else if (floor[part[2]] == floor[own] && part[2] != own) refuse("sideways within src/show")
    } else if (header == "app/mainwindow.h") {
        if (!ofWindow) refuse("the main window is known to its own mainwindow_*.cpp only")
    } else if (folder != home && folder != "show" && (folder != "forms" || home == "forms")) {
        refuse("a folder includes itself, show and forms")
    }
}
END { exit bad }'
