# SPDX-License-Identifier: MIT
"""Tells Sonarin which songs are selected in Quod Libet's song list. On as soon as it is installed."""

import os
import urllib.parse

from gi.repository import GLib
from quodlibet import app
from quodlibet.plugins.events import EventPlugin

from . import sonarin_selection

MOST = 100  # of so many selected songs two are files; to list thousands would take the player's time


def selected_files():
    rows = app.window.songlist.get_selection()
    if rows.count_selected_rows() > MOST:
        return [None, None]
    songs = (song for song in app.window.songlist.get_selected_songs() if song.is_file)
    return ["file://" + urllib.parse.quote(os.fsencode(song["~filename"])) for song, _ in zip(songs, range(2))]


def publish():
    if app.window is None:
        return True  # once more, a little later
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
