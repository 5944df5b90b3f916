// A PC, a phone and a database of their own for each test, and the client to run between them.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "client_process.h"
#include "support/data_folder.h"
#include "support/sql.h"

namespace kesta::test {

namespace fs = std::filesystem;

/// A path from UTF-8.
[[nodiscard]] fs::path Path(const std::string& utf8);
[[nodiscard]] std::string Utf8(const fs::path& path);

class ClientTest : public testing::Test {
protected:
    ClientTest();
    ~ClientTest() override;

    /// Paths of files are relative to the folder of the PC, with '/'.
    void givenFile(const std::string& path, const std::string& contents);
    /// The same contents and size would look unchanged with the same time, so changes get a later one.
    void changeFile(const std::string& path, const std::string& contents);
    void removeFile(const std::string& path);
    [[nodiscard]] std::string pc(const std::string& path = {}) const;
    [[nodiscard]] std::string phone(const std::string& path = {}) const;

    Ended client(const std::vector<std::string>& arguments, const Environment& environment = {});
    /// "sync --phone PHONE --imei 351111" and the arguments.
    Ended sync(std::vector<std::string> arguments, const Environment& environment = {});
    /// Makes the phone known, with nothing on it.
    Ended meet(std::vector<std::string> arguments = {});
    [[nodiscard]] std::vector<std::string> syncArguments(std::vector<std::string> arguments) const;

    /// What the client says that the database holds.
    nlohmann::json recorded(const std::string& category = "music");
    nlohmann::json status();
    /// What lies in the phone's trash, by the place where it was.
    [[nodiscard]] std::map<std::string, std::string> trash() const;
    /// Everything that lies on the phone, but for the client's own files.
    [[nodiscard]] std::map<std::string, std::string> phoneFiles() const;
    [[nodiscard]] std::vector<std::string> phonePaths() const;
    /// Files of the client's own in the phone's folders, besides the marker.
    [[nodiscard]] std::vector<std::string> ownFiles() const;

    /// Every file on the phone is recorded once, is what the PC has, and has its time; nothing is left over. below: of
    /// the files under that folder only.
    void expectInOrder(const std::string& category = "music", const std::string& below = {});

    [[nodiscard]] Sql database() const { return Sql(data_.databasePath()); }
    /// A note of the client's own, beside the database.
    [[nodiscard]] fs::path note(const std::string& name) const;
    [[nodiscard]] const fs::path& work() const { return work_; }
    [[nodiscard]] const DataFolder& data() const { return data_; }

private:
    DataFolder data_;
    fs::path work_;
};

inline constexpr const char* kImei = "351111";

}  // namespace kesta::test
