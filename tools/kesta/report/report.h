// What the user is told of a run, while it goes on and at its end.
#pragma once

#include "report/progress.h"
#include "report/summary.h"

namespace kesta {

struct Report {
    Report(Progress::Style style, bool quiet, RunLog* log = nullptr) : progress(style, log), isQuiet(quiet) {}

    Progress progress;
    Summary summary;
    bool isQuiet;  // a preview is not to say each change

    void fail(std::string subject, std::string reason)
    {
        progress.tell({"failed", {{"path", subject}, {"reason", reason}}});
        summary.fail(std::move(subject), std::move(reason));
    }
    void leaveOut(std::string_view from, std::string_view why, size_t count) { summary.leaveOut(from, why, count); }
    void note(std::string text)
    {
        progress.tell({"note", {{"text", text}}});
        summary.notes.push_back(std::move(text));
    }
};

}  // namespace kesta
