// What else a caller waits for: the library's load, callers beside each other, a million files, and the memory of a
// list.
//
//   kesta_callers [ENTRIES]       a table; a million files unless another number is given
//   kesta_callers --load FOLDER   loads the library over a data folder and asks one question: for counting system calls
#include <SQLiteCpp/SQLiteCpp.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <thread>
#include <vector>

#include "data_set.h"
#include "entries.h"
#include "library.h"

namespace kesta::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr size_t kFew = 1'000;
constexpr size_t kCalls = 20'000;

/// Microseconds that the work takes.
double TimeOf(const std::function<void()>& work)
{
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

double MedianOf(int times, const std::function<double()>& measure)
{
    std::vector<double> all;
    for (int i = 0; i < times; ++i) {
        all.push_back(measure());
    }
    std::sort(all.begin(), all.end());
    return all[all.size() / 2];
}

void LookUp(const Library& library, const std::vector<File>& files, size_t calls)
{
    for (size_t i = 0; i < calls; ++i) {
        SyncedFileRecord found = {};
        Require(library.IsSyncedFile(kImei, files[i % files.size()].path.c_str(), &found) == 1, "looking a file up");
    }
}

std::vector<File> FilesOf(const DataSet& dataSet)
{
    std::vector<File> files;
    for (size_t i = 0; i < kFew; ++i) {
        files.push_back(MakeFile(i * 7919 % dataSet.entries(), Letters::kAscii));
    }
    return files;
}

void PrintLoad(const char* name, const DataSet& dataSet)
{
    const double load = MedianOf(9, [&] {
        return TimeOf([&] {
            const Library library(dataSet);
            Require(library.PhoneDetected(kImei, u"") == 1, "announcing the phone");
        });
    });
    std::printf("%-52s %10.0f us\n", name, load);
}

/// The library makes its database first.
void PrintFreshLoad(const std::filesystem::path& place)
{
    const double load = MedianOf(9, [&] {
        double taken = 0;
        const PrivateFolder folder(place);
        taken = TimeOf([&] { const Library library(folder.path()); });
        return taken;
    });
    std::printf("%-52s %10.0f us\n", "load, no database yet", load);
}

double CallsPerSecond(const DataSet& dataSet, size_t threads)
{
    const Library library(dataSet);
    const std::vector<File> files = FilesOf(dataSet);
    const double taken = TimeOf([&] {
        std::vector<std::thread> all;
        for (size_t i = 0; i < threads; ++i) {
            all.emplace_back([&] { LookUp(library, files, kCalls / threads); });
        }
        for (std::thread& thread : all) {
            thread.join();
        }
    });
    return kCalls / taken * 1e6;
}

double CallsPerSecondOfProcesses(const DataSet& dataSet, size_t processes)
{
    const std::vector<File> files = FilesOf(dataSet);
    const double taken = TimeOf([&] {
        for (size_t i = 0; i < processes; ++i) {
            if (fork() == 0) {
                {
                    const Library library(dataSet);
                    LookUp(library, files, kCalls / processes);
                }
                _exit(0);
            }
        }
        int status = 0;
        while (wait(&status) > 0) {
            Require(status == 0, "a process of its own");
        }
    });
    return kCalls / taken * 1e6;
}

void PrintCallers(const DataSet& dataSet)
{
    const double alone = MedianOf(5, [&] { return CallsPerSecond(dataSet, 1); });
    const double threads = MedianOf(5, [&] { return CallsPerSecond(dataSet, 8); });
    const double processes = MedianOf(5, [&] { return CallsPerSecondOfProcesses(dataSet, 4); });
    std::printf("%-52s %10.0f calls/s\n", "look-ups, one caller alone", alone);
    std::printf("%-52s %10.0f calls/s  %.2f\n", "look-ups, 8 threads of one process", threads, threads / alone);
    std::printf("%-52s %10.0f calls/s  %.2f\n", "look-ups, 4 processes (their load included)", processes,
                processes / alone);
}

struct Costs {
    double record;
    double lookUp;
    double row;
    double bytesPerRow;
};

Costs CostsOf(const DataSet& dataSet)
{
    const Library library(dataSet);
    const std::vector<File> files = FilesOf(dataSet);
    Costs costs = {};
    LookUp(library, files, kFew);
    costs.lookUp = TimeOf([&] { LookUp(library, files, kFew); }) / kFew;
    SyncedFileList list = {0, nullptr};
    const size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
    costs.row = TimeOf([&] { Require(library.GetSyncedFiles(kImei, nullptr, &list) == 0, "listing files"); }) /
                static_cast<double>(dataSet.entries());
    costs.bytesPerRow = static_cast<double>(mallinfo2().uordblks + mallinfo2().hblkhd - before) /
                        static_cast<double>(dataSet.entries());
    (void)library.GetSyncedFiles(u"", nullptr, &list);
    std::vector<File> added;
    for (size_t i = 0; i < kFew; ++i) {
        added.push_back(MakeNewFile(i, dataSet.entries(), Letters::kAscii));
    }
    costs.record =
        TimeOf([&] {
            for (File& file : added) {
                const SyncedFileRecord record = {
                    {file.modified.days, kDateValid}, file.path.data(), file.basePath.data(), file.phonePath.data()};
                Require(library.SetAddedFile(kImei, &record) == 0, "recording a file");
            }
        }) /
        kFew;
    return costs;
}

void PrintSizes(const DataSet& few, const DataSet& many)
{
    const Costs small = CostsOf(few);
    const Costs large = CostsOf(many);
    const auto print = [&](const char* name, double of, double to, const char* unit) {
        std::printf("%-52s %10.2f %s  %10.2f %s  %.2f\n", name, of, unit, to, unit, to / of);
    };
    std::printf("\n%-52s %13zu  %13zu\n", "files", few.entries(), many.entries());
    print("recording a file", small.record, large.record, "us");
    print("looking a file up", small.lookUp, large.lookUp, "us");
    print("a listed row", small.row, large.row, "us");
    print("memory of a listed row", small.bytesPerRow, large.bytesPerRow, "B ");
}

/// The same look-up by a statement that is compiled once and bound each time.
void PrintPeer(const DataSet& dataSet)
{
    const std::vector<File> files = FilesOf(dataSet);
    const double peer = MedianOf(5, [&] {
        SQLite::Database db(dataSet.bareDatabase().string(), SQLite::OPEN_READONLY);
        SQLite::Statement statement(db,
                                    "SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM vMFile "
                                    "WHERE [IMEI] = ? AND [Path] = ?;");
        const std::string imei = Utf8(kImei);
        return TimeOf([&] {
                   for (size_t i = 0; i < kFew; ++i) {
                       statement.reset();
                       statement.bind(1, imei);
                       statement.bind(2, Utf8(files[i].path));
                       Require(statement.executeStep(), "looking a file up");
                       for (int column = 0; column < 4; ++column) {
                           Require(!statement.getColumn(column).getString().empty(), "a text");
                       }
                   }
               }) /
               kFew;
    });
    const double library = MedianOf(5, [&] {
        const Library loaded(dataSet);
        LookUp(loaded, files, 10);
        return TimeOf([&] { LookUp(loaded, files, kFew); }) / kFew;
    });
    std::printf("\n%-52s %10.2f us\n", "look-up by the library", library);
    std::printf("%-52s %10.2f us  %.2f\n", "look-up by SQLiteCpp's bound statement", peer, peer / library);
}

}  // namespace
}  // namespace kesta::bench

int main(int argc, char** argv)
{
    using namespace kesta::bench;
    const std::filesystem::path memory = "/dev/shm";
    if (argc == 3 && std::strcmp(argv[1], "--load") == 0) {
        const Library library{std::filesystem::path(argv[2])};
        return 0;
    }
    const size_t most = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 1'000'000;
    const DataSet few(memory, Family::kMedia, kFew, Letters::kAscii);
    const DataSet many(memory, Family::kMedia, most, Letters::kAscii);
    PrintFreshLoad(memory);
    PrintLoad("load, 1,000 files", few);
    PrintLoad("load, the large database", many);
    PrintCallers(few);
    PrintPeer(few);
    PrintSizes(few, many);
    return 0;
}
