# SPDX-License-Identifier: MIT
# shellcheck shell=bash disable=SC2034,SC2154 source-path=SCRIPTDIR
# xfce4-panel with nothing but a tray.
#
# Debian packages: xvfb xfce4-panel openbox xdotool x11-xserver-utils imagemagick fonts-dejavu-core
# adwaita-icon-theme
. "${BASH_SOURCE[0]%/*}/on-x.sh"
desktop=XFCE

prepare_panel() {
    xsetroot -solid '#335577'
    openbox >>"$folder/log" 2>&1 &
    local settings=$HOME/.config/xfce4/xfconf/xfce-perchannel-xml
    mkdir -p "$settings"
    cat >"$settings/xfce4-panel.xml" <<END
<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="${DARK:-true}"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="length" type="uint" value="100"/>
      <property name="size" type="uint" value="$BAR_HEIGHT"/>
      <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="systray">
      <property name="icon-size" type="int" value="${ICON_SIZE:-22}"/>
    </property>
  </property>
</channel>
END
}

launch_panel() {
    xfce4-panel >>"$folder/log" 2>&1 &
    panel=($!)
}
