// The library's parts from inside: the module started by hand over a data folder of its own, the trace caught where it
// leaves the library.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "core/module.h"
#include "platform/services.h"
#include "support/data_folder.h"
#include "support/sql.h"
#include "support/text.h"

namespace kesta {

/// Takes the place of the system's services as long as it lives: lines are kept, sleeps are counted.
class ReplacedServices {
public:
    ReplacedServices() : before_(platform::services)
    {
        lines().clear();
        sleeps().clear();
        platform::services.traceIsRead = []() noexcept { return true; };
        platform::services.memoryIsRead = []() noexcept { return true; };
        platform::services.writeTraceLine = [](const DbChar* line, size_t length) noexcept {
            const std::basic_string<DbChar> text(line, length);
            lines().push_back(test::Utf8(text.c_str()));
        };
        platform::services.sleep = [](uint32_t milliseconds) noexcept { sleeps().push_back(milliseconds); };
    }
    ~ReplacedServices() { platform::services = before_; }
    ReplacedServices(const ReplacedServices&) = delete;
    ReplacedServices& operator=(const ReplacedServices&) = delete;

    /// Whole lines, prefix and line feed included.
    static std::vector<std::string>& lines()
    {
        static std::vector<std::string> all;
        return all;
    }
    static std::vector<uint32_t>& sleeps()
    {
        static std::vector<uint32_t> all;
        return all;
    }
    static std::vector<std::string> take() { return std::exchange(lines(), {}); }

private:
    platform::Services before_;
};

/// The module is started, its database open and fresh.
class ModuleUnderTest : public ::testing::Test {
protected:
    ModuleUnderTest()
    {
        TheModule().start();
        ReplacedServices::take();
    }
    ~ModuleUnderTest() override { TheModule().end(); }

    static Connection& db() { return TheModule().DbConnection; }

    test::DataFolder data;
    ReplacedServices services;
    test::Sql sql{data.databasePath()};
};

}  // namespace kesta
