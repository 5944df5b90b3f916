// One lock for all processes: who waits for whom, and what becomes of it when its holder dies.
#include <algorithm>
#include <future>
#include <tuple>
#include <type_traits>

#include "support/api_test.h"
#include "support/helper_process.h"

namespace kesta::test {
namespace {

using std::future_status;
using std::chrono::seconds;
using ::testing::ElementsAre;

/// `holder` is in the middle of a call, and stays there for as long as `locker` holds the file.
class MutualExclusion : public ApiTest {
protected:
    void SetUp() override
    {
        ASSERT_EQ(holder.ask({"trace"}), "ok");
        ASSERT_EQ(holder.ask({"load"}), "ok");
        ASSERT_EQ(locker.ask({"lock", "EXCLUSIVE", data.databasePath().string()}), "ok");
        ASSERT_EQ(holder.ask({"begin", "DB_LIB_PhoneDetected", "351111", "Held"}), "ok");
        ASSERT_EQ(holder.ask({"await", "Database busy, try again."}), "ok");
        (void)trace.take();
    }

    std::future<int32_t> openInAThread()
    {
        return std::async(std::launch::async, [this] { return lib.DB_Open(); });
    }

    HelperProcess locker;
    HelperProcess holder;
};

TEST_F(MutualExclusion, CallInAnotherProcess_WaitsUntilTheFirstIsOver)
{
    std::future<int32_t> waiting = openInAThread();
    EXPECT_EQ(waiting.wait_for(seconds(1)), future_status::timeout);
    EXPECT_THAT(trace.take(), ElementsAre());  // not even its entry line

    EXPECT_EQ(locker.ask({"unlock"}), "ok");
    EXPECT_EQ(holder.ask({"end"}), "1");
    EXPECT_EQ(waiting.get(), 0);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_Open().", "Exit DB_Open() with 0."));
    EXPECT_EQ(sql.text("SELECT [IMEI] FROM tPhone"), "351111");
}

/// An argument that no export minds, for each kind of parameter.
template <class Parameter>
struct Harmless;

template <>
struct Harmless<int32_t> {
    int32_t value = 0;
};

template <>
struct Harmless<const DbChar*> {
    Text text = W("351111");
    const DbChar* value = text;
};

template <>
struct Harmless<DbChar*> {
    DbChar buffer[64] = {};
    DbChar* value = buffer;
};

template <class Record>
struct Harmless<Record*> {
    std::remove_const_t<Record> record = {};
    Record* value = &record;
};

template <class... Parameters>
std::future<int32_t> CallInAThread(int32_t (*call)(Parameters...))
{
    return std::async(std::launch::async, [call] {
        std::tuple<Harmless<Parameters>...> arguments;
        return std::apply([call](auto&... each) { return call(each.value...); }, arguments);
    });
}

/// The exports that trace their entry before the lock is taken.
std::vector<std::string> ThinExports()
{
    std::vector<std::string> names;
    for (const char* family : {"MUSIC", "IMAGE", "VIDEO", "DOCUMENT"}) {
        for (const char* operation :
             {"AddFolder", "ClearAll", "GetFolders", "GetFolder", "IsFolderSelected", "SetFolderSelected",
              "IsFolderDeleted", "SetFolderDeleted", "IsSyncedFile", "GetSyncedFiles", "SetAddedFile", "SetDeletedFile",
              "SetUpdatedFile", "SetDeletedFolder"}) {
            names.push_back(std::string("DB_") + family + "_" + operation);
        }
    }
    for (const char* operation :
         {"GetFolders", "IsFolderSelected", "SetFolderSelected", "IsFolderDeleted", "SetFolderDeleted"}) {
        names.push_back(std::string("DB_GALLERY_") + operation);
    }
    for (const char* operation :
         {"IsListSelected", "SetListSelected", "SetUpdatedPlaylist", "SetDeletedPlaylist", "IsSyncedFile",
          "GetSyncedFiles", "SetAddedFile", "SetDeletedFile", "SetUpdatedFile"}) {
        names.push_back(std::string("DB_PLAYERMUSIC_") + operation);
    }
    std::sort(names.begin(), names.end());
    return names;
}

TEST_F(MutualExclusion, EveryExportAtOnce_WaitsForTheLockAndOnlyThinOnesHaveTracedTheirEntry)
{
    std::vector<std::future<int32_t>> calls;
#define KESTA_EXPORT(name, ordinal) calls.push_back(CallInAThread(lib.name));
#include "support/export_list.inc"
#undef KESTA_EXPORT
    const std::vector<std::string> thin = ThinExports();
    for (const std::string& name : thin) {
        const bool traced = trace.waitFor("Enter " + name + "(", seconds(10));
        EXPECT_TRUE(traced) << name;
        if (!traced) {
            break;
        }
    }
    std::future<int32_t> waiting = openInAThread();
    EXPECT_EQ(waiting.wait_for(seconds(1)), future_status::timeout);

    std::vector<std::string> entered;
    for (const std::string& line : trace.take()) {
        if (line == "Memory NEW.") {
            continue;  // the list of DB_LIB_MainFoldersChanged, which takes no lock
        }
        EXPECT_TRUE(line.starts_with("Enter ")) << line;
        entered.push_back(line.substr(6, line.find('(') - 6));
    }
    std::sort(entered.begin(), entered.end());
    EXPECT_EQ(entered, thin);
    const auto returned = [](std::future<int32_t>& call) { return call.wait_for(seconds(0)) == future_status::ready; };
    EXPECT_EQ(std::count_if(calls.begin(), calls.end(), returned), 2);  // DB_Close is the other one

    EXPECT_EQ(locker.ask({"unlock"}), "ok");
    EXPECT_EQ(holder.ask({"end"}), "1");
    for (std::future<int32_t>& call : calls) {
        call.wait();
    }
    EXPECT_EQ(waiting.get(), 0);
}

TEST_F(MutualExclusion, ChangeFlags_AreReadWithoutWaiting)
{
    MainFolderList list = {};
    std::future<int32_t> reading = std::async(std::launch::async, [&] { return lib.DB_LIB_MainFoldersChanged(&list); });
    EXPECT_EQ(reading.wait_for(seconds(5)), future_status::ready);
    EXPECT_EQ(locker.ask({"unlock"}), "ok");
    EXPECT_EQ(reading.get(), 0);
    EXPECT_EQ(holder.ask({"end"}), "1");
    release(list);
}

TEST_F(MutualExclusion, HolderKilledInACall_TheNextCallerGoesOn)
{
    std::future<int32_t> waiting = openInAThread();
    EXPECT_EQ(waiting.wait_for(seconds(1)), future_status::timeout);

    holder.kill();
    EXPECT_EQ(waiting.wait_for(seconds(10)), future_status::ready);
    EXPECT_EQ(waiting.get(), 0);

    EXPECT_EQ(locker.ask({"unlock"}), "ok");
    EXPECT_GE(lib.DB_LIB_PhoneDetected(W("352222"), W("Next")), 1);
    EXPECT_EQ(sql.text("SELECT [IMEI] FROM tPhone"), "352222");
}

TEST_F(MutualExclusion, HolderKilledBeforeAnybodyWaits_LaterCallsOfAllProcessesWork)
{
    holder.kill();
    EXPECT_EQ(locker.ask({"unlock"}), "ok");
    HelperProcess other;
    EXPECT_EQ(other.ask({"load"}), "ok");
    EXPECT_EQ(other.ask({"call", "DB_LIB_PhoneDetected", "352222", "Other"}), "1");
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("353333"), W("This")), 2);
    EXPECT_EQ(other.ask({"call", "DB_LIB_PhoneDetected", "353333", "This"}), "2");
}

TEST_F(MutualExclusion, ProcessEndsWhileAThreadIsInACall_NeitherCrashesNorHangs)
{
    holder.tell({"exit", "7"});
    EXPECT_EQ(holder.wait(seconds(30)), 7);
    EXPECT_EQ(locker.ask({"unlock"}), "ok");
    EXPECT_EQ(lib.DB_Open(), 0);
}

}  // namespace
}  // namespace kesta::test
