# SPDX-License-Identifier: MIT
"""screen_reader.py PROGRAM: looks at a program through AT-SPI as a screen reader does. Reads commands from standard input, one
JSON list a line, and answers each with one line of JSON:

["look"]            everything that can be heard: a list of objects with role, name, text, states, actions, and place, which
                    tells it apart until the next look
["do", place, name] carries out the action of that name; answers whether the object has it
["focus", place]    gives it the keyboard

A process of its own, since the binding knows only the bus of its process."""

import json
import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

MOST_CHILDREN = 200
seen = []


def children(thing):
    return [thing.get_child_at_index(i) for i in range(min(thing.get_child_count(), MOST_CHILDREN))]


def actions(thing):
    try:
        return [thing.get_action_name(i) for i in range(thing.get_n_actions())]
    except GLib.GError:
        return []


def text(thing):
    try:
        return thing.get_text(0, thing.get_character_count()) if thing.get_text_iface() else None
    except GLib.GError:
        return None


def described(thing):
    seen.append(thing)
    states = [state.value_nick for state in thing.get_state_set().get_states()]
    return {"role": thing.get_role_name(), "name": thing.get_name(), "text": text(thing), "states": states,
            "actions": actions(thing), "place": len(seen) - 1}


def look(program):
    seen.clear()
    found = []
    waiting = [child for child in children(Atspi.get_desktop(0)) if child and child.get_name() == program]
    while waiting:
        thing = waiting.pop(0)
        try:
            thing.clear_cache()
            found.append(described(thing))
            waiting += [child for child in children(thing) if child]
        except GLib.GError:
            pass  # it has gone meanwhile
    return found


def do(place, name):
    thing = seen[place]
    names = [action.lower() for action in actions(thing)]
    return name in names and thing.do_action(names.index(name))


for line in sys.stdin:
    command, *arguments = json.loads(line)
    if command == "look":
        answer = look(sys.argv[1])
    elif command == "do":
        answer = do(*arguments)
    else:
        answer = seen[arguments[0]].grab_focus()
    print(json.dumps(answer), flush=True)
