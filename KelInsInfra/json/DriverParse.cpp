#include <KelInsInfra/json/Driver.h>
#include <KelInsInfra/json/internal/Parser.h>
#include <KelInsInfra/json/internal/Pool.h>
#include <KelInsInfra/json/internal/Scanner.h>
#include <istream>
#include <streambuf>

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

/// The driver's state during a parse, which leaves nothing behind unless it succeeds.
class Driver::Parsing
{
public:
    Parsing(Driver& driver, Pool& pool) : driver_(driver)
    {
        driver_.ResetParser();
        driver_.pool_ = &pool;
    }

    ~Parsing()
    {
        driver_.pool_ = nullptr;
        if (!succeeded_)
            driver_.ResetParser();
    }

    Parsing(const Parsing&) = delete;
    Parsing& operator=(const Parsing&) = delete;

    void Succeed()
    {
        driver_.Open(driver_.root_); // for those who add to what was parsed
        succeeded_ = true;
    }

private:
    Driver& driver_;
    bool succeeded_ = false;
};

bool Driver::Parse(std::istream& in)
{
    Pool pool(Pool::kFirstChunk);
    Parsing parsing(*this, pool);
    Scanner scanner(in);
    if (Parser(*this, scanner, pool).parse() != 0)
        return false;
    parsing.Succeed();
    return true;
}

bool Driver::Parse(const std::string& text)
{
    const std::shared_ptr<Value> root = root_; // the text may be a key in the old document, which goes first
    const auto open = open_;
    TextBuffer buffer(text);
    std::istream in(&buffer);
    return Parse(in);
}

} // namespace JSON
