#include <KelInsInfra/system/ProcessBuilder.h>
#include <utility>

namespace KelInsSys {
namespace {

class Splitter
{
public:
    explicit Splitter(const std::string& text) : text_(text) {}

    std::vector<std::string> Split()
    {
        for (; position_ < text_.size(); ++position_)
            (this->*state_)(text_[position_]);
        if (!token_.empty())
            EndToken();
        return std::move(arguments_);
    }

private:
    void OutsideQuotes(char c)
    {
        if (std::exchange(escaped_, false)) {
            token_ += c;
            return;
        }
        switch (c) {
        case ' ':
            if (!token_.empty())
                EndToken();
            break;
        case '\'':
            state_ = &Splitter::InSingleQuotes;
            break;
        case '"':
            state_ = &Splitter::InDoubleQuotes;
            break;
        case '\\':
            escaped_ = true;
            break;
        default:
            token_ += c;
        }
    }

    void InSingleQuotes(char c)
    {
        if (c == '\'')
            CloseQuote();
        else
            token_ += c;
    }

    void InDoubleQuotes(char c)
    {
        if (std::exchange(escaped_, false)) {
            if (c == '"' || c == '\\')
                token_.pop_back(); // the backslash
            token_ += c;
        } else if (c == '"') {
            CloseQuote();
        } else {
            escaped_ = c == '\\';
            token_ += c;
        }
    }

    void CloseQuote()
    {
        state_ = &Splitter::OutsideQuotes;
        const bool last = position_ + 1 == text_.size();
        if (last || text_[position_ + 1] == ' ')
            EndToken(); // even an empty one
    }

    void EndToken() { arguments_.push_back(std::exchange(token_, {})); }

    const std::string& text_;
    std::size_t position_ = 0;
    void (Splitter::*state_)(char) = &Splitter::OutsideQuotes;
    bool escaped_ = false; ///< the byte before was a backslash that has a meaning
    std::string token_;
    std::vector<std::string> arguments_;
};

} // namespace

std::vector<std::string> ProcessBuilder::SplitArguments(const std::string& commandLine)
{
    return Splitter(commandLine).Split();
}

} // namespace KelInsSys
