#!/usr/bin/env python3
"""Writes the notices that packages carry: what is built in, with its licences, out of the sources it is built from.

    notices.py --deps FOLDER [--windows | --debian] [OUTPUT]    FOLDER: where the build fetches to, as KESTA_DEPS_DIR

With --debian licences that every Debian system has are named by their place, and zlib is the system's.
"""

import argparse
import sys
from pathlib import Path

import components


APACHE = """Copyright 2010 Google Inc. All Rights Reserved.

Licensed under the Apache License, Version 2.0. On Debian systems its text lies in
/usr/share/common-licenses/Apache-2.0.
"""


def notices(deps, windows, debian):
    parts = ["# Third-party notices\n\nWhat others wrote and what the library or the client `kesta` is built from.\n"]
    for component in components.COMPONENTS:
        if component.windows_only and not windows or component.name == "zlib" and (windows or debian):
            continue
        on_every_debian = debian and component.licence == "Apache-2.0"
        text = (APACHE if on_every_debian else components.licence_text(component, deps)).strip("\n")
        assert len(text) > 100, component.name
        parts.append(f"\n## {component.name} {components.version(component, deps)} ({component.used_by})\n\n"
                     + "".join(f"    {line}".rstrip() + "\n" for line in text.splitlines()))
    return "".join(parts)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--deps", type=Path, required=True)
    parser.add_argument("--windows", action="store_true")
    parser.add_argument("--debian", action="store_true")
    parser.add_argument("output", type=Path, nargs="?")
    options = parser.parse_args()
    components.check()
    text = notices(options.deps, options.windows, options.debian)
    if options.output:
        options.output.write_text(text, encoding="utf-8")
    else:
        sys.stdout.write(text)


if __name__ == "__main__":
    main()
