"""What a call that was struck by a fault may answer and leave: the rule, and where the library's contract departs from it.

The rule: a call that answers as without the fault has done what it does without the fault. One that answers otherwise
has left its rows as before, as after, or as after some of its statements.
"""

from children import Failure
from database import difference, outside
from records import CATEGORIES

_NOT_SHOWN = "whether the statements succeeded does not show in the result"
_FILES_ONLY = "the result is that of the files, not of the row of their folder or playlist"

# Exports that answer success although a statement failed. A trial that meets one counts below the table; what it leaves
# must still be explained by some of the statements.
UNSEEN = {
    **{f"DB_{family}_AddFolder": _NOT_SHOWN for family in CATEGORIES},
    "DB_PLAYERMUSIC_AddPlaylist": _NOT_SHOWN, "DB_PLAYERMUSIC_SetListFilesname": _NOT_SHOWN,
    "DB_PIMLOG_SaveLog": "0, whether each item could be stored or not", "DB_LIB_ClearSyncHistory": "always 0",
    "DB_LIB_PhoneDetected": "the phone's number, whether its main folders could be noted or not",
    **{f"DB_{family}_{suffix}": _FILES_ONLY for family in CATEGORIES
       for suffix in ("SetDeletedFolder", "SetFolderDeleted", "SetAddedFile")},
    "DB_GALLERY_SetFolderDeleted": _FILES_ONLY, "DB_PLAYERMUSIC_SetAddedFile": _FILES_ONLY,
    "DB_PLAYERMUSIC_SetDeletedPlaylist": _FILES_ONLY, "DB_PLAYERMUSIC_DeleteList": _FILES_ONLY,
    "DB_PIM_SetProfile": "the result is that of the new profile, not of the removal of the old one",
}
# A look-up or count that finds no row because it fails is one without rows for these.
# Readers that then give an empty list, but never half of one.
EMPTY = {
    "DB_LIB_GetAllMainFolders", "DB_LIB_GetAllPhones", "DB_PLAYERMUSIC_GetSyncedFiles",
    "DB_PLAYERMUSIC_GetListFilesname", "DB_PLAYERMUSIC_GetPlaylists", "DB_BOOKMARK_GetSyncedMarks",
    "DB_BACKUP_GetAllBackups", "DB_BACKUP_GetPhoneBackups", "DB_PIMLOG_ReadLog",
    *(f"DB_{family}_GetSyncedFiles" for family in CATEGORIES),
}
# Readers that then leave elements, or fields of them, as zero, or that answer 1 after an exception, which is "recorded":
LESS = {"DB_PIM_GetFolders", "DB_PIM_GetItems", "DB_PLAYERMUSIC_IsSyncedFile",
        *(f"DB_{family}_IsSyncedFile" for family in CATEGORIES)}
# Writers that go on as for an unknown phone, bookmark type or flag, with the tables that they then leave otherwise:
UNKNOWN = {
    **{f"DB_{family}_SetFolderDeleted": {f"t{letter}Folder", f"t{letter}File"}
       for family, letter in CATEGORIES.items()},
    "DB_GALLERY_SetFolderDeleted": {"tIFolder", "tIFile", "tVFolder", "tVFile"},
    "DB_PLAYERMUSIC_SetDeletedPlaylist": {"tPFolder", "tPFile"}, "DB_PLAYERMUSIC_DeleteList": {"tPFolder", "tPFile"},
    "DB_LIB_PhoneDetected": {"tPhone", "tSyncContents"}, "DB_PIMLOG_SaveLog": {"tPimLog", "tPimLogItem"},
    "DB_BOOKMARK_SetAddedMark": {"tBFile"}, "DB_BOOKMARK_SetDeletedMark": {"tBFile"},
    "DB_BOOKMARK_SetUpdatedMark": {"tBFile"}, "DB_PIMLOG_SetPimProfile": {"tPimLog", "sqlite_sequence"},
}
_NO_ROWS = "a failed look-up or count is one without rows"


def judge(export, profile, result, outputs, state, columns):
    """None, or what departs from the rule and why it may; Failure for anything else."""
    note = None
    if result == profile.result:
        if export == "DB_BACKUP_AddBackup" and outputs != profile.outputs and outputs[0]["bcID"] == -1:
            return f"{export}: bcID is -1 when refreshing it failed"
        if state != profile.states[-1]:
            note = UNSEEN.get(export) or (_NO_ROWS if export in UNKNOWN else None)
            if not note:
                raise Failure(f"answers {result} as without the fault, but the rows differ: "
                              f"{difference(state, profile.states[-1])}")
        if outputs != profile.outputs:
            if not (export in EMPTY and all(_is_empty(output) for output in outputs) or
                    export in LESS and _is_less(outputs, profile.outputs)):
                raise Failure(f"answers {result} as without the fault, but gives the caller {_first(outputs, profile)}")
            note = _NO_ROWS
    if state not in profile.states:
        aside = UNKNOWN.get(export, ())
        problem = outside(state, profile.states, columns, aside)
        if problem:
            raise Failure(f"answers {result}, and leaves rows that none of its statements explains: {problem}")
        if outside(state, profile.states, columns):
            note = _NO_ROWS
    return f"{export}: {note}" if note else None


def _is_empty(output):
    """A list's count comes before its elements, in a log behind the type."""
    return output == [] or (isinstance(output, tuple) and output[-2] == 0 and not output[-1])


def _is_less(found, expected):
    """Whether everything is as expected or zero, or the list, its count in front, ends earlier."""
    if isinstance(expected, tuple) and len(expected) == 2:
        return found[0] <= expected[0] and _is_less(found[1], expected[1])
    if isinstance(expected, (list, tuple)):
        return not found or (len(found) <= len(expected) and all(map(_is_less, found, expected)))
    if isinstance(expected, dict):
        return all(_is_less(found[name], expected[name]) for name in expected)
    return not found or found == expected


def _first(outputs, profile):
    for found, expected in zip(outputs, profile.outputs):
        if found != expected:
            return f"{found!r:.300} instead of {expected!r:.300}"
    return "something else"
