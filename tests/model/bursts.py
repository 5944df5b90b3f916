"""Short runs of calls on one phone, path or folder, for states that calls by chance seldom reach."""

import pools
from records import CATEGORIES, FIELDS
from values import units


def _record(random, kind, **given):
    return {**pools.record(random, kind), **given}


def _media(random):
    family = random.choice(sorted(CATEGORIES))
    imei, path = random.choice(pools.IMEIS[:3]), random.choice(pools.PATHS)
    file = _record(random, "SyncedFileRecord", BasePath=path)
    name = f"DB_{family}_"
    return [(name + "AddFolder", (imei, _record(random, "FolderRecord", Path=path))),
            (name + "SetAddedFile", (imei, file)), (name + "SetAddedFile", (imei, file)),
            (name + "SetFolderDeleted", (imei, path, random.choice([1, 1, 0]))),
            (name + "GetFolder", (imei, path, 0)), (name + "GetSyncedFiles", (imei, path, 0)),
            (name + "IsSyncedFile", (imei, file["Path"], 0)), (name + "SetUpdatedFile", (imei, file)),
            (name + "SetFolderSelected", (imei, path, 0)), (name + "IsFolderSelected", (imei, path)),
            ("DB_GALLERY_IsFolderSelected", (imei, path)), ("DB_GALLERY_GetFolders", (imei, 0))]


def _playlist(random):
    imei, path = random.choice(pools.IMEIS[:3]), random.choice(pools.PATHS)
    record = _record(random, "PlaylistRecord", Name=path)
    name = "DB_PLAYERMUSIC_"
    return [(name + "AddPlaylist", (imei, record)), (name + "SetAddedPlaylist", (imei, record)),
            (name + "SetAddedFile", (imei, _record(random, "SyncedFileRecord", BasePath=path))),
            (name + "ClearAll", (imei,)), (name + "AddPlaylist", (imei, record)), (name + "ClearAll", (imei,)),
            (name + "SetDeletedPlaylist", (imei, record)), (name + "DeleteList", (imei, path)),
            (name + "GetPlaylists", (imei, 0)), (name + "GetSyncedFiles", (imei, path, 0))]


def _backup(random):
    imei, path = random.choice(pools.IMEIS[:3]), units(random.choice(["C:\\A", "C:\\Z", "C:\\Music"]))
    record = _record(random, "BackupRecord", Path=path)
    return [("sql", ["INSERT INTO tBackups VALUES (-1, 1, 'C:\\A', 'x', 1, NULL)"]),
            ("DB_BACKUP_AddBackup", (imei, record)), ("DB_BACKUP_AddBackup", (imei, record)),
            ("DB_BACKUP_FileExist", (path,)), ("DB_BACKUP_GetAllBackups", (0,)),
            ("DB_BACKUP_GetPhoneBackups", (imei, 0)), ("DB_BACKUP_DeleteBackup", (random.choice([-1, 1, 2]),))]


def _bookmark(random):
    imei = random.choice(pools.IMEIS[:3])
    record = _record(random, "BookmarkRecord", Path=random.choice(pools.PATHS))
    setting = _record(random, "PhoneSettingRecord", IMEI=imei)
    return [("DB_BOOKMARK_SetAddedMark", (imei, record)), ("DB_BOOKMARK_GetSyncedMark", (imei, record["Path"], 0)),
            ("DB_BOOKMARK_SetUpdatedMark", (imei, record)), ("DB_LIB_SetPhoneSetting", (setting,)),
            ("DB_BOOKMARK_IsSyncedMark", (imei, record["Path"])), ("DB_BOOKMARK_GetSyncedMarks", (imei, 0)),
            ("DB_BOOKMARK_SetDeletedMark", (imei, record["Path"]))]


def _log(random):
    imei, kind = random.choice(pools.IMEIS[:4]), random.choice(pools.TYPES)
    items = [{field: pools.field_value(random, "PimLogItem", field, form) for field, form in FIELDS["PimLogItem"]}
             for _ in range(3)]
    return [("prime", "outlog", 0, {"Type": kind}), ("DB_PIMLOG_SaveLog", (imei, {"Type": kind, "Items": items})),
            ("DB_PIMLOG_ReadLog", (imei, 0)), ("DB_PIMLOG_SetPimProfile", (imei, random.choice(pools.NAMES), kind)),
            ("DB_PIMLOG_GetPimProfile", (imei, 0, kind)), ("DB_PIMLOG_ClearAll", (imei, kind))]


def _pim(random):
    parent, child, item = random.sample(pools.PIM_IDS[:4], 2) + [random.choice(pools.ITEM_IDS[:4])]
    kind = random.choice(pools.TYPES)
    return [("DB_PIM_AddFolder", (_record(random, "PimFolderRecord", PimID=parent, Path="/a", Type=kind), None)),
            ("DB_PIM_AddFolder", (_record(random, "PimFolderRecord", PimID=child, Path="/a/b", Type=kind), parent)),
            ("DB_PIM_AddItem", (_record(random, "PimItemRecord", PimID=item), "/a/b")),
            ("DB_PIM_GetFolder", (0, child)), ("DB_PIM_GetFolders", (0, "", kind, 1)),
            ("DB_PIM_GetItems", (0, random.choice(["", parent]), kind, 1)),
            ("DB_PIM_UpdateItem", (_record(random, "PimItemRecord", PimID=item),)),
            ("DB_PIM_DeleteFolder", (parent,)), ("DB_PIM_GetFolder", (0, child)),
            ("DB_PIM_GetFolders", (0, None, kind, 1)), ("DB_PIM_GetItems", (1, child, kind, 0))]


def burst(random, exports):
    """Steps in their order, some left out; none for exports that are not there."""
    chosen = random.choice([_media, _media, _playlist, _backup, _bookmark, _log, _pim])(random)
    steps = []
    for first, *rest in chosen:
        if random.random() < 0.2:
            continue
        if first in ("sql", "prime"):
            steps.append((first, *rest))
        elif first in exports:
            steps.append(("call", first, *rest))
    return steps
