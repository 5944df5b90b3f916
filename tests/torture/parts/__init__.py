"""The parts of the bench, in the order in which they run. A new one is a file here and a line below."""

from parts.call_faults import CallFaults
from parts.load_faults import LoadFaults

PARTS = [CallFaults, LoadFaults]
