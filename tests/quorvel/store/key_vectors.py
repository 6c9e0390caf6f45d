#!/usr/bin/env python3
# Makes key_vectors.inc: track keys worked out by a second implementation of the rules, on Python's own MD5 and Unicode tables.
#
#     key_vectors.py            writes key_vectors.inc beside this file
#     key_vectors.py --check    exits with 1 when the file is not what would be written

import hashlib
import math
import pathlib
import struct
import sys

SEPARATOR = 0xFFFFFFFF
TERMINATOR = 0
TITLE, LEGACY, REPEATED = range(3)


def decode(data):
    """Code points up to the first invalid sequence. Sequences have 1 to 6 bytes; over-long ones are invalid."""
    at = 0
    while at < len(data):
        lead = data[at]
        if lead < 0x80:
            size, value = 1, lead
        else:
            size = next((n for n in range(2, 7) if lead >> (7 - n) == (1 << (n + 1)) - 2), 0)
            if size == 0:  # a stray continuation byte, 0xFE or 0xFF
                return
            value = lead & ((1 << (7 - size)) - 1)
        tail = data[at + 1 : at + size]
        if len(tail) != size - 1 or any(byte & 0xC0 != 0x80 for byte in tail):
            return
        for byte in tail:
            value = value << 6 | byte & 0x3F
        smallest = [0, 0, 0x80, 0x800, 0x10000, 0x200000, 0x4000000][size]
        if value < smallest:
            return
        yield value
        at += size


def lower(code_point):
    """Simple lower-casing: one code point for one. Python's full mapping begins with it."""
    return ord(chr(code_point).lower()[0]) if code_point < 0x110000 else code_point


class Track:
    def __init__(self, fields, path="/music/x.flac", length=0.0):
        self.fields = [(name, [v if isinstance(v, bytes) else v.encode() for v in values]) for name, values in fields]
        self.path = path if isinstance(path, bytes) else path.encode()
        self.length = length

    def values(self, name):
        for have, values in self.fields:
            if have.lower() == name:
                return values
        return None


def key(track, mapping):
    units = []

    def feed_text(value):
        units.extend(lower(c) for c in decode(value))
        units.append(TERMINATOR)

    def feed_field(name):
        values = track.values(name)
        for value in values or []:
            feed_text(value)
        return values is not None

    def nth_value(name):
        values = track.values(name) or []
        wanted = 1 if mapping == LEGACY else 0
        return values[wanted] if len(values) > wanted else None

    def feed_disc(disc):
        if disc is not None and disc.lstrip(b"0") != b"1":
            feed_text(disc.lstrip(b"0"))
            units.append(SEPARATOR)

    has_artist = any(feed_field(name) for name in ("album artist", "artist", "composer", "performer"))
    units.append(SEPARATOR)
    has_album = feed_field("album")
    units.append(SEPARATOR)
    feed_field("date")
    units.append(SEPARATOR)

    skip_title = False
    if has_album:
        number, disc = nth_value("tracknumber"), nth_value("discnumber")
        if mapping == LEGACY:
            if number is not None:
                feed_disc(disc)
                feed_text(number.lstrip(b"0"))
                skip_title = True
        else:
            if number is not None:
                feed_text(number.lstrip(b"0"))
                units.append(SEPARATOR)
            feed_disc(disc)
            if mapping == REPEATED and number is not None:
                feed_text(number.lstrip(b"0"))
                skip_title = True

    has_title = True
    if not skip_title:
        has_title = feed_field("title")
        if not has_title:
            cut = max(track.path.rfind(c) for c in (b"\\", b"/", b"|", b":"))
            feed_text(track.path[cut + 1 :])
    if not has_artist or not has_title:
        frames = track.length * 75
        whole = math.floor(frames)
        units.append(whole + (frames - whole >= 0.5) if track.length > 0 else 0)

    digest = hashlib.md5(b"".join(struct.pack("<I", unit) for unit in units)).digest()
    low, high = struct.unpack("<QQ", digest)
    return low ^ high


FULL = [("artist", ["Boards"]), ("album", ["Geo"]), ("date", ["1998"]), ("tracknumber", ["07"]), ("discnumber", ["2"]),
        ("title", ["Roygbiv"])]


def changed(**changes):
    """FULL with fields replaced; None removes one."""
    fields = [(name, changes.pop(name, values)) for name, values in FULL]
    fields += changes.items()
    return [(name, values) for name, values in fields if values is not None]


def titled(*titles):
    return [("artist", ["a"]), ("title", list(titles))]


EVERY_MAPPING = [
    ("all fields", Track(FULL)),
    ("second values of track and disc number", Track(changed(tracknumber=["3", "004"], discnumber=["1", "02"]))),
    ("second disc number is 1", Track(changed(tracknumber=["3", "4"], discnumber=["2", "1"]))),
    ("track number twice, disc number once", Track(changed(tracknumber=["3", "4"]))),
    ("no track and no disc number", Track(changed(tracknumber=None, discnumber=None))),
    ("disc numbers without a track number", Track(changed(tracknumber=None, discnumber=["2", "3"]))),
    ("no album", Track(changed(album=None))),
    ("no artist", Track(changed(artist=None, tracknumber=["1", "2"]), length=200.0)),
    ("no title, with track numbers", Track(changed(title=None, tracknumber=["1", "2"]), length=200.0)),
    ("no title, no track number", Track(changed(title=None, tracknumber=None, discnumber=None), length=200.0)),
    ("no tags at all", Track([], "C:\\Music\\a.mp3", 12.5)),
]

OVER_LONG = b"\xc1\xbf", b"\xe0\x9f\xbf", b"\xf0\x8f\xbf\xbf", b"\xf8\x87\xbf\xbf\xbf", b"\xfc\x83\xbf\xbf\xbf\xbf"

ACTIVE_MAPPING = [
    *((f"disc number {text}", Track(changed(discnumber=[text]))) for text in ("1", "01", "0", "10")),
    ("track number 000", Track(changed(tracknumber=["000"]))),
    ("track number with text", Track(changed(tracknumber=["07/12"]))),
    ("track number present without a value", Track(changed(tracknumber=[]))),
    ("album empty", Track(changed(album=[""]))),
    ("album present without a value", Track(changed(album=[]))),
    ("date absent", Track(changed(date=None))),
    ("every artist field", Track([("performer", ["p"]), ("composer", ["c"]), ("artist", ["a"]), ("album artist", ["b"])] + titled("t")[1:])),
    ("artist before composer", Track([("composer", ["c"]), ("artist", ["a"]), ("title", ["t"])])),
    ("composer before performer", Track([("performer", ["p"]), ("composer", ["c"]), ("title", ["t"])])),
    ("performer alone", Track([("performer", ["p"]), ("title", ["t"])])),
    ("artist present without a value", Track([("artist", []), ("performer", ["p"]), ("title", ["t"])], length=9.0)),
    ("title present without a value", Track([("artist", ["a"]), ("title", [])], length=9.0)),
    ("several artists and titles", Track([("artist", ["a", "", "b"]), ("title", ["t", "u"])])),
    ("field names in capitals", Track([("ARTIST", ["a"]), ("Title", ["t"])])),
    *((f"file name of {path}", Track([], path, 1.0)) for path in ("C:\\Music\\a.mp3", "file:///music/a.mp3", "unpack://zip|a.mp3", "x:a.mp3", "a.mp3", "/music/")),
    # Frames: none, none, under a half, a half after an even number, just under it, many.
    *((f"length {seconds}", Track([], "/a.mp3", seconds)) for seconds in (0.0, -1.0, 0.006, 0.06, math.nextafter(0.06, 0), 36000.25)),
    ("capitals", Track(titled("ABC"))),
    ("small letters", Track(titled("abc"))),
    ("sharp s", Track(titled("Straße"))),
    ("double s", Track(titled("STRASSE"))),
    ("Latin and Greek capitals", Track(titled("ÀÖŸΑΣΩ"))),
    ("dotted capital I", Track(titled("İI"))),
    ("Cyrillic and Georgian capitals", Track(titled("ЖЁႠᲐ"))),
    ("capitals beyond the table", Track(titled("\ua640\uff21\U00010400\U0001e900"))),
    ("three- and four-byte characters", Track(titled("漢字 😀 €"))),
    ("stray continuation byte", Track(titled(b"ab\x80cd"))),
    ("byte FE", Track(titled(b"ab\xfecd"))),
    ("sequence cut by the end", Track(titled(b"ab\xe2\x82"))),
    ("sequence cut by a letter", Track(titled(b"ab\xe2\x82c"))),
    *((f"over-long in {len(data)} bytes", Track(titled(b"ab" + data + b"cd"))) for data in OVER_LONG),
    ("smallest of each size", Track(titled(b"\x01\xc2\x80\xe0\xa0\x80\xf0\x90\x80\x80\xf8\x88\x80\x80\x80\xfc\x84\x80\x80\x80\x80"))),
    ("largest of each size", Track(titled(b"\x7f\xdf\xbf\xef\xbf\xbf\xf7\xbf\xbf\xbf\xfb\xbf\xbf\xbf\xbf\xfd\xbf\xbf\xbf\xbf\xbf"))),
    ("invalid value before a valid one", Track(titled(b"ab\xff", "cd"))),
    *((f"{n} characters", Track(titled("x" * n))) for n in (254, 255, 256, 257)),
    ("1000 three-byte characters", Track(titled("漢" * 1000))),
    ("255 and an invalid byte", Track(titled(b"x" * 255 + b"\xff"))),
]


def c_text(data):
    """A C++ string literal. Octal escapes end after three digits, so that a digit may follow."""
    plain = set(range(0x20, 0x7F)) - set(b'"\\?')
    return '"' + "".join(chr(b) if b in plain else f"\\{b:03o}" for b in data) + '"'


def row(name, track, mapping):
    fields = ", ".join("{%s, {%s}}" % (c_text(n.encode()), ", ".join(map(c_text, v))) for n, v in track.fields)
    return '{%s, %d, %s, %s, {%s}, 0x%016XULL},' % (
        c_text(name.encode()), mapping, c_text(track.path), float(track.length).hex(), fields, key(track, mapping))


def text():
    lines = ["// Made by key_vectors.py: name, mapping, path, length in seconds, fields with their values, key."]
    lines += [row(name, track, mapping) for name, track in EVERY_MAPPING for mapping in (TITLE, LEGACY, REPEATED)]
    lines += [row(name, track, TITLE) for name, track in ACTIVE_MAPPING]
    return "\n".join(lines) + "\n"


target = pathlib.Path(__file__).with_name("key_vectors.inc")
if sys.argv[1:] == ["--check"]:
    sys.exit(target.read_text() != text())
target.write_text(text())
