#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

// What the sweeps do again and again while the system, or the heap, fails them.

namespace Sweeps {

/// Where an operation works.
struct Place
{
    std::string directory; ///< exists; its name is not ASCII, so that each path is converted by the system
    std::string key;       ///< below HKEY_CURRENT_USER; exists
};

/// What the rewriting of a file, or another operation, may leave of a file when it fails.
enum class Leaves
{
    Whole,   ///< each file has its old or its new content
    Torn,    ///< files that were being written may hold part of it
    Rewrite, ///< the target only while the whole new content lies in the temporary file, and never without an exception
};

/// One exported operation, or one way through it.
struct Operation
{
    std::string name;                 ///< letters and digits: it becomes a test's name
    std::vector<std::string> exports; ///< what it exercises, as tests/exports.txt spells it before the arguments

    /// Makes what it works on; without the library where the library is to fail.
    std::function<void(const Place&)> prepare{};

    /// What came out, in words. Throws what the library throws.
    std::function<std::string(const Place&)> run;

    /// Texts of its exceptions. '$' stands for the directory; after a final " - " come the system's text and a line
    /// feed.
    std::vector<std::string> texts{};

    /// Whether a result that is not the right one is what the documentation promises when the system fails.
    std::function<bool(std::string_view result, std::string_view right)> documented{};

    Leaves leaves = Leaves::Whole;

    /// Likewise, when memory is out: for what keeps exceptions to itself.
    std::function<bool(std::string_view result, std::string_view right)> withoutMemory{};

    /// Whether the process keeps what the first run found, be it as the documentation promises for a failure.
    bool isKept = false;

    /// Takes away what lies outside the place.
    std::function<void()> cleanUp{};
};

/// Appends operations; each defined in the file that its name tells.
void AddFileOperations(std::vector<Operation>& operations);
void AddRewriteOperations(std::vector<Operation>& operations);
void AddRegistryOperations(std::vector<Operation>& operations);
void AddSystemOperations(std::vector<Operation>& operations);
void AddTextOperations(std::vector<Operation>& operations);     ///< portable
void AddDocumentOperations(std::vector<Operation>& operations); ///< portable
void AddInternalOperations(std::vector<Operation>& operations); ///< portable, and not exported

// --- answers that the documentation promises

inline bool IsFalse(std::string_view result, std::string_view)
{
    return result == "false";
}

inline bool IsNothing(std::string_view result, std::string_view)
{
    return result.empty();
}

inline bool IsZero(std::string_view result, std::string_view)
{
    return result == "0";
}

/// A search that ends early has shown the beginning.
inline bool EndsEarly(std::string_view result, std::string_view right)
{
    return right.starts_with(result);
}

inline std::string InWords(bool answer)
{
    return answer ? "true" : "false";
}

} // namespace Sweeps
