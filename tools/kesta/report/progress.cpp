#include "report/progress.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/text.h"
#include "os/system.h"
#include "report/output.h"
#include "report/summary.h"

namespace kesta {
namespace {

constexpr auto kRedrawInterval = std::chrono::milliseconds(100);

// Of many small files each costs what is written besides its bytes: its record, and what makes both survive a power
// failure.
double WorkOf(size_t files, uint64_t bytes)
{
    constexpr double kBytesPerFile = 500'000;
    return static_cast<double>(files) * kBytesPerFile + static_cast<double>(bytes);
}

std::string TimeText(double seconds)
{
    const auto whole = static_cast<int64_t>(std::min(seconds + 0.5, 359999.0));
    if (whole >= 3600) {
        return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
    }
    return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

}  // namespace

std::string BarText(size_t filesDone, size_t files, uint64_t bytesDone, uint64_t bytes, uint64_t bytesMoved,
                    double seconds, size_t width)
{
    std::string text = fmt::format(" {}/{} files  {}/{}", filesDone, files, FormatSize(bytesDone), FormatSize(bytes));
    const double done = WorkOf(filesDone, bytesDone);
    if (seconds >= 0.5 && bytesMoved > 0) {
        text += fmt::format("  {}/s", FormatSize(static_cast<uint64_t>(static_cast<double>(bytesMoved) / seconds)));
    }
    if (seconds >= 0.5 && done > 0) {
        const double left = std::max(0.0, WorkOf(files, bytes) - done);
        text += fmt::format("  {} left", TimeText(left * seconds / done));
    }
    constexpr size_t kWidestBar = 30, kNarrowestBar = 8;
    if (width < text.size() + kNarrowestBar + 3) {
        return text.size() < width ? text : text.substr(0, width - 1);
    }
    const size_t bar = std::min(kWidestBar, width - text.size() - 3);
    const double share = done / std::max(1.0, WorkOf(files, bytes));
    const auto full = static_cast<size_t>(std::clamp(share, 0.0, 1.0) * static_cast<double>(bar));
    return "[" + std::string(full, '#') + std::string(bar - full, '.') + "]" + text;
}

void Progress::show(const std::string& line)
{
    const size_t width = DisplayWidth(line);
    const std::string blanks(shownWidth_ > width ? shownWidth_ - width : 0, ' ');
    Print("\r" + line + blanks + (line.empty() ? "\r" : ""));
    shownWidth_ = width;
}

void Progress::draw(bool evenIfJustDrawn)
{
    if (style_ != Style::kBar || files_ == 0) {
        return;
    }
    const auto now = Clock::now();
    if (!evenIfJustDrawn && now - drawn_ < kRedrawInterval) {
        return;
    }
    drawn_ = now;
    const double seconds = std::chrono::duration<double>(now - started_).count();
    show(BarText(filesDone_, files_, bytesDone_ + bytesOfFile_, bytes_, bytesMoved_, seconds, os::TerminalWidth()));
}

void Progress::say(std::string_view line, const Event& event)
{
    if (log_ != nullptr) {
        log_->add(line);
    }
    if (isJson()) {
        return tell(event);
    }
    if (style_ == Style::kBar) {
        show("");
    }
    Print(std::string(line) + "\n");
    draw(true);
}

void Progress::tell(const Event& event)
{
    if (isJson() && event.name[0] != '\0') {
        Print(JsonLine(event) + '\n');
    }
}

void Progress::remark(std::string_view text)
{
    if (style_ != Style::kBar || Clock::now() - drawn_ < kRedrawInterval) {
        return;
    }
    drawn_ = Clock::now();
    show(std::string(text));
}

void Progress::start(size_t files, uint64_t bytes)
{
    files_ = files;
    bytes_ = bytes;
    filesDone_ = 0;
    bytesDone_ = bytesOfFile_ = bytesMoved_ = 0;
    started_ = Clock::now();
    if (files > 0) {
        tell({"start", {{"files", uint64_t{files}}, {"bytes", bytes}}});
    }
    draw(true);
}

void Progress::addBytes(uint64_t bytes)
{
    bytesOfFile_ += bytes;
    bytesMoved_ += bytes;
    draw(false);
}

void Progress::restartFile()
{
    bytesOfFile_ = 0;
}

void Progress::endFile(std::string_view verb, std::string_view phonePath, uint64_t planned)
{
    ++filesDone_;
    bytesDone_ += planned;
    bytesOfFile_ = 0;
    const std::string line = fmt::format("{:<9} {}", verb, Printable(phonePath));
    if (style_ == Style::kLines) {
        say(line);
    } else if (log_ != nullptr) {
        log_->add(line);
    }
    if (style_ == Style::kJson) {
        tell({"file", {{"action", std::string(verb)}, {"path", std::string(phonePath)}, {"size", planned}}});
    }
    draw(filesDone_ == files_);
}

void Progress::finish()
{
    if (style_ == Style::kBar) {
        show("");
    }
    files_ = 0;
}

}  // namespace kesta
