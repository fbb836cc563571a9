#include <KelInsInfra/json/internal/ByteRuns.h>
#include <KelInsInfra/json/internal/Escapes.h>
#include <KelInsInfra/json/internal/TextOutput.h>
#include <algorithm>
#include <ostream>

namespace JSON {

void TextOutput::PutBlanks(std::uint64_t count)
{
    while (count > 0 && !failed_) {
        char* const out = Room(1);
        const auto part =
            static_cast<std::size_t>(std::min<std::uint64_t>(count, static_cast<std::size_t>(end_ - out)));
        std::memset(out, ' ', part);
        next_ = out + part;
        count -= part;
    }
}

void TextOutput::PutEscaped(std::string_view text)
{
    Put('"');
    while (!text.empty() && !failed_) {
        const std::size_t part = std::min(text.size(), kSmallestPiece / 2); // each byte may become two
        char* out = Room(2 * part);
        for (std::size_t i = 0; i < part;) {
            if (i + 8 <= part && NeedNoEscape(EightBytes(text.data() + i))) {
                std::memcpy(out, text.data() + i, 8);
                out += 8;
                i += 8;
                continue;
            }
            const char letter = EscapeLetter(text[i]);
            if (letter != '\0')
                *out++ = '\\';
            *out++ = letter != '\0' ? letter : text[i];
            ++i;
        }
        next_ = out;
        text.remove_prefix(part);
    }
    Put('"');
}

void TextOutput::PutInParts(std::string_view text)
{
    while (!text.empty() && !failed_) {
        char* const out = Room(1);
        const std::size_t part = std::min(text.size(), static_cast<std::size_t>(end_ - out));
        std::memcpy(out, text.data(), part);
        next_ = out + part;
        text.remove_prefix(part);
    }
}

void StringOutput::NextPiece()
{
    const std::size_t size = pieces_.empty() ? kPiece / 16 : kPiece;
    if (!pieces_.empty())
        pieces_.back().used = static_cast<std::size_t>(next_ - begin_);
    pieces_.push_back({std::unique_ptr<char[]>(new char[size]), 0});
    begin_ = next_ = pieces_.back().memory.get();
    end_ = begin_ + size;
}

std::string StringOutput::Take()
{
    if (!pieces_.empty())
        pieces_.back().used = static_cast<std::size_t>(next_ - begin_);
    std::size_t size = 0;
    for (const Piece& piece : pieces_)
        size += piece.used;
    std::string text;
    text.reserve(size);
    for (const Piece& piece : pieces_)
        text.append(piece.memory.get(), piece.used);
    return text;
}

StreamOutput::StreamOutput(std::ostream& out) : out_(out), memory_(new char[kPiece])
{
    begin_ = next_ = memory_.get();
    end_ = begin_ + kPiece;
}

void StreamOutput::NextPiece()
{
    out_.write(begin_, next_ - begin_);
    failed_ = out_.fail();
    next_ = begin_;
}

void StreamOutput::Finish()
{
    NextPiece();
}

} // namespace JSON
