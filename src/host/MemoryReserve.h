#pragma once
// Emergency memory kept aside at library start: when an allocation fails, the reserve is freed in two
// steps so that the engine can still stop the run and report the condition.
namespace brannoc {

class MemoryReserve final {
public:
    // Sets the two blocks aside and installs the allocation-failure handler (once per process).
    static void Install();
    // True once the first (small) block has been given up: engine methods then answer E_OUTOFMEMORY.
    static bool IsExhausted();
    // Gives up the next block; false when nothing was left.
    static bool ReleaseNext();
    // Shows the out-of-memory box, once per process.
    static void ReportOnce();
};

} // namespace brannoc
