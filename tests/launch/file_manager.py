# SPDX-License-Identifier: MIT

# A file manager on the session bus: writes each URI that it is to show, as a line.
#
#   file_manager.py OUTPUT [hang]    with "hang" it takes the name and never reads its messages

import sys
import time

from gi.repository import Gio, GLib

INTERFACE = """<node><interface name="org.freedesktop.FileManager1">
  <method name="ShowFolders"><arg type="as" direction="in"/><arg type="s" direction="in"/></method>
</interface></node>"""


def called(_bus, _sender, _path, _interface, method, parameters, invocation):
    uris, _token = parameters.unpack()
    with open(sys.argv[1], "a", encoding="ascii") as output:
        output.write("".join(uri + "\n" for uri in uris) + f"-- {method}\n")
    invocation.return_value(None)


bus = Gio.bus_get_sync(Gio.BusType.SESSION)
info = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]
bus.register_object("/org/freedesktop/FileManager1", info, called, None, None)
bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
              "RequestName", GLib.Variant("(su)", ("org.freedesktop.FileManager1", 0)),
              None, 0, -1, None)
print("ready", flush=True)
if "hang" in sys.argv:
    time.sleep(600)
GLib.MainLoop().run()
