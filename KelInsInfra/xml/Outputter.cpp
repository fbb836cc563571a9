#include <KelInsInfra/xml/Outputter.h>
#include <KelInsInfra/xml/internal/Printer.h>
#include <ostream>

namespace XML {
namespace {

void Write(const std::string& text, std::ostream& output)
{
    output.write(text.data(), static_cast<std::streamsize>(text.size())); // unformatted: no padding
}

} // namespace

void Outputter::SetIndent(const std::string& indent)
{
    indent_ = indent;
}

std::string Outputter::ToString(const Document& document) const
{
    Printer printer(indent_);
    printer.PrintDocument(document);
    return printer.Take();
}

std::string Outputter::ToString(const Element& element, bool withDeclaration) const
{
    Printer printer(indent_);
    if (withDeclaration)
        printer.PrintDeclaration();
    printer.PrintElement(element, !withDeclaration);
    return printer.Take();
}

void Outputter::ToFile(const Document& document, std::ostream& output) const
{
    Write(ToString(document), output);
}

void Outputter::ToFile(const Element& element, std::ostream& output) const
{
    Write(ToString(element, true), output);
}

} // namespace XML
