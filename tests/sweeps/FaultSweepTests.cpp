// Each exported operation, with each call of the system that it makes failing: the first, the second, and so on until
// it gets by without; once, and from there on. Whatever fails, the operation gives the right result, or what its
// documentation promises for the case, or throws with a text of its own; it leaves files whole, loses no handle and no
// block of memory, and works the next time.

#include "KillSweep.h"
#include "Scene.h"
#include "Session.h"
#include "Watchdog.h"

#include "tests/support/HandleCount.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/KelInsSys.h>
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <set>

namespace {

using Sweeps::Fault;
using Sweeps::HookedFunction;
using Sweeps::Leaves;
using Sweeps::Operation;
using Sweeps::Outcome;
using Sweeps::Place;
using Sweeps::Scene;
using Sweeps::Session;
using Sweeps::Traces;

/// What came about of all faults, for the table.
struct Tally
{
    std::size_t calls = 0;
    std::size_t faults = 0;
    std::size_t right = 0;
    std::size_t documented = 0;
    std::size_t exceptions = 0;
};

void PrintRow(const std::string& name, const Tally& tally)
{
    std::printf("| %-28s | %5zu | %6zu | %6zu | %10zu | %13zu |\n", name.c_str(), tally.calls, tally.faults,
                tally.right, tally.exceptions, tally.documented);
}

/// The table's head before the first test and its sum after the last; and what was made to fail at all.
class Table : public testing::Environment
{
public:
    void SetUp() override
    {
        std::printf("| %-28s | calls | faults | right  | exceptions | as documented |\n", "operation");
        std::printf("|------------------------------|-------|--------|--------|------------|---------------|\n");
    }

    void TearDown() override
    {
        PrintRow("all", sum);
        const testing::UnitTest& tests = *testing::UnitTest::GetInstance();
        if (tests.test_to_run_count() == tests.total_test_count())
            ExpectThatEachFunctionFailed();
    }

    /// One that is known to fail, and never failed, is known wrongly, or no operation here reaches it.
    static void ExpectThatEachFunctionFailed()
    {
        Session session;
        for (const HookedFunction& function : session.Injector().Functions())
            EXPECT_NE(failed.contains(function.name), Sweeps::IsReachedByNone(function.name)) << function.name;
    }

    static inline Tally sum;
    static inline std::set<std::string> failed; ///< functions
};

std::vector<std::string> OperationNames()
{
    std::vector<std::string> names;
    const Session session;
    for (const Operation& operation : session.All())
        names.push_back(operation.name);
    return names;
}

// --- running

/// What an operation did when nothing failed.
struct Reference
{
    std::string result;
    Traces before;
    Traces after;
    std::vector<HookedFunction> functions; ///< with the number of their calls
    std::ptrdiff_t blocks = 0;             ///< that two runs keep: what the product remembers for the process
};

/// What came of one fault.
struct Faulty
{
    Outcome outcome;
    Traces after;
    bool happened = false;
    bool again = false; ///< whether the operation ran once more, without a fault
    Outcome next;
    Traces afterNext;
    std::ptrdiff_t blocks = 0;
    bool keepsHandles = false; ///< more, or fewer, than before
};

std::ptrdiff_t Difference(std::size_t after, std::size_t before)
{
    return static_cast<std::ptrdiff_t>(after) - static_cast<std::ptrdiff_t>(before);
}

Reference RunUnharmed(const Scene& scene, const std::string& name)
{
    static Outcome outcome;
    Session session;
    const Operation& operation = session.Find(name);
    Reference reference;
    Prepare(scene, operation);
    reference.before = scene.Look();
    std::size_t blocks = Sweeps::BlocksInUse();
    session.Injector().Arm();
    session.Run(operation, scene.Get(), outcome);
    session.Injector().Disarm();
    reference.blocks = Difference(Sweeps::BlocksInUse(), blocks);
    EXPECT_EQ(outcome.kind, Outcome::Kind::Result) << outcome.Text();
    reference.result = outcome.Text();
    reference.after = scene.Look();
    reference.functions = session.Injector().Functions();
    Prepare(scene, operation);
    blocks = Sweeps::BlocksInUse();
    session.Run(operation, scene.Get(), outcome);
    reference.blocks += Difference(Sweeps::BlocksInUse(), blocks);
    EXPECT_EQ(outcome.Text(), reference.result);
    EXPECT_EQ(session.Injector().Unknown(), std::vector<std::string>()) << "which failures have these?";
    if (operation.cleanUp)
        operation.cleanUp();
    return reference;
}

/// @param again  whether the operation is to run once more afterwards, if the fault came about.
Faulty RunWithFault(const Scene& scene, const std::string& name, bool again, const std::function<void(Session&)>& arm)
{
    static Faulty run;
    Session session;
    const Operation& operation = session.Find(name);
    Prepare(scene, operation);
    const auto handles = NextHandles();
    std::size_t blocks = Sweeps::BlocksInUse();
    arm(session);
    session.Run(operation, scene.Get(), run.outcome);
    session.Injector().Disarm();
    run.happened = session.Injector().Happened();
    run.blocks = Difference(Sweeps::BlocksInUse(), blocks);
    run.keepsHandles = NextHandles() != handles;
    run.after = scene.Look();
    run.again = run.happened && again;
    if (run.again) {
        Prepare(scene, operation);
        blocks = Sweeps::BlocksInUse();
        session.Run(operation, scene.Get(), run.next);
        run.blocks += Difference(Sweeps::BlocksInUse(), blocks);
        run.afterNext = scene.Look();
    }
    if (operation.cleanUp)
        operation.cleanUp();
    return run;
}

// --- judging

/// Whether a system's text is that of the injected code, or of a failure that follows from it.
bool IsSystemText(const std::string& text, const std::string& function, const Fault& fault)
{
    if (function == "FormatMessageW" || function == "WideCharToMultiByte") // the text itself cannot be had
        return true;
    std::set<std::string> texts;
    if (fault.code.lastError)
        texts.insert(KelInsSys::GetLastErrorMessage(*fault.code.lastError));
    if (fault.code.errnoValue)
        texts.insert(KelInsSys::GetErrnoMessage(*fault.code.errnoValue));
    if (!fault.code.lastError && !fault.code.errnoValue) // returns its code
        texts.insert(KelInsSys::GetLastErrorMessage(static_cast<std::uint32_t>(fault.result)));
    for (const int value :
         {ENOENT, EACCES, EINVAL, EIO, EBADF, ENOMEM, ENOSPC, EEXIST}) // what the C runtime makes of it
        texts.insert(KelInsSys::GetErrnoMessage(value));
    for (const auto code : {ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_DIR_NOT_EMPTY,
                            ERROR_ALREADY_EXISTS, ERROR_INVALID_NAME})
        texts.insert(KelInsSys::GetLastErrorMessage(
            static_cast<std::uint32_t>(code))); // what follows from a step that was left out
    return texts.contains(text);
}

std::string Expanded(std::string text, const Place& place)
{
    KelInsString::ReplaceAll(text, "$K", place.key, 0);
    KelInsString::ReplaceAll(text, "$", place.directory, 0);
    return text;
}

bool IsTextOf(const Operation& operation, const std::string& text, const Place& place, const std::string& function,
              const Fault& fault)
{
    return std::any_of(operation.texts.begin(), operation.texts.end(), [&](const std::string& pattern) {
        const std::string expected = Expanded(pattern, place);
        if (!expected.ends_with(" - "))
            return text == expected;
        return text.starts_with(expected) && text.ends_with('\n') &&
               IsSystemText(text.substr(expected.size(), text.size() - expected.size() - 1), function, fault);
    });
}

std::string ContentOf(const Traces& traces, const std::string& name)
{
    const auto found = traces.find(name);
    return found == traces.end() ? "(no file)" : found->second.substr(1);
}

/// Whether each file is as it was or as it should be; "" or what is wrong.
std::string JudgeFiles(const Reference& reference, const Faulty& run, Leaves leaves)
{
    for (const auto& [name, content] : run.after) {
        if (!name.starts_with("file\\"))
            continue;
        const std::string actual = content.substr(1);
        const std::string old = ContentOf(reference.before, name);
        const bool isWhole = actual == old || actual == ContentOf(reference.after, name);
        if (isWhole || (leaves == Leaves::Torn && old != actual && !reference.before.contains(name)) ||
            (leaves == Leaves::Torn && run.outcome.Text() == "failed"))
            continue;
        if (leaves != Leaves::Rewrite)
            return name + " holds neither the old nor the new content";
        const std::size_t suffix = name.rfind("_Tmp");
        const std::string target = suffix == std::string::npos ? name : name.substr(0, suffix);
        const std::string wholeNew = ContentOf(reference.after, target);
        const bool threw = run.outcome.kind != Outcome::Kind::Result;
        const bool isTarget = suffix == std::string::npos;
        std::string temporary = "(no file)";
        for (const auto& [other, text] : run.after)
            if (other.starts_with(target + "_Tmp"))
                temporary = text.substr(1);
        if (isTarget && threw && temporary == wholeNew)
            continue; // torn, but nothing is lost
        if (!isTarget &&
            (actual == wholeNew || (threw && ContentOf(run.after, target) == ContentOf(reference.before, target))))
            continue; // what was to become the new content, with the old one still in its place
        return name + " is torn and the new content is nowhere, or nobody was told";
    }
    for (const auto& [name, content] : reference.before)
        if (name.starts_with("file\\") && !run.after.contains(name) && reference.after.contains(name))
            return name + " is gone";
    return "";
}

enum class Verdict
{
    Right,
    Exception,
    Documented,
    Wrong,
};

struct Judgement
{
    Verdict verdict;
    std::string reason;
};

Judgement Judge(const Operation& operation, const Place& place, const Reference& reference, const Faulty& run,
                const std::string& function, const Fault& fault)
{
    const std::string text = run.outcome.Text();
    const std::string files = JudgeFiles(reference, run, operation.leaves);
    if (!files.empty())
        return {Verdict::Wrong, files};
    switch (run.outcome.kind) {
    case Outcome::Kind::OutOfMemory:
        if (function == "malloc" || function == "realloc")
            return {Verdict::Exception, ""};
        return {Verdict::Wrong, "std::bad_alloc"};
    case Outcome::Kind::Exception:
        if (IsTextOf(operation, text, place, function, fault))
            return {Verdict::Exception, ""};
        return {Verdict::Wrong, "unexpected text"};
    case Outcome::Kind::OtherException:
        return {Verdict::Wrong, "unexpected exception"};
    case Outcome::Kind::Result:
        break;
    }
    if (text == reference.result && run.after == reference.after)
        return {Verdict::Right, ""};
    if (operation.leaves == Leaves::Rewrite) { // without an exception the target must be right
        for (const auto& [name, content] : reference.after)
            if (name.starts_with("file\\") && ContentOf(run.after, name) != content.substr(1))
                return {Verdict::Wrong, name + " is not right, and nobody was told"};
        if (text == reference.result)
            return {Verdict::Documented, ""}; // a temporary file stays, or the read-only attribute is not restored
    }
    if (operation.documented && operation.documented(text, reference.result))
        return {Verdict::Documented, ""};
    return {Verdict::Wrong, "a wrong result, and nobody was told"};
}

// --- the sweep

std::string InWords(const std::string& operation, const std::string& function, std::size_t n, const Fault& fault,
                    bool lasts)
{
    return operation + ": " + function + ", call " + std::to_string(n) + (lasts ? " and all later ones" : "") +
           ", code " + std::to_string(fault.code.lastError.value_or(0)) + ", errno " +
           std::to_string(fault.code.errnoValue.value_or(0)) + ", result " +
           std::to_string(static_cast<std::int64_t>(fault.result)) + ", kind " +
           std::to_string(static_cast<int>(fault.kind));
}

class FaultSweep : public testing::TestWithParam<std::string>
{
protected:
    void SweepFunction(const HookedFunction& function)
    {
        for (const Fault& fault : function.faults)
            for (const bool lasts : {false, true})
                for (std::size_t n = 1; n <= function.calls && !HasFatalFailure(); ++n)
                    SweepCall(function.name, fault, n, lasts);
    }

    Scene scene_;
    Reference reference_;
    Tally tally_;

private:
    void SweepCall(const std::string& function, const Fault& fault, std::size_t n, bool lasts)
    {
        const std::string where = InWords(GetParam(), function, n, fault, lasts);
        Sweeps::NowDoing(where);
        const bool again = n == 1 || !lasts;
        const Faulty run = RunWithFault(scene_, GetParam(), again,
                                        [&](Session& session) { session.Injector().Arm(function, n, fault, lasts); });
        ASSERT_TRUE(run.happened) << function << ", call " << n; // until then all is as in the unharmed run
        Table::failed.insert(function);
        ++tally_.faults;
        const Session session;
        const Operation& operation = session.Find(GetParam());
        const Judgement judgement =
            Judge(operation, scene_.Get(), reference_, run, function.substr(function.rfind(' ') + 1), fault);
        tally_.right += judgement.verdict == Verdict::Right ? 1 : 0;
        tally_.exceptions += judgement.verdict == Verdict::Exception ? 1 : 0;
        tally_.documented += judgement.verdict == Verdict::Documented ? 1 : 0;
        EXPECT_NE(judgement.verdict, Verdict::Wrong)
            << where << ": " << judgement.reason << "\nresult or text: [" << run.outcome.Text() << "]";
        EXPECT_FALSE(run.keepsHandles) << where << ": handles";
        if (!run.again)
            return;
        const bool isKept = operation.isKept && run.next.Text() == run.outcome.Text();
        EXPECT_EQ(run.next.kind, Outcome::Kind::Result) << where << ": the next run: " << run.next.Text();
        EXPECT_TRUE(isKept || run.next.Text() == reference_.result) << where << ": the next run: " << run.next.Text();
        EXPECT_TRUE(run.afterNext == reference_.after) << where << ": what the next run leaves";
        EXPECT_EQ(run.blocks, reference_.blocks) << where << ": blocks of memory";
    }
};

TEST_P(FaultSweep, EveryCall)
{
    Sweeps::NowDoing(GetParam());
    RunUnharmed(scene_, GetParam()); // what the process does once
    reference_ = RunUnharmed(scene_, GetParam());
    const std::vector<HookedFunction> functions = reference_.functions;
    for (const HookedFunction& function : functions) {
        tally_.calls += function.calls;
        if (function.calls > 0)
            SweepFunction(function);
    }
    PrintRow(GetParam(), tally_);
    Table::sum.calls += tally_.calls;
    Table::sum.faults += tally_.faults;
    Table::sum.right += tally_.right;
    Table::sum.exceptions += tally_.exceptions;
    Table::sum.documented += tally_.documented;
}

INSTANTIATE_TEST_SUITE_P(Each, FaultSweep, testing::ValuesIn(OperationNames()),
                         [](const auto& test) { return test.param; });

/// Every exported name belongs to an operation.
TEST(Exports, AreAllSwept)
{
    std::set<std::string> swept;
    const Session session;
    for (const Operation& operation : session.All())
        swept.insert(operation.exports.begin(), operation.exports.end());
    std::ifstream list(KELINS_EXPORTS);
    ASSERT_TRUE(list.is_open());
    std::size_t count = 0;
    for (std::string line; std::getline(list, line); ++count) {
        const bool isSwept = std::any_of(swept.begin(), swept.end(), [&line](const std::string& name) {
            if (!line.starts_with(name))
                return false;
            return line.size() == name.size() || line[name.size()] == '(' || line[name.size()] == '\r' ||
                   name.ends_with("::") || name.starts_with("JSON::Driver::") || name.ends_with(" for");
        });
        EXPECT_TRUE(isSwept) << "no operation exercises " << line;
    }
    EXPECT_GT(count, 200U);
}

/// What a process does once: comes by a desktop, loads what it loads, and throws for the first time. Wine starts a
/// program for the first user of a desktop and ends it after the last: neither may fall among the faults.
void WarmUp()
{
    Sweeps::NowDoing("warming up");
    ::GetDesktopWindow();
    ::LoadLibraryW(L"msi.dll");
    ::LoadLibraryW(L"secur32.dll");
    const Scene scene;
    for (int i = 0; i < 2; ++i) {
        const Session session;
        Outcome outcome;
        session.Run(session.Find("DeleteFile"), scene.Get(), outcome); // there is none
        session.Run(session.Find("GetTime"), scene.Get(), outcome);    // likewise, and the C runtime has words for it
        Prepare(scene, session.Find("InputStream"));
        session.Run(session.Find("InputStream"), scene.Get(), outcome);
        scene.Empty();
        NextHandles();
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (Sweeps::IsKillSweepChild())
        return Sweeps::RunKillSweepChild();
    testing::InitGoogleTest(&argc, argv);
    testing::AddGlobalTestEnvironment(new Table);
    Sweeps::StartWatchdog();
    WarmUp();
    return RUN_ALL_TESTS();
}
