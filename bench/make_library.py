#!/usr/bin/env python3
"""Fills a player's library with tracks that have no files: make_library.py PROFILE TRACKS [--bin FOLDER]

The player makes the databases of the profile itself; the rows are written here, in the form of docs/file-formats.md. The tags are
those of a usual collection: albums of ten to fifteen tracks, most artists with a few albums and some with many, names from several
scripts, identifiers and long comments and lyrics in some, a twentieth of the albums without any tags. As in a library that has grown, most
albums came with the first scan, and the others with later ones, each in the order of its walk. Makes the statistics too, with `--played`: most tracks played, many rated."""

import argparse
import itertools
import random
import sqlite3
import struct
import subprocess
import sys
import time
from pathlib import Path

from machine import ROOT

ALBUM_SIZES = (12, 10, 14, 11, 15, 13, 12, 10, 11, 12)  # again and again
TRACKS_OF_CYCLE = sum(ALBUM_SIZES)
PLACES_IN_CYCLE = [(album, track) for album, size in enumerate(ALBUM_SIZES) for track in range(size)]
ARTISTS = ["The Paper Lanterns", "Ines Valdåker", "Quiet Harbour", "Old Orchard Band", "Marta Grün", "Nightjar", "The Low Tides",
           "Eleven Bridges", "夜の港", "Đặng Thu An", "Joa\u0303o Se\u0301rgio", "Северный ветер"]
ALBUMS = ["Harbour Lights", "Café Étoile", "Songs from the North Road", "Live in the Small Hall", "Second Winter", "A Letter Home",
          "雨あがりの朝"]
TITLES = ["First Ferry", "Gulls over the Roof", "The Other Umbrella", "Trois cuillères", "Last Tram", "Low Water at Evening",
          "Home before Rain", "最後の電車", "Se\u0301rie noire"]
LINE = "Lanterns over the water, and nobody there to see them. "
GENRES = ["Ambient", "Jazz", "Folk"]
FOLDER = "/music/collection"
STATISTICS_INDEX = "C653739F-14B3-4EF2-819B-A3E2883230AE"
FILETIME_OF_1970, FILETIME_SECOND = 116_444_736_000_000_000, 10_000_000


def ostrevan(binaries, profile, *arguments):
    return [str(binaries / "ostrevan"), "--profile", str(profile), "--components", str(binaries / "components"), "--quiet",
            "--yes", *arguments]


def number(value):
    out = bytearray()
    while value >= 0x80:
        out.append(value & 0x7F | 0x80)
        value >>= 7
    out.append(value)
    return bytes(out)


def text(value):
    encoded = value.encode()
    return number(len(encoded)) + encoded


def mixed(value):
    """A number below 2^32 without order, the same in each run."""
    value = (value + 1) * 0x9E3779B1 & 0xFFFFFFFF
    return (value ^ value >> 15) * 0x85EBCA77 + 12345 & 0xFFFFFFFF


def place_of(track):
    """Number of the album, and of the track in it."""
    cycle, rest = divmod(track, TRACKS_OF_CYCLE)
    album, position = PLACES_IN_CYCLE[rest]
    return cycle * len(ALBUM_SIZES) + album, position


def artist_of(album):
    """A third of the albums are by an artist of many, the others by one of four."""
    group = album // 4
    one = group // 10 * 10 if mixed(album) % 3 == 0 else group
    return f"{ARTISTS[one % len(ARTISTS)]} {one}"


def identifier(value):
    digits = "".join(f"{mixed(value * 4 + i):08x}" for i in range(4))
    return "-".join((digits[:8], digits[8:12], digits[12:16], digits[16:20], digits[20:]))


def names_of(track):
    album, position = place_of(track)
    return artist_of(album), f"{ALBUMS[album % len(ALBUMS)]} {album}", position + 1, f"{TITLES[track % len(TITLES)]} {track}"


def tags_of(track, edition):
    """Each edition has other albums, and so other keys; the first leaves some without tags."""
    artist, album_title, position, title = names_of(track)
    album, _ = place_of(track)
    kind = mixed(album + 77) % 20
    if kind == 0 and edition == 0:
        return {}
    suffix = f" (edition {edition})" if edition else ""
    tags = {"artist": artist, "album artist": artist, "album": album_title + suffix, "date": str(1970 + album % 55),
            "genre": GENRES[album % len(GENRES)], "tracknumber": str(position),
            "totaltracks": str(ALBUM_SIZES[album % len(ALBUM_SIZES)]), "discnumber": "1", "title": title}
    if kind in (1, 2, 3, 4):
        tags |= {"musicbrainz_trackid": identifier(track), "musicbrainz_albumid": identifier(album + 1_000_000_000),
                 "musicbrainz_artistid": identifier(len(artist)), "replaygain_track_gain": f"-{mixed(track) % 900 / 100:.2f} dB"}
    if kind in (5, 6):
        tags["comment"] = LINE * (1 + mixed(track) % 8)
    if kind == 7:
        tags["lyrics"] = (LINE + "\n") * (20 + mixed(track) % 30)
    return tags


def fingerprint(name):
    """Of a name in lower case; sdk/src/file_info.cpp has the rule."""
    raw = name.encode()
    size = len(raw)
    if size >= 4:
        last = min(size, 8) - 4
        head = int.from_bytes(raw[last:last + 4], "little") << 32 | int.from_bytes(raw[:4], "little")
    else:
        head = int.from_bytes(raw, "big")
    head = (head | 0x2020202020202020) ^ size << 56
    return (head * 0x9E3779B97F4A7C15 & 0xFFFFFFFFFFFFFFFF) >> 48


FINGERPRINTS = {}


def info_of(track, edition=0):
    """Version, size of an offset, sound, fingerprints, offsets, codec, fields."""
    tags = tags_of(track, edition)
    parts = [text("FLAC")] + [text(name) + number(1) + text(value) for name, value in tags.items()]
    head = 28 + 2 * len(tags) + 2 * len(parts)
    offsets = list(itertools.accumulate(map(len, parts), initial=head))[1:]
    fingerprints = [FINGERPRINTS.get(name) or FINGERPRINTS.setdefault(name, fingerprint(name)) for name in tags]
    sound = struct.pack("<BBxxIIIId", 2, 2, len(tags), 900, 44100, 2, 150 + track % 200)
    return sound + struct.pack(f"<{len(fingerprints) + len(offsets)}H", *fingerprints, *offsets) + b"".join(parts)


def path_of(track):
    artist, album, position, title = names_of(track)
    return f"{FOLDER}/{artist}/{album}/{position:02} - {title}.flac".encode()


def order_of_scans(tracks):
    """The tracks in the order in which scans have found them: nine tenths in the first, the others in ten more, each by path."""
    def scan_of(track):
        part = mixed(place_of(track)[0] + 5) % 100
        return 0 if part < 90 else part
    return sorted(range(tracks), key=lambda track: (scan_of(track), path_of(track)))


def make_library(binaries, profile, tracks):
    """Makes a profile with so many library tracks and no records."""
    subprocess.run(ostrevan(binaries, profile, "playlist", "list"), check=True, stdout=subprocess.DEVNULL)
    found = list(enumerate(order_of_scans(tracks), 1))
    database = sqlite3.connect(profile / "library.sqlite")
    with database:
        folder = database.execute("INSERT INTO folders(path) VALUES(?)", (FOLDER.encode(),)).lastrowid
        database.executemany("INSERT INTO files(id, folder, path, size, mtime) VALUES(?, ?, ?, ?, ?)",
                             ((file, folder, path_of(i), 30_000_000 + i, 1_600_000_000_000_000_000 + i) for file, i in found))
        database.executemany("INSERT INTO tracks(file, subsong, info) VALUES(?, 0, ?)", ((file, info_of(i)) for file, i in found))
    database.close()


def add_plays(profile):
    """Adds plays and ratings to the records made by the first start. Returns their number."""
    numbers = random.Random(7)
    today = FILETIME_OF_1970 + int(time.time()) * FILETIME_SECOND

    def record():
        added = today - numbers.randrange(20 * 365 * 86400) * FILETIME_SECOND
        plays = int(numbers.expovariate(1 / 8))
        first = numbers.randrange(added, today) if plays else 0
        last = numbers.randrange(first, today) if plays else 0
        rating = numbers.randrange(1, 6) * 256 // 6 + 21 if numbers.random() < 0.3 else 0xFFFFFFFF
        return struct.pack("<QQQQII", plays, first, last, added, rating, 0)

    database = sqlite3.connect(profile / "index.sqlite")
    [(index,)] = database.execute("SELECT id FROM indexes WHERE guid = ?", (STATISTICS_INDEX,))
    keys = [key for (key,) in database.execute("SELECT key FROM records WHERE index_id = ? ORDER BY key", (index,))]
    with database:
        database.executemany("UPDATE records SET data = ? WHERE index_id = ? AND key = ?", ((record(), index, key) for key in keys))
    database.close()
    return len(keys)


def count_records(profile, stars=None):
    """All, or those with a rating."""
    rating = None if stars is None else struct.pack("<I", stars * 256 // 6 + 21)
    database = sqlite3.connect(profile / "index.sqlite")
    [(count,)] = database.execute("SELECT count(*) FROM records WHERE ?1 IS NULL OR substr(data, 33, 4) = ?1", (rating,))
    database.close()
    return count


def edit_tags(profile, tracks, edition):
    """As if another program had edited every file: the library has the new tags, the statistics are still under the old keys."""
    database = sqlite3.connect(profile / "library.sqlite")
    with database:
        database.execute("INSERT INTO edits(path, subsong, info) SELECT path, subsong, info FROM tracks JOIN files ON id = file")
        database.executemany("UPDATE tracks SET info = ? WHERE file = ? AND subsong = 0",
                             ((info_of(i, edition), file) for file, i in enumerate(order_of_scans(tracks), 1)))
    database.close()


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("profile", type=Path)
    parser.add_argument("tracks", type=int)
    parser.add_argument("--bin", type=Path, default=ROOT / "build/bench/bin", help="folder of ostrevan and its components")
    parser.add_argument("--played", action="store_true", help="make plays and ratings too")
    options = parser.parse_args()
    if options.profile.exists():
        sys.exit(f"make_library: {options.profile} exists; name a new folder")
    make_library(options.bin, options.profile, options.tracks)
    if options.played:
        subprocess.run(ostrevan(options.bin, options.profile, "playlist", "list"), check=True)
        print(f"{add_plays(options.profile)} records")


if __name__ == "__main__":
    main()
