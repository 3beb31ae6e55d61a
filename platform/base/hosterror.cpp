#include "platform/base/hosterror.h"

#include <cerrno>

DWORD ErrorOfHost(int hostError) {
    switch (hostError) {
    case ENOENT:
        return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
    case ENAMETOOLONG:
    case ELOOP:
        return ERROR_PATH_NOT_FOUND;
    case EWOULDBLOCK:
        return ERROR_SHARING_VIOLATION;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return ERROR_DISK_FULL;
    case ENOMEM:
    case EMFILE:
    case ENFILE:
        return ERROR_NOT_ENOUGH_MEMORY;
    case EIO:
        return ERROR_GEN_FAILURE;
    case EINVAL:
        return ERROR_INVALID_PARAMETER;
    default:
        return ERROR_ACCESS_DENIED;
    }
}
