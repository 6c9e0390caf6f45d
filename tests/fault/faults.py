"""Every fault there is, in the order of the table."""
from calls import FailingCalls
from clock import Clock
from crowd import Crowd
from damage import Damage
from full_disk import FullDisk
from kills import KillsAtCalls, RandomKills
from permissions import ReadOnly
from small_disk import SmallDisk
from works import WORKS

ALL = [kind(work) for kind in (RandomKills, KillsAtCalls, FailingCalls) for work in WORKS]
ALL += [FullDisk(), SmallDisk(), ReadOnly(), Crowd(), Clock(), Damage()]
