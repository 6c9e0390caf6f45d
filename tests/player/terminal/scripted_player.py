"""A player on the session bus that does what it is told, right or wrong: scripted_player.py NAMES SCRIPT

NAMES are parts of bus names, after "org.mpris.MediaPlayer2.". SCRIPT is JSON: a list of [seconds from the start, properties].
The first ones are there from the start, others are told when they are set; "Length" and "Metadata" become one, "Position" is the position from then on, or "error",
"Loop" where it goes back to 0, "Seeked" a signal, "Untold" other properties to set, "Unsaid" properties of which only the
change is told. The last step ends the player.
"""
import asyncio
import json
import sys
import time

from dbus_next import DBusError, PropertyAccess, Variant
from dbus_next.aio import MessageBus
from dbus_next.service import ServiceInterface, dbus_property, signal


class Player(ServiceInterface):
    def __init__(self):
        super().__init__("org.mpris.MediaPlayer2.Player")
        self.status, self.metadata, self.rate, self.position, self.since, self.loop = "Stopped", {}, 1.0, 0.0, 0.0, None

    def now(self):
        moved = (time.monotonic() - self.since) * self.rate if self.status == "Playing" else 0
        return (self.position + moved) % self.loop if self.loop else self.position + moved

    @dbus_property(access=PropertyAccess.READ)
    def PlaybackStatus(self) -> "s":
        return self.status

    @dbus_property(access=PropertyAccess.READ)
    def Metadata(self) -> "a{sv}":
        return self.metadata

    @dbus_property(access=PropertyAccess.READ)
    def Rate(self) -> "d":
        return self.rate

    @dbus_property(access=PropertyAccess.READ)
    def Position(self) -> "x":
        if self.position == "error":
            raise DBusError("org.freedesktop.DBus.Error.NotSupported", "no position")
        return int(self.now() * 1e6)

    @signal()
    def Seeked(self, position) -> "x":
        return position

    def set(self, values):
        if self.position != "error":
            self.position, self.since = self.now(), time.monotonic()
        self.position = values.get("Position", self.position)
        self.loop = values.get("Loop", self.loop)
        self.rate = values.get("Rate", self.rate)
        self.status = values.get("PlaybackStatus", self.status)
        if "Metadata" in values:
            self.metadata = {name: Variant(*value) for name, value in values["Metadata"].items()}

    def perform(self, values):
        self.set({**values, **values.get("Untold", {}), **values.get("Unsaid", {})})
        told = {"PlaybackStatus": self.status, "Metadata": self.metadata, "Rate": self.rate}
        changed = {name: value for name, value in told.items() if name in values}
        if changed or "Unsaid" in values:
            self.emit_properties_changed(changed, list(values.get("Unsaid", {})))
        if "Seeked" in values:
            self.position = values["Seeked"]
            self.Seeked(int(self.position * 1e6))


async def main(names, script):
    bus = await MessageBus().connect()
    player = Player()
    bus.export("/org/mpris/MediaPlayer2", player)
    (_, first), *steps = json.loads(script)
    player.set(first)
    for name in names.split(","):
        await bus.request_name("org.mpris.MediaPlayer2." + name)
    start = time.monotonic()
    for at, values in steps:
        await asyncio.sleep(max(start + at - time.monotonic(), 0))
        player.perform(values)
    bus.disconnect()


asyncio.run(main(*sys.argv[1:]))
