// The second process of a test. Reads one command a line, its parts separated by tabs, and answers each with one line:
//
//   trace               from now on this process reads the library's trace itself, away from the test's   -> ok
//   load, unload        the library                                                                       -> ok
//   call EXPORT ARG...  an export whose parameters are texts and integers                                 -> its result
//   begin EXPORT ARG... the same in a second thread                                                       -> ok
//   end                 waits for that thread                                                             -> the result
//   await PART          waits until the trace has a line holding PART                                     -> ok or
//   never lock MODE FILE      holds the database file with BEGIN EXCLUSIVE or BEGIN IMMEDIATE                   -> ok
//   unlock              lets go of it                                                                     -> ok
//   exit CODE           ends the process as a program does, whatever its threads are doing
//
// It ends when its input does. What fails is answered with "failed: " and the reason.
#include <sqlite3.h>

#include <array>
#include <charconv>
#include <cstdlib>
#include <future>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/data_folder.h"
#include "support/library.h"
#include "support/text.h"
#include "support/trace_log.h"

namespace kesta::test {
namespace {

using Parts = std::vector<std::string>;

template <class Parameter>
inline constexpr bool kIsPlain = std::is_same_v<Parameter, const DbChar*> || std::is_same_v<Parameter, int32_t>;

/// An argument as it is passed, kept until the call is over.
template <class Parameter>
struct Argument;

template <>
struct Argument<const DbChar*> {
    explicit Argument(const std::string& part) : value(part) {}
    Text value;
};

template <>
struct Argument<int32_t> {
    explicit Argument(const std::string& part) { std::from_chars(part.data(), part.data() + part.size(), value); }
    int32_t value = 0;
};

template <class... Parameters, size_t... index>
int32_t CallWith(int32_t (*function)(Parameters...), const Parts& parts, std::index_sequence<index...> /*unused*/)
{
    return function(Argument<Parameters>(parts.at(index)).value...);
}

template <class... Parameters>
int32_t Call(int32_t (*function)(Parameters...), const Parts& parts)
{
    if constexpr ((kIsPlain<Parameters> && ...)) {
        if (parts.size() != sizeof...(Parameters)) {
            throw std::invalid_argument("wrong number of arguments");
        }
        return CallWith(function, parts, std::index_sequence_for<Parameters...>());
    }
    throw std::invalid_argument("this export has parameters that are neither text nor integer");
}

class Helper {
public:
    std::string run(const std::string& command, const Parts& parts)
    {
        if (command == "trace") {
            return trace_ = std::make_unique<TraceLog>(OwnRuntimeFolder()), "ok";
        }
        if (command == "load") {
            return library_ = std::make_unique<Library>(), "ok";
        }
        if (command == "unload") {
            return library_.reset(), "ok";
        }
        if (command == "call") {
            return std::to_string(call(parts));
        }
        if (command == "begin") {
            return begin(parts);
        }
        if (command == "end") {
            return std::to_string(running_.get());
        }
        if (command == "await") {
            return trace_->waitFor(parts.at(0), std::chrono::seconds(30)) ? "ok" : "never";
        }
        if (command == "lock") {
            return lock(parts.at(0), parts.at(1));
        }
        if (command == "unlock") {
            return unlock();
        }
        if (command == "exit") {
            std::exit(std::stoi(parts.at(0)));
        }
        throw std::invalid_argument("no such command");
    }

private:
    int32_t call(const Parts& parts)
    {
        if (library_ == nullptr) {
            throw std::logic_error("the library is not loaded");
        }
        const std::string& name = parts.at(0);
        const Parts arguments(parts.begin() + 1, parts.end());
#define KESTA_EXPORT(export, ordinal) \
    if (name == #export) return Call(library_->export, arguments);
#include "support/export_list.inc"
#undef KESTA_EXPORT
        throw std::invalid_argument("no such export");
    }

    std::string begin(const Parts& parts)
    {
        running_ = std::async(std::launch::async, [this, parts] { return call(parts); });
        return "ok";
    }

    std::string lock(const std::string& mode, const std::string& file)
    {
        if (sqlite3_open_v2(file.c_str(), &db_, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
            throw std::runtime_error(sqlite3_errmsg(db_));
        }
        return execute("BEGIN " + mode);
    }

    std::string unlock()
    {
        execute("COMMIT");
        sqlite3_close(db_);
        db_ = nullptr;
        return "ok";
    }

    std::string execute(const std::string& statement)
    {
        if (sqlite3_exec(db_, statement.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
            throw std::runtime_error(sqlite3_errmsg(db_));
        }
        return "ok";
    }

    std::unique_ptr<TraceLog> trace_;
    std::unique_ptr<Library> library_;
    std::future<int32_t> running_;
    sqlite3* db_ = nullptr;
};

Parts Split(const std::string& line)
{
    Parts parts(1);
    for (const char c : line) {
        if (c == '\t') {
            parts.emplace_back();
        } else if (c != '\r') {
            parts.back().push_back(c);
        }
    }
    return parts;
}

void Serve()
{
    // Never destroyed: a process that is told to exit leaves a call where it is.
    auto* helper = new Helper;
    for (std::string line; std::getline(std::cin, line);) {
        Parts parts = Split(line);
        const std::string command = std::exchange(parts.front(), {});
        parts.erase(parts.begin());
        std::string answer;
        try {
            answer = helper->run(command, parts);
        } catch (const std::exception& failure) {
            answer = std::string("failed: ") + failure.what();
        }
        std::cout << answer << std::endl;
    }
    // No destructor of a future may wait for a call that never ends.
    std::_Exit(EXIT_SUCCESS);
}

}  // namespace
}  // namespace kesta::test

int main()
{
    kesta::test::Serve();
}
