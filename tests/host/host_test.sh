#!/usr/bin/env bash
# host_test.sh HOST session   a scripted session answers as session.txt says
# host_test.sh HOST break     Ctrl-C ends an input, and the session goes on
set -euo pipefail
host=$(realpath "$1")
cd "$(dirname "$0")"

session() { diff -u session.txt <("$host" <session.m) && "$host" --help | grep -q usage; }

# Reads answers until one is the text $1; none comes within ten seconds when something is wrong.
wait_for() {
    local line
    while IFS= read -r -t 10 line <&"${HOST[0]}"; do
        [ "$line" = "$1" ] && return
    done
    echo "'$1' did not come" >&2
    return 1
}

break() {
    coproc HOST { exec "$host"; }
    pid=$HOST_PID # which is forgotten with the process
    trap 'kill "$pid" 2>/dev/null || true' EXIT
    echo "x = 41; y = input('your name', 's')" >&"${HOST[1]}"
    wait_for "your name" # the host waits now, or is about to
    kill -INT "$pid"
    wait_for "error: Ctrl-C"
    wait_for "called from console 1"
    echo "disp(x + 1)" >&"${HOST[1]}"
    wait_for 42
    echo "exit" >&"${HOST[1]}"
    wait "$pid"
}

"$2"
