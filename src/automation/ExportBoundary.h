#pragma once
// The edge of the exported functions and COM methods of the automation toolkit: nothing may leave them
// as an exception, so a failed allocation of the standard library becomes the out-of-memory report
// (shown once) and the function's failure result.
#include "host/MemoryReserve.h"

#include <new>

namespace brannoc::automation {

template <typename Result, typename Work>
Result AtExportBoundary(Result failure, Work&& work) noexcept
{
    try {
        return work();
    } catch (const std::bad_alloc&) {
        MemoryReserve::ReportOnce();
        return failure;
    }
}

template <typename Work>
void AtExportBoundary(Work&& work) noexcept
{
    try {
        work();
    } catch (const std::bad_alloc&) {
        MemoryReserve::ReportOnce();
    }
}

} // namespace brannoc::automation
