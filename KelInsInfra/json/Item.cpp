#include <KelInsInfra/json/Item.h>
#include <KelInsInfra/json/internal/Make.h>
#include <KelInsInfra/json/internal/Writer.h>
#include <cstring>

namespace JSON {

std::shared_ptr<Value> Item::Clone() const
{
    Pool pool;
    return MakeItem(pool, GetType(), Text());
}

void Item::Write(std::ostream& out) const
{
    WriteTree(*this, Form::Compact, 0, out);
}

void Item::WriteIndented(std::ostream& out, std::int32_t level) const
{
    WriteTree(*this, Form::Indented, level, out);
}

std::size_t Item::LongSize() const
{
    std::size_t size = 0;
    std::memcpy(&size, text_ - sizeof(size), sizeof(size));
    return size;
}

} // namespace JSON
