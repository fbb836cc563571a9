#include <KelInsInfra/xml/Document.h>

namespace XML {

Document::Document(Token) {}

Document::~Document() = default;

std::unique_ptr<Document> Document::CreateDocument()
{
    return std::make_unique<Document>(Token());
}

std::shared_ptr<Element> Document::GetRootElement() const
{
    return root_;
}

ContentList Document::GetContent() const
{
    return content_;
}

} // namespace XML
