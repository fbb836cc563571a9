// The heap of the growth benchmarks, natively: it keeps what it has got from the system. By itself glibc returns each
// large block at once, so that its pages are faulted in anew for the next one: a time of the kernel's, which grows from
// the size on at which that begins.

#include <malloc.h>

namespace {

const bool kKept = [] {
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, -1);
    return true;
}();

} // namespace
