// A DLL that links the static library, as custom actions do. It exports one name of its own, and none of ours.

#include <KelInsInfra/io/Path.h>

extern "C" __declspec(dllexport) int ParentLength(const char* path);

int ParentLength(const char* path)
{
    return static_cast<int>(KelInsIO::Path(path).GetParent().GetPath().size());
}
