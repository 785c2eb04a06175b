# SPDX-License-Identifier: MIT
# shellcheck shell=bash disable=SC2034,SC2154 source-path=SCRIPTDIR
# A headless sway, a pointer for it, and what tools/private-session does there.
display=wayland

start_display() {
    export WLR_BACKENDS=headless WLR_RENDERER=pixman WLR_LIBINPUT_NO_DEVICES=1
    unset DISPLAY
    cat >"$folder/sway" <<END
xwayland disable
output * mode ${SCREEN}@60Hz scale 1 position 0 0
output * bg #335577 solid_color
default_border none
END
    # It refuses to run as root; a user namespace shows it another user, who still owns the folder.
    local as_user=()
    if ((EUID == 0)); then
        as_user=(unshare --user --map-user=1000 --map-group=1000 --)
    fi
    "${as_user[@]}" sway -c "$folder/sway" >>"$folder/log" 2>&1 &
    until_true 20 find_display || return 1
    mkfifo "$folder/pointer"
    "${BASH_SOURCE[0]%/*}/virtual-pointer" "$SCREEN" <"$folder/pointer" >>"$folder/log" 2>&1 &
    exec 4>"$folder/pointer"
}

find_display() {
    local socket
    for socket in "$XDG_RUNTIME_DIR"/wayland-?; do
        [ -S "$socket" ] || return 1
        export WAYLAND_DISPLAY=${socket##*/}
    done
}

capture() { grim -t ppm "$1"; }
move() { echo "move $1 $2" >&4; }
click() { echo "click $1" >&4; }

# The session has no keyboard: a click on nothing does as well.
close_menu() {
    move "${away[@]}"
    click 1
}
