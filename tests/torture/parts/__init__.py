"""The parts of the bench, in the order in which they run. A new one is a file here and a line below."""

from parts.call_faults import CallFaults
from parts.damaged_files import DamagedFiles
from parts.damaged_mutexes import DamagedMutexes
from parts.kills import Kills
from parts.load_faults import LoadFaults
from parts.neighbours import Neighbours
from parts.power_loss import PowerLoss
from parts.random_calls import RandomCalls
from parts.random_kills import RandomKills
from parts.special_files import SpecialFiles
from parts.windows_kills import WindowsKills
from parts.windows_neighbours import WindowsNeighbours

PARTS = [CallFaults, LoadFaults, PowerLoss, Kills, RandomKills, WindowsKills, RandomCalls, DamagedFiles, SpecialFiles,
         Neighbours, DamagedMutexes, WindowsNeighbours]
