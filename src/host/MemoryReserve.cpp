#include "host/MemoryReserve.h"
#include <windows.h>
#include <atomic>
#include <cstdlib>
#include <new>

namespace brannoc {
namespace {

void* s_small = nullptr;   // 1,000 bytes, given up first
void* s_large = nullptr;   // 60,000 bytes
std::atomic<bool> s_exhausted{false};
std::atomic<bool> s_reported{false};

void OnAllocationFailure()
{
    // Give up a block and let the allocator retry; with nothing left, fail the allocation.
    if (!MemoryReserve::ReleaseNext())
        throw std::bad_alloc();
}

} // namespace

void MemoryReserve::Install()
{
    static bool s_installed = [] {
        s_small = std::malloc(1000);
        s_large = std::malloc(60000);
        std::set_new_handler(&OnAllocationFailure);
        return true;
    }();
    (void)s_installed;
}

bool MemoryReserve::IsExhausted() { return s_exhausted.load(); }

bool MemoryReserve::ReleaseNext()
{
    if (s_small) {
        std::free(s_small);
        s_small = nullptr;
        s_exhausted = true;
        return true;
    }
    if (s_large) {
        std::free(s_large);
        s_large = nullptr;
        return true;
    }
    return false;
}

void MemoryReserve::ReportOnce()
{
    if (s_reported.exchange(true))
        return;
    MessageBoxA(nullptr, "Out of memory.  Please shut down all applications and restart windows.", "Brannoc Basic",
                MB_ICONSTOP | MB_SYSTEMMODAL);
}

} // namespace brannoc
