#pragma once

#include <KelInsInfra/Export.h>
#include <cstdint>
#include <string>
#include <vector>

namespace KelInsSys {

/// Starts one child process from a complete command line, and waits for its exit code.
///
/// @code
/// KelInsSys::ProcessBuilder process(R"("C:\Program Files\Orchard\setup.exe" /log "C:\my logs\setup.txt")");
/// if (!process.Start(false))
///     return ::GetLastError();
/// return process.Wait();
/// @endcode
///
/// Copies share the handles of process and thread; they are not duplicated, and each copy closes them when it is
/// destroyed. Once one is gone the others hold numbers of closed handles: do not wait through them, and mind that they
/// close those numbers again, whatever these stand for by then. Nothing here throws, except std::bad_alloc. One object
/// is for one thread at a time.
class ProcessBuilder
{
public:
    /// @param command  UTF-8; the program and its arguments as one text, passed to the system as it is: nothing is
    ///        quoted or escaped. The program is the first token. Put it in double quotes when its path holds a space:
    ///        without them the system tries C:\Program.exe before C:\Program Files\x.exe. Give its whole path: a bare
    ///        name is searched for by the system's rules. Arguments that are empty or hold spaces need double quotes
    ///        too, and a double quote in one, or backslashes before one, what the started program expects (mostly \"
    ///        and doubled backslashes). The command processor's own commands, pipes and redirections need
    ///        "cmd.exe /c ..."; documents cannot be opened.
    KELINS_API explicit ProcessBuilder(const std::string& command);

    KELINS_API ProcessBuilder(const ProcessBuilder& other);            ///< shares the handles, see above
    KELINS_API ProcessBuilder& operator=(const ProcessBuilder& other); ///< likewise; closes none of its own before

    /// Closes the handles of process and thread; the child is neither waited for nor ended.
    KELINS_API ~ProcessBuilder();

    /// Whether the child gets this process's inheritable handles: 1 (the default) yes, 0 no. Passed on as it is.
    KELINS_API void SetInheritHandles(std::int32_t value);

    /// Starts the process, with this process's environment and current directory.
    ///
    /// A second start overwrites the handles of the first without closing them. A failed one leaves them as they were.
    /// @param showWindow  false: a console program gets no window (CREATE_NO_WINDOW); true: it gets this process's
    ///        console, or a new window. Programs with windows of their own show them in either case.
    /// @return whether the system created the process; when not, ::GetLastError() tells why.
    KELINS_API bool Start(bool showWindow);

    /// Waits, without limit, for the process of the last successful Start to end.
    ///
    /// Without one this never returns: test the result of Start first.
    /// @return its exit code; codes above 0x7FFFFFFF, as crashes give, are negative (0xC0000005 is -1073741819); 0 when
    ///         the code cannot be read. The handles stay open.
    KELINS_API std::int32_t Wait();

    /// Cuts a text into arguments by a small convention like a shell's, which is not the system's. Start does not use
    /// it.
    ///
    /// Spaces separate, runs of them like one; tabs do not. A backslash keeps the next byte, whatever it is. Between
    /// apostrophes all is kept as it is. Between double quotes too, but \" is a quote and \\ a backslash. Quotes may
    /// begin and end within an argument: a'b c'd is "ab cd". Empty quotes are an empty argument when a space or the end
    /// follows. A quote left open ends with the text; a last backslash outside quotes is dropped.
    /// @param commandLine  UTF-8, or any bytes.
    /// @return the arguments in order; none for an empty text or one of spaces only.
    KELINS_API static std::vector<std::string> SplitArguments(const std::string& commandLine);

private:
    struct Process
    {
        void* process; ///< the invalid handle value until a start succeeds
        void* thread;  ///< likewise
        std::uint32_t processId;
        std::uint32_t threadId;
    };

    std::string command_;
    Process process_;
    std::int32_t inheritHandles_ = 1;
};

} // namespace KelInsSys
