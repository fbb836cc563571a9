#pragma once

#include <KelInsInfra/xml/Content.h>
#include <string>

namespace XML {

/// A run of character data, unescaped ("a<b", not "a&lt;b").
class KELINS_API Text final : public Content
{
    struct Token // only Create can make one, yet std::make_shared can call the constructor
    {
        explicit Token() = default;
    };

public:
    Text(Token, std::string text);     ///< what Create calls: nobody else has a Token
    Text(Text&&) = default;            ///< other is then fit only to be assigned or destroyed
    Text& operator=(Text&&) = default; ///< likewise

    /// A node with this text, taken as it is.
    static std::shared_ptr<Text> Create(const std::string& text);
    static std::shared_ptr<Text> Create(std::string&& text);

    std::shared_ptr<Content> Clone() const override;
    ContentType GetType() const override; ///< ContentText

    std::string GetText() const;           ///< the text
    void SetText(const std::string& text); ///< takes any text as it is

    /// The text without its leading and trailing spaces, tabs, carriage returns and line feeds; empty where there is
    /// nothing else. Other white space (form feed, non-breaking space) stays.
    std::string GetTextTrim() const;

private:
    friend class Parser;
    friend class Printer;

    std::string text_;
};

} // namespace XML
