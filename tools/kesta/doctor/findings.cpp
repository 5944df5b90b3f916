#include "doctor/findings.h"

#include <algorithm>

namespace kesta {

void Findings::fix()
{
    for (Check& check : checks_) {
        for (Finding& finding : check.findings) {
            if (!finding.fix) {
                continue;
            }
            const os::Status status = finding.fix();
            finding.isFixed = status.ok();
            finding.outcome = status.ok() ? "fixed" : "it could not be fixed: " + status.text();
        }
    }
}

Severity Findings::worst() const
{
    Severity worst = Severity::kNote;
    for (const Check& check : checks_) {
        for (const Finding& finding : check.findings) {
            worst = finding.isFixed ? worst : std::max(worst, finding.severity);
        }
    }
    return worst;
}

}  // namespace kesta
