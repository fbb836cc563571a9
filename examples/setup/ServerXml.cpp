#include "ServerXml.h"

#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/xml/Outputter.h>
#include <KelInsInfra/xml/Parser.h>
#include <stdexcept>

namespace Setup {
namespace {

using ElementPointer = std::shared_ptr<XML::Element>;

std::unique_ptr<XML::Document> Read(const std::string& file)
{
    std::ifstream stream = KelInsIO::GetInputFileStream(file, {});
    return XML::Parser(stream).Parse();
}

void Write(const std::string& file, const XML::Document& document)
{
    const bool wasReadOnly = KelInsIO::SetReadOnly(file, false);
    std::ofstream stream = KelInsIO::GetOutputFileStream(file, {});
    XML::Outputter().ToFile(document, stream);
    stream << '\n' << std::flush;
    if (!stream)
        throw std::runtime_error("Failed to write " + file);
    stream.close();
    KelInsIO::SetReadOnly(file, wasReadOnly);
}

ElementPointer Child(const XML::Element& parent, const std::string& name)
{
    for (const ElementPointer& child : parent.GetChildren())
        if (child->GetName() == name)
            return child;
    throw std::runtime_error("There is no element " + name + " in the element " + parent.GetName() + '.');
}

} // namespace

void ConfigureServerXml(const std::string& file, const std::string& target)
{
    const std::unique_ptr<XML::Document> document = Read(file);
    const ElementPointer server = document->GetRootElement();
    if (!server)
        throw std::runtime_error("The file " + file + " holds no element.");
    const ElementPointer service = Child(*server, "Service");
    Child(*service, "Connector")->SetAttribute("home", target);
    service->RemoveChildren("Sample");

    const ElementPointer documents = XML::Element::Create("Documents");
    documents->SetAttribute("path", target + R"(\docs)");
    service->AddChild(documents);
    Write(file, *document);
}

} // namespace Setup
