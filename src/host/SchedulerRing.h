#pragma once
// Engine objects that share one thread. While a thread runs the statements of one engine context with
// DoEvents polling on, another engine object asked to run on the same thread (typically from the host's
// message handling during a poll) does not start a nested run: it joins the running context's ring and
// the request answers Active at once. When the ring's own context can no longer continue, the joined
// contexts get time slices of 50 ticks in turn until each has finished or stopped.
#include "values/ComRef.h"
#include <oaidl.h>
#include <vector>

namespace brannoc {

class EngineContext;

class SchedulerRing final {
public:
    static constexpr unsigned long kSliceTicks = 50;

    // Makes this ring the thread's ring for its lifetime.
    explicit SchedulerRing(EngineContext& owner);
    ~SchedulerRing();
    SchedulerRing(const SchedulerRing&) = delete;
    SchedulerRing& operator=(const SchedulerRing&) = delete;

    // The ring of the scheduler this thread is running, or null.
    static SchedulerRing* OfThisThread();

    bool Owns(const EngineContext& context) const { return &m_owner == &context; }
    // Adds a context whose run was just prepared; joining twice changes nothing.
    void Join(EngineContext& context);
    // Gives the joined contexts time slices in turn until none is left.
    void RunJoined();

private:
    struct Member {
        EngineContext* context;
        ComRef<IDispatch> keepAlive;   // the engine object stays alive while the ring runs its statements
    };
    EngineContext& m_owner;
    SchedulerRing* m_previous;
    std::vector<Member> m_members;
};

} // namespace brannoc
