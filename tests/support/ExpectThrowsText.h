#pragma once

#include <exception>
#include <gtest/gtest.h>
#include <string>
#include <typeinfo>

/// Expects a call to throw exactly the exception type E (or, for what the library does not export, a type derived from
/// E) whose whole text is the given one.
template <typename E, typename Call>
void ExpectThrowsText(const Call& call, const std::string& text)
{
    try {
        call();
    } catch (const E& error) {
        EXPECT_EQ(error.what(), text);
        return;
    } catch (const std::exception& error) {
        ADD_FAILURE() << "threw " << typeid(error).name() << ": " << error.what() << "\nexpected text: " << text;
        return;
    }
    ADD_FAILURE() << "threw nothing; expected: " << text;
}
