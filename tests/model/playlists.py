"""DB_PLAYERMUSIC_*: playlists, their synced files and their file names."""

import engine as sql
from core import FAILURE, need
from gallery import Gallery
from values import escaped, joined, plain, units

UNCONFIRMED, DELETED_ON_PHONE = 3, 4
NOT_ON_PHONE = "([IdInPhone] ISNULL OR [IdInPhone] = '(null)')"


class Playlists(Gallery):
    # ---- playlists

    def _attempt(self, name, text, done, failed, error, quiet=()):
        """One step of AddPlaylist; nothing locks the file here, so no attempt is ever busy."""
        self.trace.line(f"Information in {name}(), Exec SQL: {text}.")
        code = self.db.exec(joined(text))
        if code == sql.OK:
            self.trace.line(f"Information in {name}(), {done}.")
            return
        self.trace.line(f"Information in {name}(), {failed}.")
        if code not in quiet:
            self.trace.line(f"Error in {name}(), {error}.")

    def DB_PLAYERMUSIC_AddPlaylist(self, imei, record):
        name = "DB_PLAYERMUSIC_AddPlaylist"

        def enter():
            need(record)
            return f"IMEI: {plain(imei)}, Name: {plain(record['Name'])}, Type: {record['Type']}"

        def body():
            phone = self.known_phone(imei)
            if phone is None:
                return FAILURE
            self.changed[1000] = 1
            path, digest = escaped(record["Name"]), plain(record["Digest"])
            count, size, total, sized = (record[field] for field in ("Count", "Size", "TotalSize", "Sized"))
            news = (f"[Digest] = '{digest}', [Count] = {count}, [Size] = {size}, [TotalSize] = {total}, "
                    f"[Sized] = {sized} WHERE [PhoneID] = {phone} AND [Path] = '{path}'")
            self._attempt(name, f"UPDATE tPFolder SET [Flag] = 0, {news} AND [Flag] = 3 AND [IdInPhone] NOTNULL "
                          "AND [IdInPhone] <> '(null)';", "Updated synced record", "Not synced record or error",
                          "Update synced record failed")
            self._attempt(name, f"UPDATE tPFolder SET [Flag] = 1, {news} AND [Flag] = 3 AND {NOT_ON_PHONE};",
                          "Updated unsynced record", "Not unsynced record or error", "Update unsynced record failed")
            self._attempt(name, f"UPDATE tPFolder SET {news};", "Updated information", "Update information error",
                          "Update information failed")
            self._attempt(name, "INSERT INTO tPFolder ([PhoneID], [Path], [Digest], [Type], [Flag], [Count], [Size], "
                          f"[TotalSize], [Sized], [AddTime]) VALUES ({phone}, '{path}', '{digest}', {record['Type']}, "
                          f"1, {count}, {size}, {total}, {sized}, '{self.now()}');", "New playlist inserted",
                          "Not new playlist or error", "Insert new playlist failed", (sql.CONSTRAINT,))
            return 0
        return self.frame(name, enter, FAILURE, body)

    def DB_PLAYERMUSIC_ClearAll(self, imei):
        name = "DB_PLAYERMUSIC_ClearAll"

        def body():
            phone = self.known_phone(imei)
            if phone is None:
                return FAILURE
            return self.run(name, 2, "UPDATE tPFolder SET [Flag] = %d WHERE [PhoneID] = %d AND [Flag] <> %d;",
                            UNCONFIRMED, phone, DELETED_ON_PHONE)
        return self.frame(name, f"IMEI: {plain(imei)}", FAILURE, body, with_exit=False)

    def DB_PLAYERMUSIC_GetPlaylists(self, imei, target):
        name = "DB_PLAYERMUSIC_GetPlaylists"
        prepared = True

        def read(item, row):
            item["RowId"] = sql.int64(row[0])
            for field, value in zip(("Name", "Digest", "IdInPhone"), row[1:]):
                self.read_text(item, field, value)
            for field, value in zip(("Type", "Flag", "Count", "Size", "TotalSize", "Sized", "Selected"), row[4:]):
                item[field] = (sql.int64 if "Size" in field and field != "Sized" else sql.int32)(value)

        def body():
            nonlocal prepared
            self.empty(target)
            phone = self.known_phone(imei)
            if phone is None:
                return FAILURE
            rows = self.query("SELECT COUNT(*) FROM tPFolder WHERE [PhoneID] = %d;", phone)
            if rows:
                self.allocate(target, sql.int32(rows.first()[0]))
                rows = self.query("SELECT ROWID, [Path], [Digest], [IdInPhone], [Type], [Flag], [Count], [Size], "
                                  "[TotalSize], [Sized], [Selected] FROM tPFolder WHERE [PhoneID] = %d;", phone)
            if rows is None:
                self.error(name, 1)
                prepared = False
                return FAILURE
            return self.fill(target, rows, read)
        result = self.frame(name, f"IMEI: {plain(imei)}", FAILURE, body, with_exit=False)
        if prepared:
            self.trace.line(f"Exit {name}() with {result}.")
        return result

    def DB_PLAYERMUSIC_SetAddedPlaylist(self, imei, record):
        name = "DB_PLAYERMUSIC_SetAddedPlaylist"

        def enter():
            need(record)
            return f"IMEI: {plain(imei)}, Name: {plain(record['Name'])}, IdInPhone: {plain(record['IdInPhone'])}"

        def body():
            phone = self.known_phone(imei)
            if phone is None:
                return FAILURE
            return self.run(name, 2, "UPDATE tPFolder SET [Flag] = %d, [IdInPhone] = '%s' WHERE [PhoneID] = %d "
                            "AND [Path] = '%s';", 0, escaped(record["IdInPhone"]), phone, escaped(record["Name"]))
        return self.frame(name, enter, FAILURE, body)

    def DB_PLAYERMUSIC_DeleteList(self, imei, list_name):
        name = "DB_PLAYERMUSIC_DeleteList"

        def body():
            phone = self.known_phone(imei)
            if phone is None:
                return FAILURE
            path = escaped(list_name)
            flag = self.path_flag(phone, "tPFolder", list_name)
            row = "DELETE FROM tPFolder WHERE [PhoneID] = %d AND [Path] = '%s'"
            files = (name, 1, "DELETE FROM tPFile WHERE [PhoneID] = %d AND [BasePath] = '%s';", phone, path)
            if flag in (1, 4):
                self.run(name, 1, row + ";", phone, path)
                return self.run(*files)
            if flag in (0, 2):
                return self.set_folder_state(imei, "tPFolder", list_name, "[Flag]", UNCONFIRMED)
            if flag != UNCONFIRMED:
                return FAILURE
            before = self.db.total_changes()
            deleted = self.run(name, 1, row + " AND " + NOT_ON_PHONE + ";", phone, path)
            if self.db.total_changes() == before:
                return deleted
            return self.run(*files) or deleted
        return self.frame(name, f"szName: {plain(list_name)}", FAILURE, body)

    # ---- the thin exports

    def PLAYERMUSIC_any(self, name, family, suffix, args):
        return self.thin(name, lambda: getattr(self, "_" + suffix)(name, *args))

    def _IsListSelected(self, name, imei, path):
        self.enter(name, imei, path, "Name")
        return self.is_folder_selected(imei, "vPFolder", path)

    def _SetListSelected(self, name, imei, path, selected):
        self.enter(name, imei, path, "Name", f", Selected: {selected}")
        return self.set_folder_selected(imei, "tPFolder", path, selected)

    def _SetUpdatedPlaylist(self, name, imei, record):
        need(record)
        self.enter(name, imei, record["Name"], "Name")
        return self.set_folder_state(imei, "tPFolder", record["Name"], "[Flag]", 0)

    def _SetDeletedPlaylist(self, name, imei, record):
        need(record)
        self.enter(name, imei, record["Name"], "Name")
        return self.set_deleted_folder(imei, "tPFolder", record["Name"], 1)

    def _IsSyncedFile(self, name, imei, path, record):
        self.enter(name, imei, path)
        return self.is_synced_file(imei, "vPFile", path, record)

    def _GetSyncedFiles(self, name, imei, list_name, target):
        self.empty(target)
        self.enter(name, imei, list_name, "List")
        return self.get_synced_files(imei, "vPFile", None, target)

    def _SetAddedFile(self, name, imei, record):
        self.enter_with_record(name, imei, record)
        return self.set_added_file(imei, "tPFile", record)

    def _SetDeletedFile(self, name, imei, record):
        self.enter_with_record(name, imei, record)
        return self.set_deleted_file(imei, "tPFile", record)

    def _SetUpdatedFile(self, name, imei, record):
        self.enter_with_record(name, imei, record)
        return self.set_updated_file(imei, "tPFile", record)

    # ---- file names

    def DB_PLAYERMUSIC_SetListFilesname(self, imei, list_name, names):
        name = "DB_PLAYERMUSIC_SetListFilesname"

        def body():
            need(names)
            if not self.db:
                return FAILURE
            self.run(name, 1, "DELETE FROM tPFilename WHERE [IMEI] = '%s' AND [Listname] = '%s';", plain(imei),
                     escaped(list_name))
            for file_name in reversed(names):
                self.run(name, 2, "INSERT INTO tPFilename ([IMEI], [Listname], [Filename]) VALUES ('%s', '%s', '%s');",
                         plain(imei), escaped(list_name), escaped(file_name))
            return 0
        return self.frame(name, f"ListName: {plain(list_name)}", FAILURE, body)

    def DB_PLAYERMUSIC_GetListFilesname(self, imei, list_name, names):
        name = "DB_PLAYERMUSIC_GetListFilesname"

        def body():
            need(names)
            if not self.db:
                return FAILURE
            rows = self.query("SELECT [Filename] FROM tPFilename WHERE [IMEI] = '%s' AND [Listname] = '%s';",
                              plain(imei), escaped(list_name))
            if rows is None:
                self.error(name, 3)
                return FAILURE
            for row in rows.rows:
                text = units(self.db.text(row[0])) or ""
                if text:
                    # Handed over to the caller: no DELETE line ever follows.
                    names.setdefault("allocations", []).append(self.trace.new())
                names["value"].append(text)
            return 0
        return self.frame(name, f"Listname: {plain(list_name)}", FAILURE, body)
