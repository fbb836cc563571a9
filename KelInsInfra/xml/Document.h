#pragma once

#include <KelInsInfra/xml/Element.h>
#include <memory>

namespace XML {

/// What Parser made of a text: the root element, and the nodes of the top level. Only Parser makes and fills one.
class Document
{
    struct Token // only CreateDocument can make one, yet std::make_unique can call the constructor
    {
        explicit Token() = default;
    };

public:
    KELINS_API explicit Document(Token); ///< what Parser calls: nobody else has a Token
    KELINS_API ~Document();
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    /// Empty where the text had no element.
    KELINS_API std::shared_ptr<Element> GetRootElement() const;

    /// The root element (the same object) with the comments before and after it.
    KELINS_API ContentList GetContent() const;

private:
    friend class Printer;
    friend class Parser;

    static std::unique_ptr<Document> CreateDocument();

    std::shared_ptr<Element> root_;
    ContentList content_;
};

} // namespace XML
