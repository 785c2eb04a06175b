# SPDX-License-Identifier: MIT
# shellcheck shell=bash disable=SC2034,SC2154 source-path=SCRIPTDIR
# Plasma's shell with a panel that holds nothing but a system tray.
#
# Debian packages: xvfb plasma-workspace plasma-desktop plasma-integration breeze-icon-theme openbox
# xdotool imagemagick fonts-dejavu-core libgl1-mesa-dri
. "${BASH_SOURCE[0]%/*}/on-x.sh"
desktop=KDE
BAR_HEIGHT=36

prepare_panel() {
    export KDE_FULL_SESSION=true KDE_SESSION_VERSION=5 LIBGL_ALWAYS_SOFTWARE=1
    mkdir -p "$HOME/.config"
    cat >"$HOME/.config/plasma-org.kde.plasma.desktop-appletsrc" <<END
[Containments][1]
formfactor=2
lastScreen=0
location=3
plugin=org.kde.panel
[Containments][1][Applets][2]
plugin=org.kde.plasma.systemtray
[Containments][1][Applets][2][Configuration]
SystrayContainmentId=8
[Containments][8]
formfactor=2
lastScreen=0
location=3
plugin=org.kde.plasma.private.systemtray
[Containments][8][General]
extraItems=
knownItems=org.kde.plasma.battery,org.kde.plasma.bluetooth,org.kde.plasma.clipboard,org.kde.plasma.devicenotifier,org.kde.plasma.mediacontroller,org.kde.plasma.networkmanagement,org.kde.plasma.notifications,org.kde.plasma.volume,org.kde.plasma.keyboardlayout,org.kde.plasma.keyboardindicator,org.kde.plasma.nightcolorcontrol,org.kde.plasma.vault,org.kde.plasma.printmanager,org.kde.kscreen,org.kde.kdeconnect,org.kde.plasma.manage-inputmethod,org.kde.plasma.touchpad,org.kde.kupapplet,org.kde.plasma.cameraindicator
[Containments][20]
formfactor=0
lastScreen=0
location=0
plugin=org.kde.desktopcontainment
wallpaperplugin=org.kde.color
[Containments][20][Wallpaper][org.kde.color][General]
Color=51,85,119
END
    printf '[PlasmaViews][Panel 1][Defaults]\nthickness=%s\n' "$BAR_HEIGHT" \
        >"$HOME/.config/plasmashellrc"
    printf '[KDE]\nAnimationDurationFactor=0\n[General]\nColorScheme=%s\n' "${COLOURS:-BreezeLight}" \
        >"$HOME/.config/kdeglobals"
    openbox >>"$folder/log" 2>&1 &
}

launch_panel() {
    kded5 >>"$folder/log" 2>&1 &
    panel=($!)
    plasmashell --no-respawn >>"$folder/log" 2>&1 &
    panel+=($!)
}

# The shell is a host before it has drawn its panel.
settle_panel() { sleep 8; }
