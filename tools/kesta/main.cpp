// kesta: brings a phone up to date with the PC and shows what is recorded about it.

#include <cstdio>
#include <exception>
#include <sstream>
#include <string>

#include "base/stop_run.h"
#include "base/text.h"
#include "commands/commands.h"
#include "database/database.h"
#include "os/system.h"
#include "report/output.h"

namespace {

struct Runner {
    kesta::ExitCode operator()(const kesta::SyncOptions& options) const { return kesta::RunSync(options); }
    kesta::ExitCode operator()(const kesta::StatusOptions& options) const { return kesta::RunStatus(options); }
    kesta::ExitCode operator()(const kesta::FilesOptions& options) const { return kesta::RunFiles(options); }
    kesta::ExitCode operator()(const kesta::WhyOptions& options) const { return kesta::RunWhy(options); }
    kesta::ExitCode operator()(const kesta::SettingsOptions& options) const { return kesta::RunSettings(options); }
    kesta::ExitCode operator()(const kesta::TraceOptions&) const { return kesta::RunTrace(); }
};

int Report(kesta::ExitCode code, const std::exception& failure)
{
    std::string text;
    std::istringstream lines(failure.what());
    for (std::string line; std::getline(lines, line);) {
        text += kesta::Printable(line) + '\n';
    }
    (void)std::fprintf(stderr, "kesta: %s", text.c_str());
    return static_cast<int>(code);
}

}  // namespace

int main(int argc, char** argv)
{
    try {
        kesta::os::PrepareOutput();
        kesta::ExitCode exitCode = kesta::ExitCode::kSuccess;
        const auto options = kesta::ParseOptions(kesta::os::Arguments(argc, argv), exitCode);
        if (options) exitCode = std::visit(Runner(), *options);
        if (kesta::outputHasFailed && exitCode == kesta::ExitCode::kSuccess) {
            (void)std::fputs("kesta: the output could not be written\n", stderr);
            exitCode = kesta::ExitCode::kFailure;
        }
        return static_cast<int>(exitCode);
    } catch (const kesta::StopRun& stop) {
        return Report(stop.code(), stop);
    } catch (const kesta::DatabaseError& failure) {
        return Report(kesta::ExitCode::kDatabase, failure);
    } catch (const std::exception& failure) {
        return Report(kesta::ExitCode::kFailure, failure);
    }
}
