# SPDX-License-Identifier: MIT
"""Tells Sonarin which tracks are selected on the page that Rhythmbox shows."""

import gi

gi.require_version("Gtk", "3.0")
gi.require_version("RB", "3.0")
from gi.repository import RB, GObject, Gtk, Peas  # noqa: E402

import sonarin_selection  # noqa: E402

MOST = 100  # of so many selected tracks two are files; to list thousands would take the player's time


def tree_in(widget):
    while not isinstance(widget, Gtk.TreeView):
        widget = next(child for child in widget.get_children() if isinstance(child, (Gtk.TreeView, Gtk.Container)))
    return widget


def selected_files(shell):
    view = shell.props.selected_page.get_entry_view()
    if view is None:
        return []
    if tree_in(view).get_selection().count_selected_rows() > MOST:
        return [None, None]
    places = (entry.get_string(RB.RhythmDBPropType.LOCATION) for entry in view.get_selected_entries())
    return [place for place in places if place.startswith("file://")][:2]


class SonarinSelection(GObject.Object, Peas.Activatable):
    object = GObject.property(type=GObject.GObject)

    def do_activate(self):
        shell = self.object
        self.selection = sonarin_selection.Selection("Player", "rhythmbox", "Rhythmbox", lambda: selected_files(shell))
        self.window = shell.props.window
        self.handler = self.window.connect("notify::is-active", self.activity_changed)
        self.activity_changed(self.window)

    def do_deactivate(self):
        self.window.disconnect(self.handler)
        self.selection.withdraw()

    def activity_changed(self, window, *_):
        if window.is_active():
            self.selection.used()
