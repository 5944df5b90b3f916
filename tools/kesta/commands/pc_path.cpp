#include "commands/pc_path.h"

#include "os/files.h"

namespace kesta {

std::string RecordedPath(const std::string& given)
{
    std::string absolute = os::AbsolutePath(given);
    while (absolute.size() > 1 && absolute.back() == os::kSeparator && os::ParentOf(absolute) != absolute) {
        absolute.pop_back();
    }
    std::string canonical;
    if (os::CanonicalPath(absolute, canonical).ok()) {
        return canonical;
    }
    const std::string parent = os::ParentOf(absolute);
    if (parent == absolute) {
        return absolute;
    }
    const std::string name = os::NameOf(absolute);
    const std::string above = RecordedPath(parent);
    if (name == "..") {
        return os::ParentOf(above);
    }
    return name == "." ? above : os::Join(above, name);
}

bool IsNamed(const std::string& recorded, const std::string& given)
{
    return recorded == given || recorded == os::AbsolutePath(given) || recorded == RecordedPath(given);
}

}  // namespace kesta
