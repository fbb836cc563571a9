#include <KelInsInfra/json/Array.h>
#include <KelInsInfra/json/internal/Clone.h>
#include <KelInsInfra/json/internal/TakeApart.h>
#include <KelInsInfra/json/internal/Writer.h>

namespace JSON {

Array::~Array()
{
    while (std::shared_ptr<Value>* const last = LastChild()) {
        if (IsLastOwnerOfContainer(*last))
            TakeApart(std::move(*last));
        DropLastChild();
    }
}

std::shared_ptr<Value> Array::Clone() const
{
    return CloneTree(*this);
}

void Array::Write(std::ostream& out) const
{
    WriteTree(*this, Form::Compact, 0, out);
}

std::uint64_t Array::GetSize() const
{
    return elements_.size();
}

void Array::WriteIndented(std::ostream& out, std::int32_t level) const
{
    WriteTree(*this, Form::Indented, level, out);
}

void Array::Append(std::shared_ptr<Value> value)
{
    if (elements_.capacity() == 0)
        elements_.reserve(2); // pairs are common, and one element alone is not worth a block of its own
    elements_.push_back(std::move(value));
}

} // namespace JSON
