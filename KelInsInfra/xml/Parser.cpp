#include <KelInsInfra/xml/Comment.h>
#include <KelInsInfra/xml/Exception.h>
#include <KelInsInfra/xml/Parser.h>
#include <KelInsInfra/xml/Text.h>
#include <KelInsInfra/xml/internal/Bytes.h>
#include <KelInsInfra/xml/internal/Chunk.h>
#include <KelInsInfra/xml/internal/ElementLink.h>
#include <algorithm>
#include <array>
#include <istream>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace XML {
namespace {

/// Zero bytes behind the input: no byte that is looked for is zero, so short look-ahead needs no test for the end.
constexpr std::size_t kZeroBytesBehind = 4;

constexpr std::streamoff kLargestRead = 1 << 30;

/// More than std::allocate_shared needs beside the object.
constexpr std::size_t kOfSharedPointer = 64;

constexpr bool IsNameStart(unsigned char c)
{
    if (c >= 0x80)
        return c != 0x97 && c != 0xB7;
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

constexpr bool IsName(unsigned char c)
{
    return c >= 0x80 || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '-' || c == '.';
}

constexpr auto kIsName = [] {
    std::array<bool, 256> table{};
    for (std::size_t c = 0; c < table.size(); ++c)
        table[c] = IsName(static_cast<unsigned char>(c));
    return table;
}();

bool StartsName(char c)
{
    return IsNameStart(static_cast<unsigned char>(c));
}

bool ContinuesName(char c)
{
    return kIsName[static_cast<unsigned char>(c)];
}

std::string_view View(const char* begin, const char* end)
{
    return {begin, static_cast<std::size_t>(end - begin)};
}

std::string Joined(std::string_view before, std::string_view name, std::string_view after = {})
{
    std::string text(before);
    text += name;
    text += after;
    return text;
}

constexpr std::uint32_t kNoDigit = 255;

std::uint32_t DigitValue(char c, std::uint32_t base)
{
    if (c >= '0' && c <= '9')
        return static_cast<std::uint32_t>(c - '0');
    if (base == 16 && c >= 'a' && c <= 'f')
        return static_cast<std::uint32_t>(c - 'a' + 10);
    if (base == 16 && c >= 'A' && c <= 'F')
        return static_cast<std::uint32_t>(c - 'A' + 10);
    return kNoDigit;
}

/// Surrogates are encoded like any other number: in three bytes.
void AppendUtf8(std::string& text, std::uint32_t codePoint)
{
    const auto continuation = [codePoint](int shift) {
        return static_cast<char>(0x80 | ((codePoint >> shift) & 0x3F));
    };
    if (codePoint > 0x10FFFF)
        throw std::range_error("bad conversion");
    if (codePoint < 0x80) {
        text += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        text += static_cast<char>(0xC0 | (codePoint >> 6));
        text += continuation(0);
    } else if (codePoint < 0x10000) {
        text += static_cast<char>(0xE0 | (codePoint >> 12));
        text += continuation(6);
        text += continuation(0);
    } else {
        text += static_cast<char>(0xF0 | (codePoint >> 18));
        text += continuation(12);
        text += continuation(6);
        text += continuation(0);
    }
}

struct NamedReference
{
    std::string_view afterAmpersand;
    char byte;
};

constexpr NamedReference kNamedReferences[] = {
    {"amp;", '&'}, {"lt;", '<'}, {"gt;", '>'}, {"quot;", '"'}, {"apos;", '\''},
};

} // namespace

Parser::Parser(std::istream& input)
{
    static constexpr auto kMessage = "Cannot read XML data";
    if (!input)
        throw std::runtime_error(kMessage);
    input.seekg(0, std::ios_base::end);
    const std::streamoff size = input.tellg();
    input.seekg(0, std::ios_base::beg);
    if (size < 0 || !input)
        throw std::runtime_error(kMessage);
    buffer_ = std::make_unique_for_overwrite<char[]>(static_cast<std::size_t>(size) + kZeroBytesBehind);
    end_ = buffer_.get() + size;
    std::streamoff delivered = 0;
    for (; delivered < size && input; delivered += input.gcount()) // in pieces: file systems take 2 GiB at most
        input.read(buffer_.get() + delivered, std::min(size - delivered, kLargestRead));
    if (input.bad())
        throw std::runtime_error(kMessage);
    std::fill(buffer_.get() + delivered, buffer_.get() + size + kZeroBytesBehind, '\0'); // what was not delivered
}

Parser::~Parser() = default;

std::unique_ptr<Document> Parser::Parse()
{
    auto document = Document::CreateDocument();
    ChunkSource chunks;
    chunks_ = &chunks;
    document_ = document.get();
    openElements_.clear();
    at_ = FindAny<'<'>(buffer_.get(), end_); // what stands before the first markup means nothing
    const char* markupEnd = end_;
    while (at_ != end_) {
        ReadMarkup();
        markupEnd = at_;
        ReadText();
    }
    Finish(markupEnd);
    return document;
}

/// From behind a piece of markup to the next '<' or the end of the input.
void Parser::ReadText()
{
    text_.clear();
    const char* rawStart = at_;
    for (;;) {
        at_ = FindAny<'<', '&'>(at_, end_);
        if (at_ == end_)
            return; // no text: Finish judges what follows the last markup
        if (*at_ == '<')
            return EndText(rawStart);
        text_.append(rawStart, at_);
        GetNext();
        DecodeReference(text_);
        rawStart = at_;
    }
}

void Parser::EndText(const char* rawStart)
{
    const std::string_view text = Gathered(rawStart);
    if (IsBlank(text))
        return;
    if (openElements_.empty())
        Fail("Text found outside of the root Element");
    Append(Create<Text>(text));
}

/// The bytes from rawStart on, after what has been decoded before them.
std::string_view Parser::Gathered(const char* rawStart)
{
    return text_.empty() ? View(rawStart, at_) : std::string_view(text_.append(rawStart, at_));
}

void Parser::ReadMarkup()
{
    GetNext(); // from '<'
    if (StartsName(*at_))
        return ReadOpeningTag();
    switch (*at_) {
    case '/':
        return ReadClosingTag();
    case '!':
        return ReadDeclaration();
    case '?':
        GetNext();
        return SkipPast("?>");
    default:
        Fail("Malformed opening tag");
    }
}

void Parser::ReadOpeningTag()
{
    const std::string_view name = ReadName();
    const auto element = Create<Element>(name);
    EatWhitespace();
    attributes_.clear();
    while (StartsName(*at_))
        ReadAttribute();
    element->attributes_.reserve(attributes_.size());
    for (PendingAttribute& attribute : attributes_) {
        if (attribute.decodedValue.empty())
            element->attributes_.emplace_back(attribute.name, attribute.value);
        else
            element->attributes_.emplace_back(attribute.name, std::move(attribute.decodedValue));
    }

    if (openElements_.empty()) {
        if (document_->root_ != nullptr)
            Fail(Joined("Unexpected opening tag ", name, " after end of XML tree"));
        document_->root_ = element;
    }
    Append(element);
    const bool isEmptyElement = *at_ == '/';
    if (isEmptyElement)
        GetNext();
    if (*at_ != '>')
        Fail(Joined("Malformed opening tag: ", name, ". Missing closing >"));
    ++at_;
    if (!isEmptyElement)
        openElements_.push_back(element.get());
}

/// From the first byte of a name to what follows the value and white space.
void Parser::ReadAttribute()
{
    const std::string_view name = ReadName();
    EatWhitespace();
    if (*at_ != '=')
        Fail(Joined("Malformed attribute: ", name));
    GetNext();
    EatWhitespace();
    const char quote = *at_;
    if (quote != '"' && quote != '\'')
        Fail(Joined("Opening delimiter not found for attribute ", name));
    GetNext();
    const std::string_view value =
        ReadAttributeValue(quote == '"' ? AttributeValueDelimiter::DoubleQuote : AttributeValueDelimiter::SingleQuote);
    attributes_.push_back({name, value, text_});
    if (*at_ != quote)
        Fail(Joined("Closing delimiter not found for attribute ", name));
    GetNext();
    EatWhitespace();
}

/// Stops at the delimiter, or else at a '<' or at the end of the input. A value with references is left in text_.
std::string_view Parser::ReadAttributeValue(AttributeValueDelimiter delimiter)
{
    text_.clear();
    const char* rawStart = at_;
    for (;;) {
        at_ = delimiter == AttributeValueDelimiter::DoubleQuote ? FindAny<'"', '<', '&'>(at_, end_)
                                                                : FindAny<'\'', '<', '&'>(at_, end_);
        if (*at_ != '&')
            return Gathered(rawStart);
        text_.append(rawStart, at_);
        GetNext();
        DecodeReference(text_);
        rawStart = at_;
    }
}

void Parser::ReadClosingTag()
{
    GetNext();
    if (!StartsName(*at_))
        Fail("Malformed closing tag");
    const std::string_view name = ReadName();
    EatWhitespace();
    if (*at_ != '>')
        Fail(Joined("Malformed closing tag: ", name));
    if (openElements_.empty())
        Fail(Joined("Closing tag for ", name, " is not open"));
    const std::string& openName = openElements_.back()->name_;
    if (openName != name)
        Fail(Joined("Unexpected closing tag: ", name, " instead of " + openName));
    openElements_.pop_back();
    ++at_;
}

/// A comment is kept; all other declarations, CDATA sections too, are skipped.
void Parser::ReadDeclaration()
{
    if (at_[1] != '-' || at_[2] != '-') {
        ++at_;
        return SkipPast(">");
    }
    at_ += 3;
    const char* commentStart = at_;
    SkipPast("-->");
    Append(Create<Comment>(View(commentStart, at_ - 3)));
}

void Parser::SkipPast(std::string_view end)
{
    const std::size_t found = View(at_, end_).find(end);
    if (found == std::string_view::npos) {
        at_ = end_;
        Fail("Unexpected end of file");
    }
    at_ += found + end.size();
}

template <typename Node>
std::shared_ptr<Node> Parser::Create(std::string_view text)
{
    Chunk& chunk = chunks_->WithRoomFor(sizeof(Node) + kOfSharedPointer);
    return std::allocate_shared<Node>(ChunkAllocator<Node>(chunk), typename Node::Token(), std::string(text));
}

void Parser::Append(std::shared_ptr<Content> content)
{
    if (openElements_.empty())
        document_->content_.push_back(std::move(content));
    else
        Element::Link::Append(*openElements_.back(),
                              Element::Link::Create(std::move(content), chunks_->WithRoomFor(sizeof(Element::Link))));
}

void Parser::Finish(const char* markupEnd)
{
    if (!openElements_.empty())
        Fail("Not all opened tags are closed (" + std::to_string(openElements_.size()) + " remaining)");
    const char* text = std::find_if_not(markupEnd, end_, IsWhitespace);
    if (text == end_)
        return;
    if (*text == '\0')
        Fail("Buffer too long. Make sure the file was opened in binary mode");
    Fail("Text found outside of the root Element");
}

void Parser::GetNext()
{
    if (end_ - at_ <= 1) {
        at_ = end_;
        Fail("Unexpected end of file");
    }
    ++at_;
}

/// Stays on the last byte of the input, even if that is white space: it then stands where something else is expected.
void Parser::EatWhitespace()
{
    while (IsWhitespace(*at_) && end_ - at_ > 1)
        ++at_;
}

/// From the first byte of a name to the first behind it, which must exist.
std::string_view Parser::ReadName()
{
    const char* const start = at_;
    const char* at = start;
    do
        ++at;
    while (ContinuesName(*at));
    at_ = at - 1;
    GetNext();
    return View(start, at);
}

/// From the byte after '&' to the one behind the reference. A named reference must be followed by some byte: at the
/// very end of the input it is unknown.
void Parser::DecodeReference(std::string& text)
{
    if (*at_ == '#')
        return DecodeNumber(text);
    const std::string_view rest = View(at_, end_);
    for (const NamedReference& reference : kNamedReferences) {
        if (rest.size() > reference.afterAmpersand.size() && rest.starts_with(reference.afterAmpersand)) {
            text += reference.byte;
            at_ += reference.afterAmpersand.size();
            return;
        }
    }
    Fail(Joined("Unknown reference starting with ", rest.substr(0, 1)));
}

/// From '#' to behind the reference. It may lack its end, and be zero, where the input ends.
void Parser::DecodeNumber(std::string& text)
{
    GetNext();
    const std::uint32_t base = *at_ == 'x' ? 16 : 10; // no upper-case X
    if (base == 16)
        GetNext();
    std::uint32_t value = 0; // wraps
    for (; at_ != end_; ++at_) {
        const std::uint32_t digit = DigitValue(*at_, base);
        if (digit == kNoDigit)
            break;
        value = value * base + digit;
    }
    if (at_ != end_) {
        if (*at_ != ';' || value == 0)
            Fail(Joined("Unexpected character '", View(at_, at_ + 1), "' found in character reference"));
        ++at_;
    }
    AppendUtf8(text, value);
}

/// Lines are counted only here: those whose line feed stands before the current byte.
void Parser::Fail(const std::string& message) const
{
    throw Exception(message, 1 + static_cast<unsigned>(std::count<const char*>(buffer_.get(), at_, '\n')));
}

} // namespace XML
