# SPDX-License-Identifier: MIT
"""Tells Sonarin what is selected in Files (Nautilus), Caja, Nemo or Thunar; each loads this with its own bindings.

None of them tells an extension of every change of its selection, so the selection is read from the window that was used
last, when Sonarin asks. That looks into the program: what is not found there as expected gives an empty answer."""

import ctypes
import sys

import gi
from gi.repository import Gio, GLib, GObject

import sonarin_selection

SEVERAL = [None, None]  # nobody asks which
VISITED = set()  # the URIs of the folders that a window of Caja or Nemo has shown


def kinds(thing):
    """The names of the thing's type and of those that it is derived from."""
    kind = thing.__gtype__
    while kind.name != "GObject":
        yield kind.name
        kind = kind.parent


def first(widgets, *names):
    return next((widget for widget in widgets if not set(names).isdisjoint(kinds(widget))), None)


def upwards(widget):
    while widget is not None:
        yield widget
        widget = widget.get_parent()


def downwards(widget, children):
    pending = [widget]
    while pending:
        widget = pending.pop(0)
        yield widget
        pending += children(widget)


# --- Files --------------------------------------------------------------------------------------------------------------


def children4(widget):
    child = widget.get_first_child()
    while child is not None:
        yield child
        child = child.get_next_sibling()


class Files:
    def read(self, window):
        slot = window.get_property("active-slot")
        view = first(downwards(slot, children4), "GtkGridView", "GtkColumnView")
        model = view.get_property("model")
        selected = model.get_selection()
        if selected.get_size() != 1:
            return SEVERAL[: selected.get_size()]
        item = model.get_item(selected.get_nth(0))
        while item.find_property("item") is not None:  # a row of a tree
            item = item.get_property("item")
        return [item.get_property("file").get_uri()]


# --- Caja, Nemo, Thunar -------------------------------------------------------------------------------------------------


def children3(widget):
    return widget.get_children() if isinstance(widget, Gtk.Container) else []


def nowhere():
    return None


class WithViews:
    """A window of these has tabs and may have two halves; what counts is the view that the keyboard is in or was in last."""

    def __init__(self, view_kind):
        self.view_kind = view_kind

    def read(self, window):
        return self.read_view(self.view_in(window))

    def view_in(self, window):
        view = first(upwards(window.get_focus()), self.view_kind)
        if view is None:
            view = getattr(window, "sonarin_last_view", nowhere)()
            if view is None or not view.get_mapped():
                mapped = (widget for widget in downwards(window, children3) if widget.get_mapped())
                view = first(mapped, self.view_kind)
        window.sonarin_last_view = view.weak_ref()
        return view


class Thunar(WithViews):
    """The view's property "selected-files" is a GList that the bindings cannot take apart, but its library can."""

    def __init__(self):
        super().__init__("ThunarStandardView")
        library = ctypes.PyDLL("libthunarx-3.so.0")
        self.get = ctypes.PyDLL("libgobject-2.0.so.0").g_object_get
        self.uri = library.thunarx_file_info_get_uri
        self.uri.restype = ctypes.c_void_p
        self.free = library.thunarx_file_info_list_free

    class List(ctypes.Structure):
        pass

    List._fields_ = [("data", ctypes.c_void_p), ("next", ctypes.POINTER(List)), ("previous", ctypes.POINTER(List))]

    def read_view(self, view):
        if view.find_property("selected-files").value_type.name != "ThunarxFileInfoList":
            return []
        files = ctypes.POINTER(self.List)()
        pointer = ctypes.pythonapi.PyCapsule_GetPointer
        pointer.restype, pointer.argtypes = ctypes.c_void_p, [ctypes.py_object, ctypes.c_char_p]
        address = pointer(view.__gpointer__, None)
        self.get(ctypes.c_void_p(address), b"selected-files", ctypes.byref(files), None)
        try:
            if not files:
                return []
            return SEVERAL if files.contents.next else [self.uri_of(files.contents.data)]
        finally:
            self.free(files)

    def uri_of(self, file):
        text = self.uri(ctypes.c_void_p(file))
        try:
            return ctypes.string_at(text).decode()
        finally:
            GLib.free(text)


class WithIcons(WithViews):
    """Caja and Nemo, which have a common ancestor. Their lists know the files; their icons only tell a screen reader what is
    written under them."""

    def __init__(self, view_kind, entry_kind):
        super().__init__(view_kind)
        self.entry_kind = entry_kind
        self.found = None, None

    def read_view(self, view):
        inside = view.get_child()
        return self.read_list(inside) if isinstance(inside, Gtk.TreeView) else self.read_icons(view, inside)

    def read_list(self, tree):
        selection = tree.get_selection()
        if selection.count_selected_rows() != 1:
            return SEVERAL[: selection.count_selected_rows()]
        model, rows = selection.get_selected_rows()
        return [model.get_value(model.get_iter(rows[0]), 0).get_uri()]

    def read_icons(self, view, icons):
        accessible = icons.get_accessible()
        if accessible.get_selection_count() != 1:
            return SEVERAL[: accessible.get_selection_count()]
        place = self.location(view), accessible.ref_selection(0).get_name()
        if place != self.found[0]:
            self.found = place, uri_of_name(*place)
        return [self.found[1]]

    def location(self, view):
        """What the address field says that belongs to the view, though it may be hidden."""
        entry = getattr(view, "sonarin_entry", nowhere)()
        if entry is None:
            around = (first(downwards(widget, children3), self.entry_kind) for widget in upwards(view))
            entry = next(found for found in around if found is not None)
            view.sonarin_entry = entry.weak_ref()
        return entry.get_text()


def uri_of_name(location, name):
    folder = Gio.File.parse_name(location)
    # What is typed into the address field is not where the view is.
    if not folder.is_native() or folder.get_uri() not in VISITED:
        return None
    file = folder.get_child_for_display_name(name)
    if file.query_exists():
        return file.get_uri()
    # A name may be shown as something that it is not.
    infos = folder.enumerate_children("standard::name,standard::display-name", Gio.FileQueryInfoFlags.NOFOLLOW_SYMLINKS)
    found = [info.get_name() for info in infos if info.get_display_name() == name]
    return folder.get_child(found[0]).get_uri() if len(found) == 1 else None


# --- the program that this is in ----------------------------------------------------------------------------------------


class Host:
    def __init__(self, bindings, provider, gtk, identifier, program, make_reader):
        self.provider = getattr(bindings, provider)
        self.identifier, self.program = identifier, program
        gi.require_version("Gtk", gtk)
        self.make_reader = make_reader

    def publish(self):
        application = Gio.Application.get_default()
        reader = self.make_reader()

        def read():
            window = application.get_property("active-window")
            return reader.read(window) if window is not None else []

        self.selection = sonarin_selection.Selection("FileManager", self.identifier, self.program, read)
        application.connect("window-added", self.watch)
        for window in application.get_windows():
            self.watch(application, window)

    def watch(self, _application, window):
        """Notes when one of the windows comes into use; nothing else costs anything while nobody asks."""
        window.connect("notify::is-active", self.activity_changed)
        self.activity_changed(window)

    def activity_changed(self, window, *_):
        if window.is_active():
            self.selection.used()


def find_host():
    hosts = {  # by the bindings that the program loads
        "Nautilus": ("PropertiesModelProvider", "4.0", "nautilus", "Files", Files),
        "Caja": ("LocationWidgetProvider", "3.0", "caja", "Caja", lambda: WithIcons("FMDirectoryView", "CajaLocationEntry")),
        "Nemo": ("LocationWidgetProvider", "3.0", "nemo", "Nemo", lambda: WithIcons("NemoView", "NemoLocationEntry")),
        "Thunarx": ("PropertyPageProvider", "3.0", "thunar", "Thunar", Thunar),
    }
    for name, facts in hosts.items():
        bindings = sys.modules.get("gi.repository." + name)
        if bindings is not None:
            return Host(bindings, *facts)
    raise ImportError("not in a file manager that this knows")


HOST = find_host()
from gi.repository import Gtk  # noqa: E402  of the host's version

GLib.idle_add(HOST.publish)


class SonarinSelection(GObject.GObject, HOST.provider):
    """The bindings unload an extension that provides nothing. This is asked for what stands above a folder, or beside the
    properties of a file, and has nothing for either."""

    def get_widget(self, uri, _window):
        VISITED.add(Gio.File.new_for_uri(uri).get_uri())
