"""What may stand in the library's way when it is loaded, as generators that take the bench and the place. Each prepares
the place and yields; gets the answer of DB_Open, looks at the place before any call writes, and yields again; then it
looks once more, all calls being done. What it yields the second time, if anything, takes the hindrance away.

special_files.py, refusals.py and odd_places.py have them; here is what they share.
"""

import os
from urllib.parse import quote

from children import Failure
from database import difference, is_complete, read_state

NOT_OPEN = {1, 8, 10, 13, 14, 19, 8398}


def expect(condition, what):
    if not condition:
        raise Failure(what)


def expect_closed(answer):
    expect(answer in NOT_OPEN, f"DB_Open answers {answer}")


def expect_rows(bench, path):
    problem = difference(read_state(path), bench.before)
    expect(problem is None, f"the rows are other ones: {problem}")


def expect_complete(path):
    # Read by a name in which nothing counts as a parameter.
    whole = os.path.isfile(path) and is_complete(read_state(quote(os.fsencode(path))))
    expect(whole, f"the database is not complete: {path!r}")


def is_kept(path, content):
    with open(path, "rb") as file:
        return file.read() == content


# Judgements of DB_Open's answer.

def closed(bench, place, answer):
    expect_closed(answer)


def read_only(bench, place, answer):
    expect(answer == 19, f"DB_Open answers {answer}")


def temporary(bench, place, answer):
    """Without an application-data folder a private temporary database is opened, in which there are no tables."""
    expect(answer == 0, f"DB_Open answers {answer}")


def any_answer(bench, place, answer):
    expect(answer == 0 or answer in NOT_OPEN, f"DB_Open answers {answer}")
