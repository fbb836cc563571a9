#include <KelInsInfra/json/Item.h>
#include <KelInsInfra/json/internal/Make.h>
#include <KelInsInfra/json/internal/Writer.h>

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

} // namespace JSON
