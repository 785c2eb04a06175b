#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The same job as a script with the AppIndicator library: title, a few lines, a refresh a minute."""
import json
import os
import subprocess

import gi

gi.require_version("Gtk", "3.0")
gi.require_version("AyatanaAppIndicator3", "0.1")
from gi.repository import AyatanaAppIndicator3 as AppIndicator  # noqa: E402
from gi.repository import GLib, Gtk  # noqa: E402

COMPANION = os.environ["VORLA_USAGE_EXECUTABLE"]
LABELS = {"5h": "5h", "weekly": "W"}


class Indicator:
    def __init__(self):
        self.item = AppIndicator.Indicator.new(
            "usage-script", "dialog-information", AppIndicator.IndicatorCategory.APPLICATION_STATUS
        )
        self.item.set_status(AppIndicator.IndicatorStatus.ACTIVE)
        self.menu = Gtk.Menu()
        self.lines = [Gtk.MenuItem(label="…", sensitive=False) for _ in LABELS]
        quit_line = Gtk.MenuItem(label="Quit")
        quit_line.connect("activate", Gtk.main_quit)
        for line in [*self.lines, quit_line]:
            self.menu.append(line)
        self.menu.show_all()
        self.item.set_menu(self.menu)
        self.refresh()

    def refresh(self):
        output = subprocess.run([COMPANION, "--json"], capture_output=True, check=True).stdout
        titles = []
        for line, window in zip(self.lines, json.loads(output)["windows"]):
            text = f"{LABELS[window['name']]} {window['remainingPercent']}%"
            line.set_label(text)
            titles.append(text)
        self.item.set_label(" · ".join(titles), "")
        return True


indicator = Indicator()
GLib.timeout_add_seconds(60, indicator.refresh)
# As many more, one after another, as a measurement asks for.
for count in range(int(os.environ.get("REFRESHES", "0"))):
    GLib.timeout_add(200 * (count + 1), lambda: indicator.refresh() and False)
Gtk.main()
