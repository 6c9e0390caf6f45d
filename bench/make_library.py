#!/usr/bin/env python3
"""Fills a player's library with tracks that have no files: make_library.py PROFILE TRACKS [--bin FOLDER]

The player makes the databases of the profile itself; the rows are written here, in the form of docs/file-formats.md. The tags are
those of a usual collection: albums of twelve tracks, four albums of an artist, some of the names beyond ASCII. Makes the
statistics too, with `--played`: most tracks played, many rated."""

import argparse
import random
import sqlite3
import struct
import subprocess
import sys
import time
from pathlib import Path

from machine import ROOT

TRACKS_OF_ALBUM, ALBUMS_OF_ARTIST = 12, 4
ARTISTS = ["The Paper Lanterns", "Ines Valdåker", "Quiet Harbour", "Old Orchard Band", "Marta Grün", "Nightjar", "The Low Tides",
           "Eleven Bridges"]
ALBUMS = ["Harbour Lights", "Café Étoile", "Songs from the North Road", "Live in the Small Hall", "Second Winter", "A Letter Home"]
TITLES = ["First Ferry", "Gulls over the Roof", "The Other Umbrella", "Trois cuillères", "Last Tram", "Low Water at Evening",
          "Home before Rain"]
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


def tags_of(track, edition):
    """Each edition has other albums, and so other keys."""
    album = track // TRACKS_OF_ALBUM
    artist_number = album // ALBUMS_OF_ARTIST
    artist = f"{ARTISTS[artist_number % len(ARTISTS)]} {artist_number}"
    suffix = f" (edition {edition})" if edition else ""
    return {"artist": artist, "album artist": artist, "album": f"{ALBUMS[album % len(ALBUMS)]} {album}{suffix}",
            "date": str(1970 + album % 55), "genre": GENRES[album % len(GENRES)],
            "tracknumber": str(track % TRACKS_OF_ALBUM + 1), "discnumber": "1", "title": f"{TITLES[track % len(TITLES)]} {track}"}


def info_of(track, edition=0):
    """Version, length, bit rate, sample rate, channels, codec, fields."""
    sound = struct.pack("<Bd", 1, 150 + track % 200) + number(900) + number(44100) + number(2) + text("FLAC")
    return sound + b"".join(text(name) + number(1) + text(value) for name, value in tags_of(track, edition).items())


def path_of(track):
    album = track // TRACKS_OF_ALBUM
    tags = tags_of(track, 0)
    return f"{FOLDER}/{tags['artist']}/{tags['album']}/{track % TRACKS_OF_ALBUM + 1:02} - {tags['title']}.flac".encode()


def make_library(binaries, profile, tracks):
    """Makes a profile with so many library tracks and no records."""
    subprocess.run(ostrevan(binaries, profile, "playlist", "list"), check=True, stdout=subprocess.DEVNULL)
    database = sqlite3.connect(profile / "library.sqlite")
    with database:
        folder = database.execute("INSERT INTO folders(path) VALUES(?)", (FOLDER.encode(),)).lastrowid
        database.executemany("INSERT INTO files(id, folder, path, size, mtime) VALUES(?, ?, ?, ?, ?)",
                             ((i + 1, folder, path_of(i), 30_000_000 + i, 1_600_000_000_000_000_000 + i) for i in range(tracks)))
        database.executemany("INSERT INTO tracks(file, subsong, info) VALUES(?, 0, ?)",
                             ((i + 1, info_of(i)) for i in range(tracks)))
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
        database.execute("INSERT INTO edits SELECT path, subsong, info FROM tracks JOIN files ON id = file")
        database.executemany("UPDATE tracks SET info = ? WHERE file = ? AND subsong = 0",
                             ((info_of(i, edition), i + 1) for i in range(tracks)))
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
