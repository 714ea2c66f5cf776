#!/usr/bin/env python3
"""Lists a container as a short script would: gdbus-client.py PATH COUNT"""

import sys

from gi.repository import Gio, GLib

path, count = sys.argv[1], int(sys.argv[2])
names = (
    "Type TypeEx MIMEType DisplayName Artist Album AlbumArtURL URLs Creator Genre Path Date TrackNumber"
    " Duration Bitrate SampleRate BitsPerSample"
).split()
bus = Gio.bus_get_sync(Gio.BusType.SESSION)


def call(interface, method, arguments):
    return bus.call_sync(
        "com.intel.dleyna-server", path, interface, method, arguments, None, 0, -1, None
    ).unpack()


(total,) = call(
    "org.freedesktop.DBus.Properties", "Get", GLib.Variant("(ss)", ("org.gnome.UPnP.MediaObject2", "ChildCount"))
)
(rows,) = call(
    "org.gnome.UPnP.MediaContainer2", "ListChildren", GLib.Variant("(uuas)", (0, count, names))
)
if len(rows) != min(count, total):
    sys.exit(f"{len(rows)} rows came instead of {count}.")
