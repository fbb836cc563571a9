#include <KelInsInfra/json/internal/ScannerLease.h>
#include <atomic>
#include <cstddef>
#include <new>

namespace JSON {
namespace {

/// Made by the first parse. Never destroyed: a parse may come after what the process destroys at its end. Between two
/// parses it holds no memory.
alignas(Scanner) constinit std::byte place[sizeof(Scanner)] = {};
constinit Scanner* processScanner = nullptr;
constinit std::atomic<bool> isAtWork = false;

} // namespace

ScannerLease::ScannerLease()
{
    if (isAtWork.exchange(true, std::memory_order_acquire)) {
        own_ = std::make_unique<Scanner>();
        scanner_ = own_.get();
        return;
    }
    if (processScanner == nullptr)
        processScanner = new (place) Scanner();
    scanner_ = processScanner;
}

ScannerLease::~ScannerLease()
{
    if (own_)
        return;
    scanner_->End();
    isAtWork.store(false, std::memory_order_release);
}

} // namespace JSON
