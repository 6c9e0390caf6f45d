"""Makes small files that are made to do harm, from good ones: hostile_files.make(FOLDER, AUDIO)."""
import struct
import zlib

ASF_EXTENSION = bytes.fromhex("B503BF5F2EA9CF118EE300C00C205365")
ASF_ATTRIBUTES = bytes.fromhex("40A4D0D207E3D21197F000A0C95EA850")


def atom(name, body=b""):
    return struct.pack(">I4s", len(body) + 8, name) + body


def synchsafe(number):
    return bytes(number >> shift & 0x7F for shift in (21, 14, 7, 0))


def frame(name, body, flags=0):
    return struct.pack(">4sIH", name, len(body), flags) + body


def with_frames(frames, sound=b""):
    return b"ID3\3\0\0" + synchsafe(len(frames)) + frames + sound


def nested(count, level):
    """Levels one in another: `level` gives the head of one around so many bytes; each is as long as the others."""
    size = len(level(0))
    return b"".join(level((count - i - 1) * size) for i in range(count))


def chapters(count):
    return nested(count, lambda rest: struct.pack(">4sIH", b"CHAP", rest + 18, 0) + b"c\0" + bytes(16))


def in_asf_header(wma, objects):
    size, count = struct.unpack("<QI", wma[16:28])
    added = b"".join(objects)
    return (wma[:16] + struct.pack("<QI", size + len(added), count + len(objects)) + wma[28:size] + added + wma[size:])


def asf_attributes(attributes):
    body = struct.pack("<H", len(attributes)) + b"".join(
        struct.pack("<H", len(name)) + name + struct.pack("<HH", kind, len(value)) + value for name, kind, value in attributes)
    return ASF_ATTRIBUTES + struct.pack("<Q", len(body) + 24) + body


def ape_tag(items):
    body = b"".join(struct.pack("<II", len(value), 0) + key + b"\0" + value for key, value in items)
    ends = [b"APETAGEX" + struct.pack("<IIII8x", 2000, len(body) + 32, len(items), flags) for flags in (0xA0000000, 0x80000000)]
    return ends[0] + body + ends[1]


def flac_with(flac, *blocks):
    """The stream information, these blocks and the sound."""
    at, last = 4, False
    while not last:
        last, at = flac[at] & 0x80, at + 4 + int.from_bytes(flac[at + 1:at + 4], "big")
    heads = [struct.pack(">I", len(body) | kind << 24 | (i + 1 == len(blocks)) << 31) for i, (kind, body) in enumerate(blocks)]
    return flac[:4] + b"\0" + flac[5:42] + b"".join(h + body for h, (_, body) in zip(heads, blocks)) + flac[at:]


def vorbis_comment(entries):
    return struct.pack("<II", 0, len(entries)) + b"".join(struct.pack("<I", len(e)) + e for e in entries)


def count_one_too_many(m4a):
    at = m4a.index(b"stco") + 8
    return m4a[:at] + struct.pack(">I", struct.unpack(">I", m4a[at:at + 4])[0] + 1) + m4a[at + 4:]


def ogg_in_small_packets(oga, packets):
    """Many empty packets after the first one of an Ogg FLAC file."""
    first = oga.index(b"OggS", 4)
    head = oga[first:first + 14] + oga[14:18]
    pages = [head + struct.pack("<IIB", 1 + i, 0, 255) + bytes(255) for i in range(packets // 255)]
    return oga[:first] + b"".join(pages) + oga[first:]


def files_from(audio):
    """Name, content, and whether `library add` refuses the file. What the line is for stands before it."""
    mp3, m4a, wma, flac, oga, wav = ((audio / name).read_bytes() for name in (
        "id3v24.mp3", "faststart.m4a", "wma.wma", "flac.flac", "oggflac.oga", "pcm.wav"))
    sound = mp3[10 + sum(byte << shift for byte, shift in zip(mp3[6:10], (21, 14, 7, 0))):]
    start = m4a[:struct.unpack(">I", m4a[:4])[0]]
    riff = wav[:12] + wav[12:44] + bytes(4000)
    bomb = zlib.compress(bytes(100_000_000), 9)
    wide = asf_attributes([(b"W\0" * 32767, 0, b"x\0\0\0")])
    one = asf_attributes([(b"P\0i\0c\0\0\0", 1, b"picture" * 2000)])
    yield "deep-moov.m4a", start + nested(60000, lambda rest: struct.pack(">I4s", rest + 8, b"moov")), True  # stack
    yield "deep-stsd.m4a", start + nested(30000, lambda rest: struct.pack(">I4s8x", rest + 16, b"stsd")), True  # stack
    yield "deep-meta.m4a", start + nested(40000, lambda rest: struct.pack(">I4s4x", rest + 12, b"meta")), True  # stack
    yield "many-atoms.m4a", m4a + atom(b"moov", atom(b"free") * 60000), True  # memory: forty times the file
    yield "nested-extensions.wma", in_asf_header(wma, [nested(10000, lambda rest: ASF_EXTENSION + struct.pack(
        "<Q18xI", rest + 46, rest))]), True  # memory: squared
    yield "attributes.wma", in_asf_header(wma, [asf_attributes([(b"", 0, b"")] * 60000)]), True  # memory: a hundredfold
    yield "wide-name.wma", in_asf_header(wma, [wide]), False  # the size of the name wraps when a zero is added
    yield "twice.wma", in_asf_header(wma, [one, one]), False  # attributes double with each edit
    yield "chapters.mp3", with_frames(chapters(30000), sound), False  # stack
    yield "chapters.wav", riff + b"id3 " + struct.pack("<I", 840010) + with_frames(chapters(30000)), True  # stack
    yield "bomb.mp3", with_frames(frame(b"TIT2", struct.pack(">I", 100_000_000) + bomb, 0x80), sound), True  # memory
    yield "frames.mp3", with_frames(frame(b"TIT2", b"\0a") * 20000, sound), True  # memory: forty times the file
    yield "items.mp3", sound + ape_tag([(b"%05d" % i, b"x") for i in range(60000)]), True  # time: squared
    yield "short.mp3", sound + ape_tag([(b"k" * 50, b"v" * 8)]), False  # its "TAG" 128 bytes from the end is no ID3v1 tag
    yield "entries.flac", flac_with(flac, (4, vorbis_comment([b"%05d=x" % i for i in range(60000)]))), True  # time: squared
    yield "cut-comment.flac", flac_with(flac, (4, struct.pack("<II", 0, 5000) + bytes(9))), False  # entries that are not there
    yield "table.m4a", count_one_too_many(m4a), False  # an edit would write into the next atom
    yield "packets.oga", ogg_in_small_packets(oga, 150000), None  # time: squared
    yield "chunks.wav", riff + b"abcd\0\0\0\0" * 50000, True  # memory: twenty times the file
    for name in ("id3v23.mp3", "vorbis.ogg", "opus.opus", "aac.m4a", "wma.wma", "wavpack.wv", "pcm.aiff", "tta.tta", "ape.ape"):
        yield "cut-" + name, (audio / name).read_bytes()[:150], None  # an end in the middle of the headers


def make(folder, audio):
    """Writes the files. Returns their paths, and whether each is refused (None: either)."""
    expected = {}
    for name, content, refused in files_from(audio):
        expected[folder / name] = refused
        (folder / name).write_bytes(content)
    return expected
