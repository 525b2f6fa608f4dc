# SPDX-License-Identifier: MIT

# A program that is not ours: a GTK window whose area drags the given URIs, and which says on
# standard output what is dropped there.
#
#   gtk_peer.py TITLE LEFT TOP [URI ...]

import sys

import gi

gi.require_version("Gtk", "3.0")
gi.require_version("Gdk", "3.0")
from gi.repository import Gdk, Gtk  # noqa: E402

title, left, top, *uris = sys.argv[1:]
window = Gtk.Window(title=title)
area = Gtk.EventBox()
area.set_size_request(200, 200)
window.add(area)
formats = [Gtk.TargetEntry.new("text/uri-list", 0, 0)]
area.drag_source_set(Gdk.ModifierType.BUTTON1_MASK | Gdk.ModifierType.BUTTON3_MASK, formats,
                     Gdk.DragAction.COPY | Gdk.DragAction.MOVE)
area.drag_dest_set(Gtk.DestDefaults.ALL, formats, Gdk.DragAction.COPY | Gdk.DragAction.MOVE)


def say(*words):
    print(*words, flush=True)


area.connect("drag-begin", lambda *_: say("begin"))
area.connect("drag-data-get", lambda _widget, _context, data, *_: data.set_uris(uris))
area.connect("drag-data-delete", lambda *_: say("delete"))
area.connect("drag-end", lambda _widget, context: say("end", context.get_selected_action().value_nicks))
area.connect("drag-motion", lambda *_: say("motion"))
area.connect("drag-data-received", lambda _widget, _context, _x, _y, data, *_:
             say("received", *data.get_uris()))
window.connect("destroy", Gtk.main_quit)
window.move(int(left), int(top))
window.show_all()
Gtk.main()
