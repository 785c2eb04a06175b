# SPDX-License-Identifier: MIT
# shellcheck shell=bash disable=SC2034,SC2154 source-path=SCRIPTDIR
# GNOME Shell with the AppIndicator extension.
#
# Debian packages: xvfb gnome-shell gnome-shell-extension-appindicator gnome-settings-daemon mutter
# xdotool imagemagick dbus-daemon libglib2.0-bin dconf-gsettings-backend fonts-dejavu-core
# adwaita-icon-theme libgl1-mesa-dri
. "${BASH_SOURCE[0]%/*}/on-x.sh"
desktop=GNOME
BAR_HEIGHT=32
# Beside the clock in the middle, which changes by itself.
search=$((${SCREEN%x*} - 740))x32+700+0

prepare_panel() {
    export XDG_SESSION_DESKTOP=gnome GNOME_SHELL_SESSION_MODE=user LIBGL_ALWAYS_SOFTWARE=1
    # An empty system bus, where the shell's questions fail at once.
    cat >"$folder/system.conf" <<END
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=$folder/system</listen>
  <policy context="default">
    <allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/>
  </policy>
</busconfig>
END
    dbus-daemon --config-file="$folder/system.conf" --nofork --nopidfile >>"$folder/log" 2>&1 &
    export DBUS_SYSTEM_BUS_ADDRESS=unix:path=$folder/system
    set_value shell enabled-extensions \
        "['ubuntu-appindicators@ubuntu.com', 'appindicatorsupport@rgcjonas.gmail.com']"
    set_value shell disable-user-extensions false
    set_value shell disable-extension-version-validation true
    set_value shell welcome-dialog-last-shown-version 999
    set_value desktop.interface enable-animations false
    set_value desktop.interface enable-hot-corners false
    set_value desktop.background picture-uri "''"
    set_value desktop.background primary-color "'#335577'"
    set_value desktop.lockdown disable-lock-screen true
    set_value desktop.session idle-delay 0
    # It would complain that nobody can lock the screen here.
    set_value desktop.notifications show-banners false
}

set_value() { gsettings set "org.gnome.$1" "$2" "$3"; }

launch_panel() {
    gnome-shell --x11 >>"$folder/log" 2>&1 &
    panel=($!)
}

# It starts with the overview, which hides the bar's right end.
settle_panel() {
    sleep 4
    xdotool key Escape
    sleep 2
}
