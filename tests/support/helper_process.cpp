#include "support/helper_process.h"

#include <stdexcept>

namespace kesta::test {

HelperProcess::HelperProcess() : process_(KESTA_TEST_HELPER)
{
}

std::string HelperProcess::ask(const std::vector<std::string>& command)
{
    tell(command);
    return answer();
}

void HelperProcess::tell(const std::vector<std::string>& command)
{
    std::string line;
    for (const std::string& part : command) {
        line += (line.empty() ? "" : "\t") + part;
    }
    process_.writeLine(line);
}

std::string HelperProcess::answer()
{
    if (std::optional<std::string> line = process_.readLine(milliseconds(60000))) {
        return *line;
    }
    throw std::runtime_error("the helper does not answer");
}

}  // namespace kesta::test
