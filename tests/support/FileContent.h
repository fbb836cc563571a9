#pragma once

#include <string>

// Whole files under UTF-8 names of any length, without the library's help.

void WriteFileContent(const std::string& path, const std::string& content);

/// "(no file)" where there is none.
std::string ReadFileContent(const std::string& path);

bool IsReadOnly(const std::string& path);
