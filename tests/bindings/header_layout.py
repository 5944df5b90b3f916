"""The layout of every record of the C header as the compiler has it: lines of "Record size" and "Record.Field offset".

Every binding prints the same lines of its own records; nothing is laid out by hope.
"""

import re
import subprocess
import tempfile
from pathlib import Path


def records(header):
    """The records of the header and their fields."""
    text = re.sub(r"/\*.*?\*/", "", header.read_text(encoding="utf-8"), flags=re.S)
    found = {}
    for body, name in re.findall(r"typedef struct \w+ \{(.*?)\} (\w+);", text, flags=re.S):
        found[name] = [re.search(r"(\w+)$", field.strip())[1] for field in body.split(";") if field.strip()]
    assert len(found) > 20 and all(found.values()), found
    return found


def layout(header, compiler):
    lines = ["#include <stdio.h>", '#include "kesta_db/kesta_db.h"', "int main(void)", "{"]
    for name, fields in records(header).items():
        lines.append(f'    printf("{name} %zu\\n", sizeof({name}));')
        lines += [f'    printf("{name}.{field} %zu\\n", offsetof({name}, {field}));' for field in fields]
    lines += ["    return 0;", "}", ""]
    with tempfile.TemporaryDirectory() as folder:
        source, program = Path(folder, "layout.c"), Path(folder, "layout")
        source.write_text("\n".join(lines), encoding="ascii")
        include = header.parent.parent
        subprocess.run([compiler, "-std=c11", f"-I{include}", source, "-o", program], check=True)
        output = subprocess.run([program], check=True, capture_output=True, text=True).stdout
    return output.splitlines()
