# SPDX-License-Identifier: MIT
"""Tells on the session bus what is selected in the program that this runs in, as docs/selection-interface.md describes.
What the connectors written in Python share; it answers questions and does nothing by itself."""

import os

from gi.repository import Gio, GLib

INTERFACE = "org.sonarin.Selection1"
PATH = "/org/sonarin/Selection1"
DESCRIPTION = f"""<node><interface name="{INTERFACE}">
    <property name="Selected" type="as" access="read"/>
    <property name="ActiveSince" type="x" access="read"/>
    <property name="Program" type="s" access="read"/>
</interface></node>"""


class Selection:
    """Publishes a program's selection until `withdraw`.

    kind: "FileManager" or "Player"; identifier: an element of a bus name; program: the name that people know;
    read: answers the URIs of what is selected, at most two; None or "" where one is no file."""

    def __init__(self, kind, identifier, program, read):
        self.name = f"{INTERFACE}.{kind}.{identifier}_{os.getpid()}"
        self.program = program
        self.read = read
        self.active_since = 0
        self.connection = None
        self.registration = self.ownership = 0
        self.is_withdrawn = False
        Gio.bus_get(Gio.BusType.SESSION, None, self._connected)

    def used(self, *_):
        """To be called when a window of the program comes into use."""
        self.active_since = GLib.get_monotonic_time()

    def withdraw(self):
        self.is_withdrawn = True
        if self.registration:
            Gio.bus_unown_name(self.ownership)
            self.connection.unregister_object(self.registration)
            self.registration = 0

    def _connected(self, _, result):
        if self.is_withdrawn:
            return
        try:
            self.connection = Gio.bus_get_finish(result)
            description = Gio.DBusNodeInfo.new_for_xml(DESCRIPTION).interfaces[0]
            # Answering properties costs no memory; answering methods from Python does.
            self.registration = self.connection.register_object(PATH, description, None, self._answer, None)
            self.ownership = Gio.bus_own_name_on_connection(self.connection, self.name, Gio.BusNameOwnerFlags.NONE, None, None)
        except GLib.Error:
            pass  # no bus, or another copy of this connector is there already

    def _answer(self, _connection, _sender, _path, _interface, name):
        if name == "ActiveSince":
            return GLib.Variant("x", self.active_since)
        if name == "Program":
            return GLib.Variant("s", self.program)
        return GLib.Variant("as", self._files())

    def _files(self):
        # The program's internals may be other than expected; that must never disturb the program.
        try:
            return [uri if uri and uri.startswith("file:///") else "" for uri in self.read()[:2]]
        except Exception:
            return []
