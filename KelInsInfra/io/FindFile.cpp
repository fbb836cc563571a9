#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/KelInsException.h>
#include <KelInsInfra/foundation/internal/UniqueHandle.h>
#include <KelInsInfra/io/FindFile.h>
#include <KelInsInfra/io/Path.h>
#include <KelInsInfra/io/internal/TypeOfAttributes.h>

namespace KelInsIO {

struct FindFile::State
{
    std::string directory;
    BitMask<Type> filter;
    bool end = false;
    std::string name; ///< of the last entry read; empty before the first
    BitMask<Type> type;
    UniqueFindHandle handle;
    WIN32_FIND_DATAW record;

    void Start()
    {
        handle = UniqueFindHandle(::FindFirstFileW(KelInsString::Widen(directory + R"(\*)").c_str(), &record));
        end = !handle;
    }

    void Advance() { end = !::FindNextFileW(handle.Get(), &record); }

    void LoadRecord()
    {
        name = KelInsString::Narrow(record.cFileName);
        type = TypeOfAttributes(record.dwFileAttributes);
    }

    bool IsWanted() const { return name != "." && name != ".." && (filter & type) != BitMask<Type>(); }

    /// From the record just read on to the next wanted entry.
    void Position()
    {
        for (; !end; Advance()) {
            LoadRecord();
            if (IsWanted())
                return;
        }
    }
};

FindFile::FindFile(const std::string& directory, BitMask<Type> filter) : state_(std::make_unique<State>())
{
    state_->directory = Path(directory).GetPath();
    state_->filter = filter;
    if (state_->directory.empty())
        throw KelInsException("FindFirstFile - Path is empty");
    state_->Start();
    state_->Position();
}

FindFile::~FindFile() = default;
FindFile::FindFile(FindFile&& other) noexcept = default;
FindFile& FindFile::operator=(FindFile&& other) noexcept = default;

bool FindFile::End() const
{
    return state_->end;
}

void FindFile::Next()
{
    state_->Advance();
    state_->Position();
}

std::string FindFile::GetName() const
{
    return state_->name;
}

std::string FindFile::GetPath() const
{
    return state_->name.empty() ? std::string() : state_->directory + Path::SepC + state_->name;
}

BitMask<Type> FindFile::GetType() const
{
    return state_->type;
}

bool FindFile::IsDirectory() const
{
    return state_->type.Has(Type::Directory);
}

bool FindFile::IsFile() const
{
    return state_->type.Has(Type::File);
}

bool FindFile::IsDirectoryEmpty(const std::string& directory)
{
    return FindFile(directory, Type::Directory | Type::File).End();
}

} // namespace KelInsIO
