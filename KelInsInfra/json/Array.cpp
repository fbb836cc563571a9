#include <KelInsInfra/json/Array.h>
#include <KelInsInfra/json/internal/Clone.h>
#include <KelInsInfra/json/internal/TakeApart.h>
#include <KelInsInfra/json/internal/Writer.h>
#include <iterator>

namespace JSON {

Array::~Array()
{
    if (!shallow_)
        DestroyChildren(*this);
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
    elements_.push_back(std::move(value));
    shallow_ = false;
}

void Array::Append(std::span<std::shared_ptr<Value>> values, bool shallow)
{
    elements_.insert(elements_.end(), std::make_move_iterator(values.begin()), std::make_move_iterator(values.end()));
    shallow_ = shallow;
}

} // namespace JSON
