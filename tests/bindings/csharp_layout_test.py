"""Compares what the C# records say of their layout, printed by the command given, with the header."""

import os
import subprocess
import sys
from pathlib import Path

import header_layout

header = Path(__file__).resolve().parents[2] / "include/kesta_db/kesta_db.h"
ours = sorted(subprocess.run(sys.argv[1:], check=True, capture_output=True, text=True).stdout.splitlines())
theirs = sorted(header_layout.layout(header, os.environ.get("CC", "cc")))
for line in sorted(set(ours) ^ set(theirs)):
    print("only in", "C#:" if line in ours else "the header:", line)
sys.exit(0 if ours == theirs else 1)
