// Java properties: loading undoes saving, for keys and values; what is saved holds nothing that a reader would take for
// a delimiter, a comment or a line end.

#include <KelInsInfra/config/KelInsJavaProperties.h>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

/// Whether each special byte stands right after a backslash that is not itself escaped.
bool IsEscaped(const std::string& saved, bool isKey)
{
    for (std::size_t i = 0; i < saved.size(); ++i) {
        const char c = saved[i];
        if (c == '\\')
            ++i;
        else if (c == '=' || c == ':' || c == '#' || c == '!' || c == '\n' || c == '\r' || c == '\t' || c == '\f' ||
                 (c == ' ' && (isKey || i == 0)))
            return false;
    }
    return true;
}

/// The unescaping rules, written out with the terminator in sight.
std::string LiteralLoad(const std::string& text)
{
    const char* input = text.c_str();
    std::string result;
    std::size_t index = 0;
    for (std::size_t consumed = 0; consumed < text.size(); ++consumed) {
        char c = input[index++];
        if (c == '\\') {
            c = input[index++];
            ++consumed;
            const std::string letters = "fnrt";
            const std::size_t letter = c == '\0' ? std::string::npos : letters.find(c);
            if (letter != std::string::npos)
                c = "\f\n\r\t"[letter];
        }
        result += c;
    }
    return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (const bool isKey : {false, true}) {
        const std::string saved = KelInsJavaProperties::saveConvert(text, isKey);
        Require(IsEscaped(saved, isKey));
        Require(KelInsJavaProperties::loadConvert(saved) == text);
    }
    Require(KelInsJavaProperties::loadConvert(text) == LiteralLoad(text));
    return 0;
}
