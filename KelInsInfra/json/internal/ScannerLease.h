#pragma once

#include <KelInsInfra/json/internal/Scanner.h>
#include <memory>

namespace JSON {

/// The scanner of one parse: the process's own, as making a scanner's streams takes longer than to read a small text;
/// or one by itself while that one is at work.
class ScannerLease
{
public:
    ScannerLease();
    ~ScannerLease();
    ScannerLease(const ScannerLease&) = delete;
    ScannerLease& operator=(const ScannerLease&) = delete;

    Scanner* operator->() const { return scanner_; }

    Scanner& operator*() const { return *scanner_; }

private:
    std::unique_ptr<Scanner> own_;
    Scanner* scanner_;
};

} // namespace JSON
