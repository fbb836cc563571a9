#pragma once

#include <KelInsInfra/Export.h>
#include <KelInsInfra/xml/Document.h>
#include <iosfwd>
#include <string>

namespace XML {

/// Writes trees as indented XML text with line feeds as line ends.
///
/// Each item stands on a line of its own, but for text, which stays within its element's line (<a>text</a>), and for an
/// element or comment right behind a text. Attributes are sorted by their written form (name="value", byte by byte: a1
/// comes before a). In text and in attribute values & ' " < > become references; names and comments are written as they
/// are, unchecked. Text of white space alone is left out; other text is not trimmed. An element without any content is
/// written <a/>. The last line has no end.
///
/// Any nesting depth is fine. An outputter holds nothing but its indent unit and can be used again.
class Outputter
{
public:
    /// Sets what each nesting level is indented by: at first two spaces; empty for no indentation.
    KELINS_API void SetIndent(const std::string& indent);

    /// The declaration <?xml version="1.0" encoding="UTF-8"?> and the nodes of the top level, each on a new line.
    KELINS_API std::string ToString(const Document& document) const;

    /// The element, after the declaration and a line break where it is wanted.
    KELINS_API std::string ToString(const Element& element, bool withDeclaration) const;

    /// Writes what ToString(document) gives. The stream is neither checked nor flushed.
    KELINS_API void ToFile(const Document& document, std::ostream& output) const;

    /// Writes what ToString(element, true) gives. The stream is neither checked nor flushed.
    KELINS_API void ToFile(const Element& element, std::ostream& output) const;

private:
    std::string indent_ = "  ";
};

} // namespace XML
