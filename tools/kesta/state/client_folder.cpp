#include "state/client_folder.h"

#include "os/system.h"

namespace kesta {

std::string ClientFolder()
{
    const std::string data = os::DataDirectory();
    if (data.empty()) return {};
    return os::Join(os::Join(os::Join(data, "NORVIK"), "NORVIK Sync"), "Client");
}

os::Status WriteStateFile(const std::string& path, const std::string& text)
{
    const std::string folder = ClientFolder();
    if (folder.empty() || !os::MakePrivateDirectories(folder))
        return {os::Failure::kOther, "the folder for application data cannot be made"};
    return os::WriteText(path, path + ".new", text);
}

}  // namespace kesta
