#include "report/run_log.h"

#include <fmt/format.h>

#include "base/dates.h"
#include "os/local_time.h"
#include "os/system.h"

namespace kesta {

void RunLog::add(std::string_view text)
{
    if (!isOpen()) {
        return;
    }
    const auto now = os::ToLocalTime(os::Now());
    const std::string time = now ? FormatLocalTime(*now) : std::string();
    std::string lines;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        lines += fmt::format("{}  {}\n", time, text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    // Whole lines at once: several runs may write to one log.
    hasFailed_ = !file_.add(lines).ok() || hasFailed_;
}

}  // namespace kesta
