#pragma once

#include "../../../tests/support/TempDirectory.h"
#include "../Log.h"
#include <string>

/// Reads and writes whole files, with the directories above them.
std::string ReadFile(const std::string& file);
void WriteFile(const std::string& file, const std::string& text);

/// A small payload of Orchard Server with its real package, in a fresh directory, and a place to install it to. What a
/// test leaves installed is removed.
class SamplePayload
{
public:
    explicit SamplePayload(const std::string& version = "1.0.0");
    ~SamplePayload();
    SamplePayload(const SamplePayload&) = delete;
    SamplePayload& operator=(const SamplePayload&) = delete;

    /// Writes a file of the payload, and the manifest anew.
    void Write(const std::string& path, const std::string& text) const;

    /// Writes the manifest of what the payload holds now.
    void WriteManifest() const;

    TempDirectory place;
    const std::string version;
    const std::string root = place / "payload";
    const std::string package = root + R"(\server\orchard.msi)";
    const std::string target = place / R"(a\b)";
    Setup::Log log{place / "setup.log"};
};
