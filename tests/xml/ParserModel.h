#pragma once

#include <string>

/// What XML::Parser makes of a text, as one line that tells all of it: the tree, or the type and the text of the error.
std::string OutcomeOfParser(const std::string& text);

/// What it should make of it: a second parser, written byte by byte after the rules and without any thought of speed,
/// which shares nothing with the library.
std::string OutcomeOfModel(const std::string& text);
