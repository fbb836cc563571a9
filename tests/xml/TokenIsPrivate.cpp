// Compiled once per CASE: 0 must compile, all others must be refused.

#include <KelInsInfra/xml/Comment.h>
#include <KelInsInfra/xml/Document.h>
#include <KelInsInfra/xml/Element.h>
#include <KelInsInfra/xml/Text.h>

void Make()
{
#if CASE == 0
    XML::Text::Create("");
    XML::Comment::Create("");
    XML::Element::Create("");
#elif CASE == 1
    XML::Text text(XML::Text::Token(), "");
#elif CASE == 2
    XML::Comment comment(XML::Comment::Token(), "");
#elif CASE == 3
    XML::Element element(XML::Element::Token(), "");
#elif CASE == 4
    XML::Document document{XML::Document::Token()};
#elif CASE == 5
    XML::Document::CreateDocument();
#elif CASE == 6
    XML::Text text({}, "");
#elif CASE == 7
    XML::Element element({}, "");
#elif CASE == 8
    std::make_shared<XML::Element>("");
#endif
}
