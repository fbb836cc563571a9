#pragma once

#include <string>

namespace Setup {

/// Adapts the configuration of a server, an XML file, to the place where it is installed:
///
///     <Server>
///         <Service name="...">
///             <Connector home="..."/>      gets the target as its home
///             <Sample>...</Sample>         all of them are removed
///             <Documents path="..."/>      is added
///
/// The file is written anew, indented and with sorted attributes; all other elements, texts and comments stay.
///
/// @throws std::runtime_error  when it is malformed (with the line), lacks one of these, or cannot be written.
void ConfigureServerXml(const std::string& file, const std::string& target);

} // namespace Setup
