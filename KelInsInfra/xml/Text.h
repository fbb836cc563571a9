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
    Text(Token, std::string text);
    Text(Text&&) = default;
    Text& operator=(Text&&) = default;

    static std::shared_ptr<Text> Create(const std::string& text);
    static std::shared_ptr<Text> Create(std::string&& text);

    std::shared_ptr<Content> Clone() const override;
    ContentType GetType() const override; ///< ContentText

    std::string GetText() const;
    void SetText(const std::string& text);

    /// The text without its leading and trailing spaces, tabs, carriage returns and line feeds; empty where there is
    /// nothing else. Other white space (form feed, non-breaking space) stays.
    std::string GetTextTrim() const;

private:
    friend class Parser;
    friend class Printer;

    std::string text_;
};

} // namespace XML
