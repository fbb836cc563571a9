#include <KelInsInfra/json/Array.h>
#include <KelInsInfra/json/internal/Clone.h>
#include <KelInsInfra/json/internal/TakeApart.h>
#include <KelInsInfra/json/internal/Writer.h>

namespace JSON {

Array::~Array()
{
    for (std::shared_ptr<Value>& element : elements_) {
        if (IsLastOwnerOfContainer(element))
            TakeApart(std::move(element));
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

std::shared_ptr<Value>* Array::LastChild() noexcept
{
    return elements_.empty() ? nullptr : &elements_.back();
}

void Array::DropLastChild() noexcept
{
    elements_.pop_back();
}

} // namespace JSON
