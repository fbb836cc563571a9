#include <KelInsInfra/json/Driver.h>
#include <KelInsInfra/json/internal/Parser.h>
#include <KelInsInfra/json/internal/Parsing.h>
#include <KelInsInfra/json/internal/ScannerLease.h>
#include <istream>
#include <streambuf>
#include <utility>

namespace JSON {
namespace {

/// A text as the buffer of an input stream, without a copy.
class TextBuffer : public std::streambuf
{
public:
    explicit TextBuffer(const std::string& text)
    {
        char* const begin = const_cast<char*>(text.data()); // only read from
        setg(begin, begin, begin + text.size());
    }
};

} // namespace

bool Driver::Parse(std::istream& in)
{
    ResetParser();
    const ScannerLease scanner;
    scanner->Begin(in.rdbuf());
    return Run(*scanner);
}

bool Driver::Parse(const std::string& text)
{
    // The text may be a key of the old document, which is held until the end; the driver lets go of it at once.
    const std::shared_ptr<Value> root = std::move(root_);
    const auto open = std::move(open_);
    ResetParser();
    TextBuffer buffer(text);
    const ScannerLease scanner;
    scanner->Begin(&buffer, text.size());
    return Run(*scanner);
}

/// Leaves the driver empty unless it succeeds.
bool Driver::Run(Scanner& scanner)
{
    Parsing parsing(nextKey_);
    if (Parser(parsing, scanner).parse() != 0)
        return false;
    std::shared_ptr<Value> root = parsing.TakeRoot();
    Open(root); // for those who add to what was parsed
    root_ = std::move(root);
    return true;
}

} // namespace JSON
