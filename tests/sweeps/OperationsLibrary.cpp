// The operations in a library of their own, which the sweep loads anew before each fault: whatever the product keeps
// for a process (facts found out once, functions looked up once) is then as in a fresh process.

#include "OperationsLibrary.h"

#include <new>
#include <stdexcept>
#include <typeinfo>

namespace {

const std::vector<Sweeps::Operation>& Operations()
{
    static const std::vector<Sweeps::Operation> operations = [] {
        std::vector<Sweeps::Operation> all;
        Sweeps::AddFileOperations(all);
        Sweeps::AddRewriteOperations(all);
        Sweeps::AddRegistryOperations(all);
        Sweeps::AddSystemOperations(all);
        Sweeps::AddTextOperations(all);
        Sweeps::AddDocumentOperations(all);
        return all;
    }();
    return operations;
}

/// Cut off where it does not fit, without a block of the heap.
void Store(Sweeps::Outcome& outcome, Sweeps::Outcome::Kind kind, const std::string& text)
{
    outcome.kind = kind;
    outcome.size = text.copy(outcome.text.data(), outcome.text.size());
}

} // namespace

const std::vector<Sweeps::Operation>* KelInsOperations()
{
    return &Operations();
}

void KelInsRun(const Sweeps::Operation* operation, const Sweeps::Place* place, Sweeps::Outcome* outcome)
{
    using Kind = Sweeps::Outcome::Kind;
    try {
        Store(*outcome, Kind::Result, operation->run(*place));
    } catch (const std::bad_alloc&) {
        Store(*outcome, Kind::OutOfMemory, "");
    } catch (const std::runtime_error& error) {
        Store(*outcome, Kind::Exception, error.what());
    } catch (const std::exception& error) {
        Store(*outcome, Kind::OtherException, std::string(typeid(error).name()) + ": " + error.what());
    } catch (...) {
        Store(*outcome, Kind::OtherException, "not a standard exception");
    }
}
