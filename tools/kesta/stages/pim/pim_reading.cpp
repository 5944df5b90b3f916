#include "stages/pim/pim_reading.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <string_view>

#include "base/text.h"

namespace kesta {

const std::vector<std::string>& FilesOf(PimKind kind, const SyncOptions& options)
{
    return kind == PimKind::kContacts ? options.contacts : options.calendars;
}

bool ReadPimLog(const std::optional<PimJournal>& journal, Session& session, PimWork& work)
{
    work.storedLog = ReadPimPhoneLog(session.database, session.imei, work.kind);
    work.logIsOurs = work.storedLog.stored == 0 || work.storedLog.profile == PimLogProfile(work.kind);
    if (!work.logIsOurs && !journal) {
        session.report.fail(std::string(TitleOf(work.kind)),
                            "another program keeps this phone's log of them; they are left alone");
        return false;
    }
    const std::vector<PimLogRow>& stored = work.storedLog.rows;
    work.log = CurrentPimRows(journal ? journal->rowsOf(work.kind).value_or(stored) : stored);
    return true;
}

void ReadPimSources(PimAim aim, Session& session, PimWork& work)
{
    std::set<std::string> seen;
    for (const std::string& given : FilesOf(work.kind, session.options)) {
        std::string path;
        if (!os::CanonicalPath(given, path).ok()) {
            path = os::AbsolutePath(given);
        }
        if (!seen.insert(path).second) {
            continue;
        }
        PimSource& source = work.sources.emplace_back();
        source.path = path;
        if (aim == PimAim::kForget) {
            source = {path, PimSourceId(work.kind, path), true, true, {}, {}, false, 0};
            continue;
        }
        if (os::LiesIn(path, session.folder.root())) {
            source.problem = "it lies on the phone itself";
        } else if (!IsValidUtf8(path)) {
            source.problem = "its path is not valid text";
        } else {
            source = ReadPimSource(work.kind, path);
        }
        session.report.leaveOut(TitleOf(work.kind), "that are no entries", source.leftOut);
        if (!source.complete) {
            session.report.fail(path, source.problem + "; nothing of it is removed");
        }
    }
}

namespace {

using Digests = std::set<std::string_view>;

bool HoldsAll(const Digests& digests, const std::set<std::string>& of)
{
    return std::all_of(of.begin(), of.end(), [&](const std::string& digest) { return digests.contains(digest); });
}

// What the store and the phone have of the file.
std::set<std::string> KnownDigests(kesta_db::PimStore& store, const std::string& sourceId, const PimWork& work)
{
    std::set<std::string> known;
    for (const PimFolder& folder : store.folders(TypeOf(work.kind), PimRootFolder(work.kind).id)) {
        if (!IsOfPimSource(folder.id, sourceId)) {
            continue;
        }
        for (PimItem& item : store.items(folder.id, TypeOf(work.kind))) {
            known.insert(ReadStored(work.kind, std::move(item)).digest);
        }
    }
    for (const PimLogRow& row : work.log) {
        if (IsOfPimSource(FolderOfPimEntry(work.kind, row.guid), sourceId)) {
            known.insert(FromLuid(row.luid).digest);
        }
    }
    return known;
}

}  // namespace

void AddMovedPimSources(kesta_db::PimStore& store, Session& session, PimWork& work)
{
    const SyncSources& before = session.options.remembered;
    std::vector<PimSource> moved;
    for (const std::string& path : work.kind == PimKind::kContacts ? before.contacts : before.calendars) {
        const auto isPath = [&](const PimSource& source) { return source.path == path; };
        if (std::any_of(work.sources.begin(), work.sources.end(), isPath) || !os::IsMissing(path)) {
            continue;
        }
        const std::string id = PimSourceId(work.kind, path);
        const std::set<std::string> known = KnownDigests(store, id, work);
        for (const PimSource& source : work.sources) {
            Digests digests;
            for (const PimSourceFolder& folder : source.folders) {
                for (const PimEntry& entry : folder.entries) {
                    digests.insert(entry.digest);
                }
            }
            if (source.complete && !known.empty() && HoldsAll(digests, known)) {
                session.report.note(fmt::format("{} is {} now.", Printable(path), Printable(source.path)));
                moved.push_back({path, id, true, true, {}, {}, true, 0});
                break;
            }
        }
    }
    work.sources.insert(work.sources.begin(), moved.begin(), moved.end());
}

void ReadPimStore(kesta_db::PimStore& store, PimWork& work)
{
    const std::string root = PimRootFolder(work.kind).id;
    for (const PimFolder& folder : store.folders(TypeOf(work.kind))) {
        work.rootIsStored = work.rootIsStored || folder.id == root;
    }
    if (!work.rootIsStored) {
        return;
    }
    for (PimFolder& folder : store.folders(TypeOf(work.kind), root)) {
        StoredPimFolder& stored = work.stored.emplace_back();
        stored.folder = std::move(folder);
        const bool isWanted = std::any_of(work.sources.begin(), work.sources.end(), [&](const PimSource& source) {
            return source.readable && IsOfPimSource(stored.folder.id, source.id);
        });
        if (!isWanted) {
            continue;
        }
        for (PimItem& item : store.items(stored.folder.id, TypeOf(work.kind))) {
            stored.entries.push_back(ReadStored(work.kind, std::move(item)));
        }
    }
}

}  // namespace kesta
