#include "support/library.h"

#include <cstdlib>

#include "support/shared_object.h"

namespace kesta::test {

Library::Library()
{
    load();
}

Library::Library(const DataFolder& data) : databasePath_(data.databasePath())
{
    load();
}

Library::~Library()
{
    unload();
}

void Library::load()
{
    if (object_ != nullptr) {
        return;
    }
    object_ = std::make_unique<SharedObject>(path());
#define KESTA_EXPORT(name, ordinal) object_->find(#name, name);
#include "support/export_list.inc"
#undef KESTA_EXPORT
}

void Library::unload()
{
    object_.reset();
    static_cast<Exports&>(*this) = {};
}

std::string Library::path()
{
    // The mutation run puts one changed library after the other to the same tests.
    const char* changed = std::getenv("KESTA_TEST_LIBRARY");
    return changed != nullptr ? changed : KESTA_TEST_LIBRARY;
}

}  // namespace kesta::test
