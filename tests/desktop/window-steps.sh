# shellcheck shell=bash
# SPDX-License-Identifier: MIT
# What scripts that try the task-fit window have in common; sourced by them. They set `program`.
folder=$(mktemp -d)
processes=()

tidy_up() {
    for process in "${processes[@]}"; do
        kill "$process" 2>/dev/null || true
    done
    rm -rf "$folder"
}
trap tidy_up EXIT

fail() {
    echo "$(basename "$0"): $*" >&2
    exit 1
}

# wait_for WHAT COMMAND...: until the command succeeds.
wait_for() {
    local what=$1
    shift
    for _ in $(seq 600); do
        if "$@"; then
            return
        fi
        sleep 0.1
    done
    fail "waited in vain for $what"
}

# start NAME: the program, its standard input the named pipe NAME.in and its output the file NAME.out.
# 8 and 9 are the inputs of the programs, and must not stay open in another one.
start() {
    mkfifo "$folder/$1.in"
    "${program:?}" <"$folder/$1.in" >"$folder/$1.out" 8>&- 9>&- &
    started=$!
    processes+=("$started")
}

# has_closed NAME PROCESS: as a program ends whose window closes.
has_closed() {
    wait "$2" || fail "the $1 program failed when its window closed"
    [ "$(cat "$folder/$1.out")" = closing ] || fail "the $1 window did not say that it closes"
}
