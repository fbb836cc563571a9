#include <KelInsInfra/hash/SHA256.h>
#include <KelInsInfra/hash/internal/Sha256Engines.h>
#include <algorithm>
#include <cstring>
#include <istream>
#include <memory>

namespace KelInsHash {
namespace {

constexpr std::uint64_t kBlockSize = SHA256::_cChunkSize;
constexpr std::streamsize kPieceSize = 65536;

} // namespace

Sha256Engines::Engine Sha256Engines::Fastest(bool haveShaExtensions, bool haveBmi2)
{
    if (haveShaExtensions)
        return &ShaExtensions;
    return haveBmi2 ? &Bmi2 : &Portable;
}

SHA256::SHA256()
{
    Reset();
}

void SHA256::Reset()
{
    chaining_ = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a, 0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    compressed_ = 0;
    waiting_ = 0;
}

void SHA256::Add(const char* data, std::uint64_t length)
{
    if (data == nullptr || length == 0)
        return;
    const auto* input = reinterpret_cast<const unsigned char*>(data);
    if (waiting_ > 0) {
        const std::uint64_t taken = std::min(length, kBlockSize - waiting_);
        std::memcpy(block_.data() + waiting_, input, taken);
        waiting_ += taken;
        input += taken;
        length -= taken;
        if (waiting_ == kBlockSize) {
            Update(block_.data(), 1);
            compressed_ += kBlockSize;
            waiting_ = 0;
        }
    }
    if (const std::uint64_t blocks = length / kBlockSize; blocks > 0) {
        Update(input, blocks);
        compressed_ += blocks * kBlockSize;
        input += blocks * kBlockSize;
        length -= blocks * kBlockSize;
    }
    if (length > 0) { // the buffer is empty by now
        std::memcpy(block_.data(), input, length);
        waiting_ = length;
    }
}

void SHA256::Add(const std::string& data)
{
    Add(data.data(), data.size());
}

void SHA256::Add(std::istream& stream)
{
    if (stream.fail())
        return;
    const std::unique_ptr<char[]> piece = std::make_unique<char[]>(kPieceSize);

    struct AppendWhatWasRead // on leaving: the stream may throw after a read that delivered bytes
    {
        SHA256& hash;
        const char* data;
        const std::istream& source;

        ~AppendWhatWasRead() { hash.Add(data, static_cast<std::uint64_t>(source.gcount())); }
    };

    do {
        const AppendWhatWasRead append{*this, piece.get(), stream};
        stream.read(piece.get(), kPieceSize);
    } while (stream.gcount() > 0 && !stream.fail());
}

std::string SHA256::GetHash() const
{
    std::array<unsigned char, 2 * kBlockSize> last{};
    std::memcpy(last.data(), block_.data(), waiting_);
    last[waiting_] = 0x80;
    const std::uint64_t bits = Sha256Engines::BigEndian((compressed_ + waiting_) * 8);
    const std::uint64_t blocks = waiting_ + 1 + sizeof bits <= kBlockSize ? 1 : 2;
    std::memcpy(last.data() + blocks * kBlockSize - sizeof bits, &bits, sizeof bits);

    SHA256 finished = *this;
    finished.Update(last.data(), blocks);
    std::string digest(8 * finished.chaining_.size(), '0');
    char* digits = digest.data();
    for (const std::uint32_t word : finished.chaining_) {
        IntToHexa(word, digits);
        digits += 8;
    }
    return digest;
}

std::string SHA256::GetHash(const std::string& data)
{
    SHA256 hash;
    hash.Add(data);
    return hash.GetHash();
}

void SHA256::Update(const unsigned char* blocks, std::uint64_t count)
{
    static const Sha256Engines::Engine engine =
        Sha256Engines::Fastest(Sha256Engines::HaveShaExtensions(), Sha256Engines::HaveBmi2());
    engine(chaining_, blocks, count);
}

void SHA256::IntToHexa(std::uint32_t word, char* digits)
{
    for (int i = 0; i < 8; ++i)
        digits[i] = "0123456789abcdef"[word >> (28 - 4 * i) & 0xF];
}

} // namespace KelInsHash
