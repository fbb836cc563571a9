#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A second opinion on ProcessBuilder::SplitArguments, written from its rules in another manner: it cuts whole pieces
/// off the front of the text, where the library steps from byte to byte.
class SplitArgumentsModel
{
public:
    static std::vector<std::string> Split(std::string_view text)
    {
        SplitArgumentsModel model{text};
        while (!model.rest_.empty())
            model.TakePiece();
        model.EndWord(false);
        return model.words_;
    }

private:
    explicit SplitArgumentsModel(std::string_view text) : rest_(text) {}

    void TakePiece()
    {
        switch (rest_.front()) {
        case ' ':
            Take(1);
            return EndWord(false);
        case '\\':
            Take(1);
            word_ += Take(1);
            return;
        case '\'':
            Take(1);
            word_ += Take(rest_.find('\''));
            return AfterQuoted();
        case '"':
            Take(1);
            for (word_ += Take(rest_.find_first_of("\"\\")); rest_.starts_with('\\');
                 word_ += Take(rest_.find_first_of("\"\\")))
                TakeBackslashInQuotes();
            return AfterQuoted();
        default:
            word_ += Take(rest_.find_first_of(" '\"\\"));
        }
    }

    void TakeBackslashInQuotes()
    {
        const std::string_view pair = Take(2);
        const bool keepsBackslash = pair != "\\\"" && pair != "\\\\";
        word_ += keepsBackslash ? pair : pair.substr(1);
    }

    void AfterQuoted()
    {
        if (rest_.empty())
            return; // left open
        Take(1);
        if (rest_.empty() || rest_.front() == ' ')
            EndWord(true);
    }

    void EndWord(bool evenEmpty)
    {
        if (evenEmpty || !word_.empty())
            words_.push_back(std::exchange(word_, {}));
    }

    std::string_view Take(std::size_t count)
    {
        const std::string_view taken = rest_.substr(0, count);
        rest_.remove_prefix(taken.size());
        return taken;
    }

    std::string_view rest_;
    std::string word_;
    std::vector<std::string> words_;
};
