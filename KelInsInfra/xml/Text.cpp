#include <KelInsInfra/xml/Text.h>
#include <KelInsInfra/xml/internal/Bytes.h>
#include <utility>

namespace XML {

Text::Text(Token, std::string text) : text_(std::move(text)) {}

std::shared_ptr<Text> Text::Create(const std::string& text)
{
    return std::make_shared<Text>(Token(), text);
}

std::shared_ptr<Text> Text::Create(std::string&& text)
{
    return std::make_shared<Text>(Token(), std::move(text));
}

std::shared_ptr<Content> Text::Clone() const
{
    return Create(text_);
}

ContentType Text::GetType() const
{
    return ContentText;
}

std::string Text::GetText() const
{
    return text_;
}

void Text::SetText(const std::string& text)
{
    text_ = text;
}

std::string Text::GetTextTrim() const
{
    const std::size_t begin = text_.find_first_not_of(kWhitespace);
    if (begin == std::string::npos)
        return {};
    return text_.substr(begin, text_.find_last_not_of(kWhitespace) + 1 - begin);
}

} // namespace XML
