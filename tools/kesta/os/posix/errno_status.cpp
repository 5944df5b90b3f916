#include "os/posix/errno_status.h"

#include <cerrno>
#include <cstring>

namespace kesta::os {
namespace {

Failure KindOf(int code)
{
    switch (code) {
        case ENOENT:
        case ENOTDIR:
            return Failure::kMissing;
        case EEXIST:
            return Failure::kExists;
        case ENOTEMPTY:
            return Failure::kNotEmpty;
        case EACCES:
        case EPERM:
            return Failure::kDenied;
        case EROFS:
            return Failure::kReadOnly;
        case ENOSPC:
        case EDQUOT:
            return Failure::kFull;
        case ENAMETOOLONG:
            return Failure::kTooLong;
        case EWOULDBLOCK:
        case EBUSY:
        case ETXTBSY:
            return Failure::kBusy;
        case ENOTCONN:
        case ENODEV:
        case ENXIO:
        case ESHUTDOWN:
            return Failure::kGone;
        default:
            return Failure::kOther;
    }
}

}  // namespace

Status FromErrno(int code)
{
    return {KindOf(code), std::strerror(code)};
}

Status LastError()
{
    return FromErrno(errno);
}

}  // namespace kesta::os
