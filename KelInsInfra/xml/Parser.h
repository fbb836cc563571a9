#pragma once

#include <KelInsInfra/Export.h>
#include <KelInsInfra/xml/Document.h>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace XML {

class ChunkSource;

/// Reads a practical subset of XML 1.0 into a Document.
///
/// @code
/// std::ifstream file("settings.xml", std::ios::binary);
/// const std::unique_ptr<XML::Document> document = XML::Parser(file).Parse();
/// @endcode
///
/// Read: elements, attributes in either kind of quotes, character data, comments, the references &amp; &lt; &gt; &quot;
/// &apos; and those by number (&#65; &#x41;).
///
/// Left out, so that nobody is surprised:
/// - Names have no colon: a prefixed tag or attribute is malformed. Letters, '_' and all bytes from 0x80 on (but 0x97
///   and 0xB7) begin a name; digits, '-' and '.' may follow.
/// - CDATA sections, the document type declaration and all else in "<!...>" are skipped, each to the first '>', and
///   processing instructions and the XML declaration to the first "?>": the characters in a CDATA section are lost, and
///   a document type declaration with an internal subset is refused or leaves its rest behind as text. No other entity
///   is known.
/// - The encoding is taken to be UTF-8 and neither looked at nor checked. Bytes pass through as they are: line ends are
///   not normalised, nor is white space in attribute values.
/// - Text of white space alone is dropped; all other text is kept untrimmed. Markup ends a text, so that "x<!--c-->y"
///   holds two.
/// - Whatever stands before the first '<' is ignored (a byte-order mark, for example): a file without any is an empty
///   document.
/// - An attribute that is written twice in one tag is kept twice.
///
/// Any nesting depth is fine. A parser is made for one input, and Parse is called once.
class Parser
{
public:
    /// Which quotes an attribute's value stands in; for the parser itself.
    enum class AttributeValueDelimiter : std::int32_t
    {
        SingleQuote = 0,
        DoubleQuote = 1
    };

    /// Reads the whole stream, from its start to its end as told by seeking, and does not use it afterwards. Open files
    /// in binary mode: in text mode fewer bytes come than were told, and Parse refuses the zero bytes that remain.
    ///
    /// @throws std::runtime_error  "Cannot read XML data" when the stream has failed already, cannot tell its size
    ///         or go back to its start, or breaks while it is read. What a stream throws whose exceptions() are
    ///         switched on is passed on.
    KELINS_API explicit Parser(std::istream& input);
    KELINS_API ~Parser();
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    /// The document; without a root element, and without an error, where the text has no element.
    ///
    /// @throws XML::Exception  "<message> (line <line>)\n", the line counted by the line feeds before the error, with
    ///         one of the messages (<byte> is one byte of the text):
    ///         - "Unexpected end of file"
    ///         - "Text found outside of the root Element"
    ///         - "Malformed attribute: <name>"
    ///         - "Opening delimiter not found for attribute <name>"
    ///         - "Closing delimiter not found for attribute <name>"
    ///         - "Unexpected opening tag <name> after end of XML tree"
    ///         - "Malformed opening tag: <name>. Missing closing >"
    ///         - "Malformed opening tag"
    ///         - "Malformed closing tag: <name>"
    ///         - "Malformed closing tag"
    ///         - "Closing tag for <name> is not open"
    ///         - "Unexpected closing tag: <name> instead of <name of the open element>"
    ///         - "Not all opened tags are closed (<count> remaining)"
    ///         - "Buffer too long. Make sure the file was opened in binary mode"
    ///         - "Unexpected character '<byte>' found in character reference"
    ///         - "Unknown reference starting with <byte>"
    /// @throws std::range_error  "bad conversion" for a reference to a number above 0x10FFFF.
    KELINS_API std::unique_ptr<Document> Parse();

private:
    void GetNext();
    void EatWhitespace();
    std::string_view ReadName();
    std::string_view ReadAttributeValue(AttributeValueDelimiter delimiter);
    void DecodeReference(std::string& text);
    void DecodeNumber(std::string& text);

    void ReadText();
    void EndText(const char* rawStart);
    std::string_view Gathered(const char* rawStart);
    void ReadMarkup();
    void ReadOpeningTag();
    void ReadAttribute();
    void ReadClosingTag();
    void ReadDeclaration();
    void SkipPast(std::string_view end);
    template <typename Node>
    std::shared_ptr<Node> Create(std::string_view text);
    void Append(std::shared_ptr<Content> content);
    void Finish(const char* markupEnd);
    [[noreturn]] void Fail(const std::string& message) const;

    struct PendingAttribute
    {
        std::string_view name;
        std::string_view value;   // as it stands in the buffer,
        std::string decodedValue; // but for one with references: empty for all others
    };

    std::unique_ptr<char[]> buffer_;           // the whole input, and zero bytes behind it
    const char* at_ = nullptr;                 // the current byte
    const char* end_ = nullptr;                // behind the last byte of the input; a zero byte
    ChunkSource* chunks_ = nullptr;            // for the nodes of the document
    Document* document_ = nullptr;             // the one under construction
    std::vector<Element*> openElements_;       // the innermost last; the document owns them
    std::string text_;                         // of the current text or value: all up to its last reference, decoded
    std::vector<PendingAttribute> attributes_; // of the current tag
};

} // namespace XML
