#include "client_fixture.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <random>
#include <set>
#include <sstream>

namespace kesta::test {
namespace {

std::string Read(const fs::path& file)
{
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

bool IsOwn(const fs::path& path)
{
    return Utf8(path.filename()).starts_with(".kesta-");
}

bool IsInTrash(const fs::path& path)
{
    return std::find(path.begin(), path.end(), ".kesta-trash") != path.end();
}

}  // namespace

fs::path Path(const std::string& utf8)
{
    return {std::u8string(utf8.begin(), utf8.end())};
}

std::string Utf8(const fs::path& path)
{
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

ClientTest::ClientTest()
{
    std::random_device random;
    work_ = fs::canonical(fs::temp_directory_path()) / ("kesta-client-" + std::to_string(random()));
    fs::create_directories(work_ / "pc");
    fs::create_directories(work_ / "phone");
}

ClientTest::~ClientTest()
{
    std::error_code ignored;
    for (fs::recursive_directory_iterator at(work_, ignored); at != fs::recursive_directory_iterator();
         at.increment(ignored)) {
        if (at->is_directory(ignored)) {
            fs::permissions(at->path(), fs::perms::owner_all, ignored);
        }
    }
    fs::remove_all(work_, ignored);
}

std::string ClientTest::pc(const std::string& path) const
{
    return Utf8((work_ / "pc" / Path(path)).make_preferred());
}

std::string ClientTest::phone(const std::string& path) const
{
    return Utf8((work_ / "phone" / Path(path)).make_preferred());
}

void ClientTest::givenFile(const std::string& path, const std::string& contents)
{
    const fs::path file = Path(pc(path));
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << contents;
    ASSERT_EQ(fs::file_size(file), contents.size()) << path;
}

void ClientTest::changeFile(const std::string& path, const std::string& contents)
{
    const auto before = fs::last_write_time(Path(pc(path)));
    givenFile(path, contents);
    fs::last_write_time(Path(pc(path)), before + std::chrono::seconds(10));
}

void ClientTest::removeFile(const std::string& path)
{
    ASSERT_TRUE(fs::remove(Path(pc(path)))) << path;
}

Ended ClientTest::client(const std::vector<std::string>& arguments, const Environment& environment)
{
    return ClientProcess(work_, arguments, environment).wait();
}

std::vector<std::string> ClientTest::syncArguments(std::vector<std::string> arguments) const
{
    arguments.insert(arguments.begin(), {"sync", "--phone", phone(), "--imei", kImei});
    return arguments;
}

Ended ClientTest::sync(std::vector<std::string> arguments, const Environment& environment)
{
    return client(syncArguments(std::move(arguments)), environment);
}

Ended ClientTest::meet(std::vector<std::string> arguments)
{
    const fs::path noLists = work() / "no lists";
    fs::create_directories(noLists);
    arguments.insert(arguments.end(), {"--playlists", Utf8(noLists)});
    return sync(std::move(arguments));
}

nlohmann::json ClientTest::recorded(const std::string& category)
{
    const Ended run = client({"files", "--imei", kImei, "--category", category, "--json"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return nlohmann::json::parse(run.out).at("files");
}

nlohmann::json ClientTest::status()
{
    const Ended run = client({"status", "--imei", kImei, "--json"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return nlohmann::json::parse(run.out).at("phones").at(0);
}

fs::path ClientTest::note(const std::string& name) const
{
    return data().applicationData() / "NORVIK" / "NORVIK Sync" / "Client" / name;
}

std::map<std::string, std::string> ClientTest::phoneFiles() const
{
    std::map<std::string, std::string> files;
    const fs::path root = Path(phone());
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (entry.is_regular_file() && !IsOwn(entry.path()) && !IsInTrash(entry.path())) {
            std::u8string name = entry.path().lexically_relative(root).generic_u8string();
            files.emplace(std::string(name.begin(), name.end()), Read(entry.path()));
        }
    }
    return files;
}

std::vector<std::string> ClientTest::phonePaths() const
{
    std::vector<std::string> paths;
    for (const auto& [path, contents] : phoneFiles()) {
        paths.push_back(path);
    }
    return paths;
}

std::vector<std::string> ClientTest::ownFiles() const
{
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(Path(phone()))) {
        if (IsOwn(entry.path()) && entry.path().filename() != ".kesta-phone" && !IsInTrash(entry.path())) {
            names.push_back(Utf8(entry.path().filename()));
        }
    }
    return names;
}

std::map<std::string, std::string> ClientTest::trash() const
{
    std::map<std::string, std::string> files;
    const fs::path root = Path(phone(".kesta-trash"));
    std::error_code none;
    for (const auto& entry : fs::recursive_directory_iterator(root, none)) {
        if (entry.is_regular_file()) {
            // Behind the day.
            const std::string path = Utf8(entry.path().lexically_relative(root).generic_u8string());
            files.emplace(path.substr(path.find('/') + 1), Read(entry.path()));
        }
    }
    return files;
}

void ClientTest::expectInOrder(const std::string& category, const std::string& below)
{
    const auto onPhone = phoneFiles();
    std::set<std::string> places;
    for (const auto& row : recorded(category)) {
        const auto place = row.at("phone_path").get<std::string>();
        const fs::path source = Path(row.at("path").get<std::string>());
        EXPECT_TRUE(places.insert(place).second) << place << " is recorded twice";
        ASSERT_TRUE(onPhone.contains(place)) << place << " is recorded, but not on the phone";
        ASSERT_TRUE(fs::exists(source)) << place << " is recorded, but gone from the PC";
        EXPECT_EQ(onPhone.at(place), Read(source)) << place << " differs from the PC";
        const auto difference = fs::last_write_time(source) - fs::last_write_time(Path(phone(place)));
        EXPECT_LT(std::chrono::abs(difference), std::chrono::seconds(1)) << place << " has another time";
    }
    for (const auto& [place, contents] : onPhone) {
        EXPECT_TRUE(places.contains(place) || !place.starts_with(below)) << place << " is not recorded";
    }
    EXPECT_THAT(ownFiles(), testing::IsEmpty());
}

}  // namespace kesta::test
