"""The clock jumps and the time zone changes, between runs and while the player plays."""
import datetime
import shutil
import time
import zoneinfo

from sandbox import RECORD, require
from work_play import Plays

SECOND = 1_000_000_000  # in ns
YEAR = 31_556_952 * SECOND
UNITS_TO_1970 = 116_444_736_000_000_000  # of 100 ns, since 1601
ZONES = ("UTC", "America/Los_Angeles", "Asia/Kathmandu", "Pacific/Apia", "Europe/Dublin", "Africa/Casablanca")
QUERIES = ("%last_played% DURING LAST 1 WEEK", "%added% SINCE 2020-01-01", "%first_played% DURING LAST 100 YEARS",
           "%play_count% GREATER 0")


def offset(random):
    """Mostly common changes: seconds by a time server, hours by hand; sometimes an empty battery or the far future."""
    return random.choice([0, random.randint(-5 * SECOND, 5 * SECOND), random.randint(-86_400, 86_400) * SECOND,
                          random.randint(-56 * YEAR, 0), random.randint(0, 230 * YEAR)])


class Clock:
    name = "clock"

    def cases(self, job):
        return 60

    def run(self, job, index, random):
        work, box = job.ready(Plays), job.box
        before = box.records()
        zones = random.sample(ZONES, 2)
        for zone in zones:
            began, ended, offsets = self.play(box, random, zone)
            for words in [*[["list", query] for query in QUERIES], ["library", "rescan"],
                          ["menu", "Library/Playback Statistics/Show recently played"]]:
                box.must(*words, preload=True, zone=zone)
        box.control.set()
        job.fault = f"{zones}, in the end {offsets}"
        job.count("rounds of plays")
        for key, now in box.records().items():
            count, first, last, added, *rest = RECORD.unpack(now)
            was = RECORD.unpack(before[key])
            require([count, first, added, *rest] == [was[0] + 2 * work.rounds, was[1], was[3], *was[4:]],
                    f"{was} became {now}")
            time_of_play = (last - UNITS_TO_1970) * 100
            require(any(began - SECOND <= time_of_play - by <= ended + SECOND for by in offsets), f"{last} never was the time")
        self.check_text(box, random.choice(ZONES))

    @staticmethod
    def play(box, random, zone):
        """Plays while the clock jumps; returns the real times, in ns, and the offsets of the clock."""
        offsets = [offset(random)]
        box.control.set(clock_offset=offsets[0])
        # A zone file that is exchanged meanwhile, as for a travelling user.
        file = box.root / "zone"
        shutil.copy(f"/usr/share/zoneinfo/{zone}", file)
        began = time.time_ns()
        player = box.start("play", "--audio", "null", "--fast", *[box.music] * Plays.rounds, preload=True,
                           zone=random.choice([zone, f":{file}"]))
        for line in player.stdout:
            if random.random() < 0.5:
                offsets.append(offset(random))
                box.control.put("clock_offset", offsets[-1])
                shutil.copy(f"/usr/share/zoneinfo/{random.choice(ZONES)}", file)
        result = box.finish(player)
        require(result.status == 0, f"it ended with {result.status}: {result.err}")
        return began, time.time_ns(), offsets

    @staticmethod
    def check_text(box, zone):
        """Displayed times are the stored ones in the current zone."""
        records = {f"{key:016x}": RECORD.unpack(data) for key, data in box.records().items()}
        for track in box.tracks(zone=zone):
            seconds = (records[track["key"]][2] - UNITS_TO_1970) // 10_000_000
            wanted = datetime.datetime(1970, 1, 1, tzinfo=datetime.timezone.utc) + datetime.timedelta(seconds=seconds)
            wanted = f"{wanted.astimezone(zoneinfo.ZoneInfo(zone)):%Y-%m-%d %H:%M:%S}"
            require(track["last_played"] == wanted, f"shown in {zone} as {track['last_played']}, and is {wanted}")
