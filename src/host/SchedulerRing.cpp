#include "host/SchedulerRing.h"
#include "host/CodeUnit.h"
#include "host/EngineContext.h"
#include "host/EntryGuard.h"
#include <algorithm>

namespace brannoc {
namespace {

thread_local SchedulerRing* t_ring = nullptr;

} // namespace

SchedulerRing::SchedulerRing(EngineContext& owner) : m_owner(owner), m_previous(t_ring) { t_ring = this; }

SchedulerRing::~SchedulerRing() { t_ring = m_previous; }

SchedulerRing* SchedulerRing::OfThisThread() { return t_ring; }

void SchedulerRing::Join(EngineContext& context)
{
    if (Owns(context))
        return;
    const bool joined = std::any_of(m_members.begin(), m_members.end(),
                                    [&](const Member& member) { return member.context == &context; });
    if (!joined)
        m_members.push_back({&context, ComRef<IDispatch>::Share(context.Owner().AsDispatch())});
}

void SchedulerRing::RunJoined()
{
    while (!m_members.empty()) {
        for (std::size_t i = 0; i < m_members.size();) {
            bool goesOn;
            {
                EntryGuard guard(*m_members[i].context);
                goesOn = m_members[i].context->RunTimeSlice(kSliceTicks);
            }
            if (goesOn) {
                ++i;
                continue;
            }
            // The reference goes after the member has left the list: its release may end the object.
            Member leaving = std::move(m_members[i]);
            m_members.erase(m_members.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
}

} // namespace brannoc
