# SPDX-License-Identifier: MIT
# shellcheck shell=bash disable=SC2034,SC2154 source-path=SCRIPTDIR
# Waybar with nothing but a tray, on sway. It opens menus with the right button.
#
# Debian packages: sway waybar grim imagemagick util-linux python3 fonts-dejavu-core adwaita-icon-theme
. "${BASH_SOURCE[0]%/*}/on-sway.sh"
desktop=sway
button=3

prepare_panel() {
    mkdir -p "$HOME/.config/waybar"
    cat >"$HOME/.config/waybar/config" <<END
{
    "layer": "top", "position": "top", "height": $BAR_HEIGHT,
    "modules-left": ["tray"], "tray": {"icon-size": ${ICON_SIZE:-22}, "spacing": 6}
}
END
    cat >"$HOME/.config/waybar/style.css" <<END
window#waybar { background: ${BAR_COLOUR:-#20242c}; }
#tray { padding: 0 6px; }
END
}

launch_panel() {
    GDK_BACKEND=wayland GTK_THEME=Adwaita:dark waybar >>"$folder/log" 2>&1 4>&- &
    panel=($!)
}
