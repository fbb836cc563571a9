#include <KelInsInfra/json/Array.h>
#include <KelInsInfra/json/Item.h>
#include <KelInsInfra/json/Object.h>
#include <KelInsInfra/json/internal/TextOutput.h>
#include <KelInsInfra/json/internal/Writer.h>

namespace JSON {
namespace {

class Writer
{
public:
    Writer(TextOutput& out, Form form, std::int32_t level) : out_(out), form_(form), level_(level) {}

    void Run(const Value& value);

private:
    /// A container that is being written.
    struct Frame
    {
        const Value& container;
        std::size_t size;
        std::size_t next = 0;
    };

    void Put(const Value& value);
    void PutItem(const Item& item);
    void PutString(std::string_view text);
    void BreakLine();
    const Value& NextChild(Frame& frame);
    void Close(bool empty, bool object);

    TextOutput& out_;
    const Form form_;
    const std::int64_t level_;
    std::vector<Frame> frames_;
};

void Writer::Run(const Value& value)
{
    Put(value);
    while (!frames_.empty() && !out_.HasFailed()) {
        Frame& frame = frames_.back();
        if (frame.next < frame.size) {
            Put(NextChild(frame));
            continue;
        }
        const bool empty = frame.size == 0;
        const bool object = frame.container.IsObject();
        frames_.pop_back();
        Close(empty, object);
    }
}

void Writer::Put(const Value& value)
{
    if (value.IsArray() || value.IsObject()) {
        out_.Put(value.IsArray() ? '[' : '{');
        frames_.push_back({value, value.GetSize()});
    } else {
        PutItem(static_cast<const Item&>(value));
    }
}

void Writer::PutItem(const Item& item)
{
    switch (item.GetType()) {
    case Type::Number:
        out_.PutRaw(item.Text());
        break;
    case Type::String:
        PutString(item.Text());
        break;
    case Type::True:
        out_.Put("true");
        break;
    case Type::False:
        out_.Put("false");
        break;
    case Type::Null:
        out_.Put("null");
        break;
    default:
        out_.Put("???");
        break;
    }
}

/// The indented form escapes nothing: it is for reading.
void Writer::PutString(std::string_view text)
{
    if (form_ == Form::Compact) {
        out_.PutEscaped(text);
        return;
    }
    out_.Put('"');
    out_.PutRaw(text);
    out_.Put('"');
}

/// A line feed and the blanks of the current depth, in the indented form.
void Writer::BreakLine()
{
    const std::int64_t level = level_ + static_cast<std::int64_t>(frames_.size());
    out_.Put('\n');
    if (level > 0)
        out_.PutBlanks(4 * static_cast<std::uint64_t>(level));
}

/// Writes what stands before the next child of a container, and steps over it.
const Value& Writer::NextChild(Frame& frame)
{
    const bool compact = form_ == Form::Compact;
    const std::size_t place = frame.next++;
    if (place > 0 && compact)
        out_.Put(", ");
    else if (place > 0)
        out_.Put(',');
    if (!compact)
        BreakLine();
    if (frame.container.IsArray())
        return *static_cast<const Array&>(frame.container).Elements()[place];
    const POSITION member = static_cast<const Object&>(frame.container).At(place);
    PutString(member->first);
    out_.Put(": ");
    return *member->second;
}

void Writer::Close(bool empty, bool object)
{
    if (!empty && form_ == Form::Indented)
        BreakLine();
    out_.Put(object ? '}' : ']');
}

} // namespace

void WriteTree(const Value& value, Form form, std::int32_t level, std::ostream& out)
{
    StreamOutput output(out);
    Writer(output, form, level).Run(value);
    output.Finish();
}

std::string CompactText(const Value& value)
{
    StringOutput output;
    Writer(output, Form::Compact, 0).Run(value);
    return output.Take();
}

} // namespace JSON
