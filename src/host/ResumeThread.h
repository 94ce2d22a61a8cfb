#pragma once
// The resume thread: while engine objects live on more than one thread (and the multi-thread mode is
// on), it gives parked threads their turns every 10 milliseconds, so that threads that use the engine
// at the same time alternate.

namespace brannoc {

class ResumeThread final {
public:
    static constexpr unsigned kTurnMs = 10;

    // Starts the thread unless it runs or the multi-thread mode is off; returns once it runs.
    static void Start();
    // Asks the thread to stop and returns once it has.
    static void Stop();
    static bool IsRunning();
};

} // namespace brannoc
