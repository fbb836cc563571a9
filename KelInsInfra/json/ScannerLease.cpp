#include <KelInsInfra/json/internal/ScannerLease.h>
#include <atomic>
#include <new>

namespace JSON {
namespace {

/// Made by the first parse. Never destroyed: a parse may come after what the process destroys at its end. Between two
/// parses it holds no memory.
union ProcessScanner {
    Scanner scanner;
    char none;

    constexpr ProcessScanner() : none() {}

    ~ProcessScanner() {} // NOLINT(modernize-use-equals-default): that would be deleted
};

constinit ProcessScanner processScanner;
constinit bool isMade = false;
constinit std::atomic<bool> isAtWork = false;

} // namespace

ScannerLease::ScannerLease()
{
    if (isAtWork.exchange(true, std::memory_order_acquire)) {
        own_ = std::make_unique<Scanner>();
        scanner_ = own_.get();
        return;
    }
    scanner_ = &processScanner.scanner;
    if (!isMade)
        new (scanner_) Scanner();
    isMade = true;
}

ScannerLease::~ScannerLease()
{
    if (own_)
        return;
    scanner_->End();
    isAtWork.store(false, std::memory_order_release);
}

} // namespace JSON
