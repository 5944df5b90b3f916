// What the user sees while a sync runs: a bar on a terminal, a line for each file anywhere else, or JSON for programs.
// By hand: Debian packages no progress bar that counts bytes and lets lines stand above it.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "report/event.h"
#include "report/run_log.h"

namespace kesta {

class Progress {
public:
    enum class Style { kBar, kLines, kQuiet, kJson, kQuietJson };
    explicit Progress(Style style, RunLog* log = nullptr) : style_(style), log_(log) {}
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { finish(); }

    /// Text for the user, whatever the style; the bar makes room for it. Programs get the event in its place.
    void say(std::string_view line, const Event& event = {});
    /// For programs alone.
    void tell(const Event& event);
    [[nodiscard]] bool isJson() const { return style_ == Style::kJson || style_ == Style::kQuietJson; }
    /// A passing remark while folders are read; shown beside a bar only.
    void remark(std::string_view text);
    void start(size_t files, uint64_t bytes);
    void addBytes(uint64_t bytes);
    /// The current file begins anew.
    void restartFile();
    /// planned: the bytes that the file was announced with in start().
    void endFile(std::string_view verb, std::string_view phonePath, uint64_t planned);
    /// Takes the bar away.
    void finish();

private:
    using Clock = std::chrono::steady_clock;
    void draw(bool evenIfJustDrawn);
    void show(const std::string& line);

    Style style_;
    RunLog* log_;
    size_t files_ = 0, filesDone_ = 0;
    uint64_t bytes_ = 0, bytesDone_ = 0, bytesOfFile_ = 0, bytesMoved_ = 0;
    Clock::time_point started_, drawn_;
    size_t shownWidth_ = 0;
};

/// "12/40 files  3.4/9.0 MB  1.1 MB/s  0:05 left", with a bar in front when the width has room for it.
[[nodiscard]] std::string BarText(size_t filesDone, size_t files, uint64_t bytesDone, uint64_t bytes,
                                  uint64_t bytesMoved, double seconds, size_t width);

}  // namespace kesta
