# SPDX-License-Identifier: MIT
# shellcheck shell=bash disable=SC2034,SC2154 source-path=SCRIPTDIR
# A virtual X display and what tools/private-session does on it.
display=x11

capture() { import -silent -window root "$1"; }
move() { xdotool mousemove --sync "$1" "$2"; }
click() { xdotool click "$1"; }
close_menu() { xdotool key Escape; }
