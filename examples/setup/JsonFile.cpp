#include "JsonFile.h"

#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/json/Driver.h>
#include <iostream>
#include <sstream>
#include <stdexcept>

namespace Setup {
namespace {

/// Keeps what others write to std::cout as long as it lives.
class CapturedOutput
{
public:
    CapturedOutput() : previous_(std::cout.rdbuf(text_.rdbuf())) {}

    ~CapturedOutput() { std::cout.rdbuf(previous_); }

    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;

    std::string GetText() const { return text_.str(); }

private:
    std::ostringstream text_; // before the next: it is used there
    std::streambuf* previous_;
};

} // namespace

std::shared_ptr<JSON::Value> ReadJsonFile(const std::string& file)
{
    std::ifstream stream = KelInsIO::GetInputFileStream(file, {});
    if (!stream)
        throw std::runtime_error("There is no file " + file + ", or it cannot be read.");
    JSON::Driver driver;
    const CapturedOutput skipped; // the driver echoes bytes that fit no rule, and goes on
    const bool isJson = driver.Parse(stream);
    if (!isJson || skipped.GetText().find_first_not_of('\r') != std::string::npos)
        throw std::runtime_error("The file " + file + " is not JSON: it was damaged or cut off.");
    return driver.GetValue();
}

} // namespace Setup
