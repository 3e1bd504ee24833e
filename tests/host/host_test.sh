#!/usr/bin/env bash
# host_test.sh HOST session   a scripted session answers as session.txt says
# host_test.sh HOST break     Ctrl-C ends an input or a long call, and the session goes on
set -euo pipefail
host=$(realpath "$1")
cd "$(dirname "$0")"

# In a new directory, since the session saves files.
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cp part.m session.m session.txt "$scratch"
cd "$scratch"

session() { diff -u session.txt <("$host" <session.m) && "$host" --help | grep -q usage; }

# Reads answers until one is the text $1; none comes within a hundred seconds when something is wrong, or $2 comes.
wait_for() {
    local line
    while IFS= read -r -t 100 line <&"${HOST[0]}"; do
        [ "$line" = "$1" ] && return
        [ "$line" = "${2-none}" ] && break
    done
    echo "'$1' did not come" >&2
    return 1
}

break() {
    coproc HOST { exec "$host"; }
    pid=$HOST_PID # which is forgotten with the process
    trap 'kill "$pid" 2>/dev/null || true; rm -rf "$scratch"' EXIT
    echo "x = 41; y = input('your name', 's')" >&"${HOST[1]}"
    wait_for "your name" # the host waits now, or is about to
    kill -INT "$pid"
    wait_for "error: Ctrl-C"
    wait_for "called from console 1"
    echo "disp(x + 1)" >&"${HOST[1]}"
    wait_for 42
    # Inside a call of the library; and what was written into a file is there.
    echo "f = fopen('out', 'w'); fprintf(f, 'kept'); disp begun; y = betainc(rand(1, 1e7), 2.5, 3.5); disp done" >&"${HOST[1]}"
    wait_for begun
    kill -INT "$pid"
    wait_for "error: Ctrl-C" "done"
    wait_for "called from console 3"
    [ "$(cat out)" = kept ]
    echo "exit" >&"${HOST[1]}"
    wait "$pid"
}

"$2"
