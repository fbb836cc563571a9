#pragma once

#include <cstring>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace JSON {

/// Text on its way out, gathered in one piece of memory at a time.
class TextOutput
{
public:
    TextOutput() = default;
    virtual ~TextOutput() = default;
    TextOutput(const TextOutput&) = delete;
    TextOutput& operator=(const TextOutput&) = delete;

    void Put(char byte)
    {
        if (next_ == end_)
            NextPiece();
        *next_++ = byte;
    }

    /// Short texts.
    template <std::size_t N>
    void Put(const char (&text)[N])
    {
        char* const out = Room(N - 1);
        std::memcpy(out, text, N - 1);
        next_ = out + N - 1;
    }

    void PutRaw(std::string_view text)
    {
        if (text.size() > static_cast<std::size_t>(end_ - next_)) {
            PutInParts(text);
            return;
        }
        if (!text.empty())
            std::memcpy(next_, text.data(), text.size());
        next_ += text.size();
    }

    void PutBlanks(std::uint64_t count);

    /// The text in quotes, escaped.
    void PutEscaped(std::string_view text);

    /// Whether there is no use in going on.
    bool HasFailed() const { return failed_; }

protected:
    static constexpr std::size_t kPiece = 65536;

    /// Takes what was gathered, if anything, and gives memory of at least kSmallestPiece.
    virtual void NextPiece() = 0;

    char* begin_ = nullptr;
    char* next_ = nullptr;
    char* end_ = nullptr;
    bool failed_ = false;

private:
    static constexpr std::size_t kSmallestPiece = 512;

    char* Room(std::size_t bytes) ///< up to kSmallestPiece
    {
        if (static_cast<std::size_t>(end_ - next_) < bytes)
            NextPiece();
        return next_;
    }

    void PutInParts(std::string_view text);
};

/// Gathers all of the text.
class StringOutput : public TextOutput
{
public:
    std::string Take(); ///< once, at the end

private:
    struct Piece
    {
        std::unique_ptr<char[]> memory;
        std::size_t used;
    };

    void NextPiece() override;

    std::vector<Piece> pieces_;
};

/// Writes to a stream.
class StreamOutput : public TextOutput
{
public:
    explicit StreamOutput(std::ostream& out);
    void Finish(); ///< at the end: writes what is left

private:
    void NextPiece() override;

    std::ostream& out_;
    std::unique_ptr<char[]> memory_;
};

} // namespace JSON
