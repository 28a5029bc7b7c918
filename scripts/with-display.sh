#!/bin/sh
# with-display.sh COMMAND...: runs the command on a virtual display of its own, so that tests with real mouse and keyboard can run
# side by side. The server picks the number itself. DISPLAY_SIZE: another size than 1600x1200.
set -eu
number=$(mktemp)
exec 3>"$number"
Xvfb -displayfd 3 -screen 0 "${DISPLAY_SIZE:-1600x1200}x24" -nolisten tcp >/dev/null 2>&1 &
server=$!
trap 'kill $server 2>/dev/null; rm -f "$number"' EXIT
tries=0
while [ ! -s "$number" ]; do
    tries=$((tries + 1))
    if [ $tries -gt 300 ]; then
        echo "with-display.sh: no virtual display" >&2
        exit 1
    fi
    sleep 0.1
done
DISPLAY=:$(cat "$number") "$@" 3>&-
