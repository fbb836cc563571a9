#pragma once

#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <KelInsInfra/io/KelInsIO.h>

namespace KelInsIO {

/// What the attribute bits of the system (FILE_ATTRIBUTE_...) say an entry is.
inline BitMask<Type> TypeOfAttributes(DWORD attributes)
{
    BitMask<Type> type = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? Type::Directory : Type::File;
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
        type |= Type::ReparsePoint;
    return type;
}

} // namespace KelInsIO
