#pragma once

#ifndef yyFlexLexerOnce // the generated source has it already
#undef yyFlexLexer
#define yyFlexLexer JSONFlexLexer // a name of our own: a host may have scanners of the same kind
#include <FlexLexer.h>
#undef yyFlexLexer
#endif
#include <istream>
#include <string>
#include <string_view>

namespace JSON {

/// Makes tokens of JSON text. Bytes that fit no token are echoed to std::cout.
class Scanner : public JSONFlexLexer
{
public:
    explicit Scanner(std::istream& in);
    ~Scanner() override;
    Scanner(const Scanner&) = delete;
    Scanner& operator=(const Scanner&) = delete;

    /// The next token's number, 0 at the end of input.
    int yylex() override;

    /// The text of the last number (as written) or string (between its quotes, escapes as written). A number's is valid
    /// until the next token is asked for, a string's until the next string.
    const std::string_view& TokenText() const { return text_; }

private:
    [[noreturn]] void LexerError(const char* message) override;

    void MakeBuffer();
    std::string_view BytesAhead();

    std::string string_;
    std::string_view text_;
};

} // namespace JSON
