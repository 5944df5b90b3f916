#include "sync/mount.h"

#include "base/text.h"
#include "state/mount_state.h"

namespace kesta {
namespace {

MountName NameOf(const PhoneFolder& phone)
{
    MountName mount{Printable(phone.root()), {}, phone.id().volume};
    (void)os::ReadFileSystemId(phone.root(), mount.fileSystem);  // Empty where the system does not tell it.
    return mount;
}

}  // namespace

void LearnMount(PhoneFolder& phone, const std::string& imei, Report& report)
{
    if (const auto known = ReadMountState(imei, NameOf(phone))) {
        phone.setAbilities(*known);
        return;
    }
    MountAbilities abilities;
    if (!ProbeMount(phone.root(), abilities).ok()) {
        return;  // What the phone refuses altogether shows when it is written.
    }
    phone.setAbilities(abilities);
    if (!abilities.renames) {
        report.note("this phone does not let files be renamed: they are written in place, one at a time.");
    }
    RememberMount(phone, imei);
}

void RememberMount(const PhoneFolder& phone, const std::string& imei)
{
    const MountName mount = NameOf(phone);
    if (ReadMountState(imei, mount) != phone.abilities()) {
        (void)SaveMountState(imei, mount, phone.abilities());  // The next run tries it out again.
    }
}

}  // namespace kesta
