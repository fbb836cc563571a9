// What the parser does with streams: position, size, short reads, states.

#include "tests/support/ExpectThrowsText.h"
#include "tests/support/TempDirectory.h"
#include <KelInsInfra/xml/Exception.h>
#include <KelInsInfra/xml/Parser.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <streambuf>

namespace {

using XML::Parser;

constexpr auto kCannotRead = "Cannot read XML data";

void ExpectCannotRead(std::istream& input)
{
    ExpectThrowsText<std::runtime_error>([&] { Parser parser(input); }, kCannotRead);
    try {
        Parser parser(input);
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(typeid(error), typeid(std::runtime_error)); // not an XML::Exception
    }
}

/// A source that tells one size and delivers another, or cannot go back.
class Source : public std::streambuf
{
public:
    Source(std::string text, std::streamoff toldSize) : text_(std::move(text)), toldSize_(toldSize)
    {
        setg(text_.data(), text_.data(), text_.data() + text_.size());
    }

    bool canGoBack = true;

protected:
    pos_type seekoff(off_type, std::ios_base::seekdir from, std::ios_base::openmode) override
    {
        if (from == std::ios_base::end) {
            atEnd_ = true;
            return toldSize_;
        }
        if (from == std::ios_base::cur)
            return atEnd_ ? pos_type(toldSize_) : pos_type(0);
        return GoBack();
    }

    pos_type seekpos(pos_type, std::ios_base::openmode) override { return GoBack(); }

private:
    pos_type GoBack()
    {
        if (!canGoBack)
            return pos_type(off_type(-1));
        atEnd_ = false;
        return 0;
    }

    std::string text_;
    std::streamoff toldSize_;
    bool atEnd_ = false;
};

std::string RootOf(std::istream& input)
{
    return Parser(input).Parse()->GetRootElement()->GetName();
}

TEST(XmlParserStream, FailedStreamCannotBeRead)
{
    std::istringstream input("<a/>");
    input.setstate(std::ios_base::failbit);
    ExpectCannotRead(input);
}

TEST(XmlParserStream, BadStreamCannotBeRead)
{
    std::istringstream input("<a/>");
    input.setstate(std::ios_base::badbit);
    ExpectCannotRead(input);
}

TEST(XmlParserStream, MissingFileCannotBeRead)
{
    std::ifstream input("no such file.xml", std::ios::binary);
    ExpectCannotRead(input);
}

TEST(XmlParserStream, UnknownSizeCannotBeRead)
{
    Source source("<a/>", -1);
    std::istream input(&source);
    ExpectCannotRead(input);
}

TEST(XmlParserStream, SourceThatCannotGoBackCannotBeRead)
{
    Source source("<a/>", 4);
    source.canGoBack = false;
    std::istream input(&source);
    ExpectCannotRead(input);
}

TEST(XmlParserStream, StreamWithoutBufferCannotBeRead)
{
    std::istream input(nullptr);
    ExpectCannotRead(input);
}

TEST(XmlParserStream, AllIsReadWhereverTheStreamStands)
{
    std::istringstream input("<a/>");
    input.seekg(3);
    EXPECT_EQ(RootOf(input), "a");
}

TEST(XmlParserStream, StreamAtItsEndIsReadAgain)
{
    std::istringstream input("<a/>");
    std::string word;
    std::getline(input, word); // sets the end-of-file state alone
    ASSERT_TRUE(input.eof() && !input.fail());
    EXPECT_EQ(RootOf(input), "a");
}

TEST(XmlParserStream, IsNotUsedByParse)
{
    auto input = std::make_unique<std::istringstream>("<a/>");
    Parser parser(*input);
    input.reset();
    EXPECT_EQ(parser.Parse()->GetRootElement()->GetName(), "a");
}

TEST(XmlParserStream, FewerBytesThanToldLeaveZerosAfterTheText)
{
    Source source("<a>\n</a>\n", 12);
    std::istream input(&source);
    ExpectThrowsText<XML::Exception>([&] { RootOf(input); },
                                     "Buffer too long. Make sure the file was opened in binary mode (line 3)\n");
}

TEST(XmlParserStream, FewerBytesThanToldInsideATag)
{
    Source source("<a", 5);
    std::istream input(&source);
    ExpectThrowsText<XML::Exception>([&] { RootOf(input); }, "Malformed opening tag: a. Missing closing > (line 1)\n");
}

TEST(XmlParserStream, NoByteOfAToldSizeIsATextWithoutMarkup)
{
    Source source("", 5);
    std::istream input(&source);
    EXPECT_EQ(Parser(input).Parse()->GetRootElement(), nullptr);
}

TEST(XmlParserStream, MoreBytesThanToldAreNotRead)
{
    Source source("<a/><b/>", 4);
    std::istream input(&source);
    EXPECT_EQ(RootOf(input), "a");
}

TEST(XmlParserStream, FileInBinaryMode)
{
    const TempDirectory directory;
    const std::string path = directory / "x.xml";
    std::ofstream(path, std::ios::binary) << "<a>\r\n<b/>\r\n</a>\r\n";
    std::ifstream input(path, std::ios::binary);
    EXPECT_EQ(RootOf(input), "a");
}

/// Breaks after some bytes: a file on a disk or in a network that fails.
class BreakingSource : public Source
{
public:
    using Source::Source;

protected:
    int_type underflow() override { throw std::runtime_error("broken"); }
};

TEST(XmlParserStream, BreaksWhileItIsRead)
{
    BreakingSource source("<a/>", 100); // four bytes, then the failure
    std::istream input(&source);
    ExpectThrowsText<std::runtime_error>([&] { Parser parser(input); }, kCannotRead);
}

} // namespace
