// What the user is told of a run, while it goes on and at its end.
#pragma once

#include "report/progress.h"
#include "report/summary.h"

namespace kesta {

struct Report {
    Report(Progress::Style style, bool quiet) : progress(style), isQuiet(quiet) {}

    Progress progress;
    Summary summary;
    bool isQuiet;  // a preview is not to say each change

    void fail(std::string subject, std::string reason) { summary.fail(std::move(subject), std::move(reason)); }
    void note(std::string text) { summary.notes.push_back(std::move(text)); }
};

}  // namespace kesta
