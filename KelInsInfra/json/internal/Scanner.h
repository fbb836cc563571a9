#pragma once

#ifndef yyFlexLexerOnce // the generated source has it already
#undef yyFlexLexer
#define yyFlexLexer KelInsJSONFlexLexer // a name of our own: a host may have scanners of the same kind
#include <FlexLexer.h>
#undef yyFlexLexer
#endif
#include <cstddef>
#include <streambuf>
#include <string_view>
#include <vector>

namespace JSON {

/// Makes tokens of JSON text. Bytes that fit no token are echoed to std::cout. A scanner serves one text after the
/// other.
class Scanner final : public KelInsJSONFlexLexer
{
public:
    /// A number as written, or what stands between the quotes of a string.
    struct Text
    {
        std::string_view bytes;
        bool hasEscapes = false; ///< may hold backslashes, which are as written
    };

    Scanner();
    ~Scanner() override;
    Scanner(const Scanner&) = delete;
    Scanner& operator=(const Scanner&) = delete;

    /// Goes to the beginning of a text. End must follow, also where this throws.
    /// @param source  may be null: that is no text.
    /// @param expectedSize  of the text, where it is known.
    void Begin(std::streambuf* source, std::size_t expectedSize = kLargestBuffer);

    /// Lets go of the text and of all memory.
    void End() noexcept;

    /// The next token's number, 0 at the end of input.
    int Next();

    /// Of the last number or string. A number's is valid until the next token is asked for, a string's until the next
    /// but one.
    const Text& TokenText() const { return text_; }

private:
    static constexpr std::size_t kLargestBuffer = 16384; ///< at first; it grows for a number that is longer

    int yylex() override;
    int LexerInput(char* buffer, int size) override;
    void LexerOutput(const char* text, int size) override;
    [[noreturn]] void LexerError(const char* message) override;

    void Disconnect() noexcept;
    char* EndOfBuffer() const;
    inline void GoOnAt(char* next);
    int TakeByRules();
    inline int Take(int token, int size);
    bool TakeString();
    bool TakeNumber();

    // Flex's functions that push or switch buffers are never called: they would take this stack for memory of the heap.
    yy_buffer_state* buffers_[1] = {};         ///< flex's stack of them
    alignas(void*) std::byte buffer_[80] = {}; ///< where the one in it lies
    std::vector<char> string_;
    Text text_;
};

} // namespace JSON
