# SPDX-License-Identifier: MIT
"""Tells Sonarin which songs are selected in Quod Libet's song list. On as soon as it is installed."""

import itertools
import os
import urllib.parse

from gi.repository import GLib
from quodlibet import app
from quodlibet.plugins.events import EventPlugin

from . import sonarin_selection

MOST = 100  # of so many selected songs two are files; to list thousands would take the player's time


def selected_files():
    selection = app.window.songlist.get_selection()
    if selection.count_selected_rows() > MOST:
        return [None, None]
    # The list's own get_selected_songs() loses some memory each time, as the bindings do with selected_foreach().
    model, rows = selection.get_selected_rows()
    songs = (model.get_value(model.get_iter(row)) for row in rows)
    files = itertools.islice((song for song in songs if song.is_file), 2)
    return ["file://" + urllib.parse.quote(os.fsencode(song["~filename"])) for song in files]


def publish():
    if app.window is None:
        return True  # once more, a little later
    if not hasattr(app.window, "songlist"):
        return False  # its sister program for tags, which loads the same plug-ins
    selection = sonarin_selection.Selection("Player", "quodlibet", "Quod Libet", selected_files)

    def activity_changed(window, *_):
        if window.is_active():
            selection.used()

    app.window.connect("notify::is-active", activity_changed)
    activity_changed(app.window)
    return False


class SonarinSelection(EventPlugin):
    PLUGIN_ID = "Sonarin Selection"
    PLUGIN_NAME = "Sonarin"
    PLUGIN_DESC = "Lets Sonarin follow the selected song. sonarin-connect --remove quodlibet takes it away."
    PLUGIN_CAN_ENABLE = False


GLib.timeout_add(200, publish)
