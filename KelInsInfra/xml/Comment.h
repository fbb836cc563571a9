#pragma once

#include <KelInsInfra/xml/Content.h>
#include <string>

namespace XML {

/// A comment: what stands between "<!--" and "-->". Nothing keeps a text with "--" out.
class KELINS_API Comment final : public Content
{
    struct Token // only Create can make one, yet std::make_shared can call the constructor
    {
        explicit Token() = default;
    };

public:
    Comment(Token, std::string comment);     ///< what Create calls: nobody else has a Token
    Comment(Comment&&) = default;            ///< other is then fit only to be assigned or destroyed
    Comment& operator=(Comment&&) = default; ///< likewise

    /// A node with this text, taken as it is.
    static std::shared_ptr<Comment> Create(const std::string& comment);
    static std::shared_ptr<Comment> Create(std::string&& comment);

    std::shared_ptr<Content> Clone() const override;
    ContentType GetType() const override; ///< ContentComment

    std::string GetComment() const;              ///< the text
    void SetComment(const std::string& comment); ///< takes any text as it is

private:
    friend class Parser;
    friend class Printer;

    std::string comment_;
};

} // namespace XML
