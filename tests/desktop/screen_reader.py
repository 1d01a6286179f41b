# SPDX-License-Identifier: MIT
"""Looks at a window of Sonarin through AT-SPI as a screen reader does, in a process of its own: the binding knows only the bus
of its process."""

import concurrent.futures
import os

from desktop import wait_until

MOST_CHILDREN = 200


class Reader:
    def __init__(self, environment):
        self.process = concurrent.futures.ProcessPoolExecutor(1, initializer=begin, initargs=(environment,))
        self.close = self.process.shutdown

    def all(self, role=None, name=None):
        return self.process.submit(hear, role, name).result()

    def the(self, role, name):
        heard = wait_until(lambda: self.all(role, name), 5)
        assert heard, f"nothing is a {role} named {name}"
        return heard[0]

    def do(self, role, name, *actions):
        """The first of the actions that the thing has."""
        thing = self.the(role, name)
        assert self.process.submit(do, role, name, actions).result(), thing


# --- in the process of its own ----------------------------------------------------------------------------------------------


def begin(environment):
    global Atspi, GLib
    os.environ.update(environment)
    import gi
    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi, GLib


def children(thing):
    found = [thing.get_child_at_index(i) for i in range(min(thing.get_child_count(), MOST_CHILDREN))]
    return [child for child in found if child]


def found(role, name):
    """The things of that role and name, where they are given, with what is said of each."""
    waiting = [child for child in children(Atspi.get_desktop(0)) if child.get_name() == "sonarin"]
    while waiting:
        thing = waiting.pop(0)
        try:
            thing.clear_cache()
            said = {"role": thing.get_role_name(), "name": thing.get_name()}
            if role in (None, said["role"]) and name in (None, said["name"]):
                said["states"] = [state.value_nick for state in thing.get_state_set().get_states()]
                said["text"] = thing.get_text(0, thing.get_character_count()) if thing.get_text_iface() else None
                yield thing, said
            waiting += children(thing)
        except GLib.GError:
            pass  # it has gone meanwhile


def hear(role, name):
    return [said for _, said in found(role, name)]


def do(role, name, actions):
    thing = next(found(role, name))[0]
    known = [thing.get_action_name(i).lower() for i in range(thing.get_n_actions())]
    return thing.do_action(next(known.index(action) for action in actions if action in known))
