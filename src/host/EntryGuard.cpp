#include "host/EntryGuard.h"
#include "host/EngineContext.h"

namespace brannoc {
namespace {

thread_local EngineContext* t_current = nullptr;

} // namespace

EntryGuard::EntryGuard(EngineContext& context)
{
    EngineLock::Acquire();
    if (t_current == &context)
        return;
    m_entered = true;
    m_previous = t_current;
    t_current = &context;
    m_interpreterScope.emplace(context.Machine());
}

EntryGuard::~EntryGuard()
{
    if (m_entered) {
        m_interpreterScope.reset();
        t_current = m_previous;
    }
    EngineLock::Release();
}

EngineContext* EntryGuard::Current() { return t_current; }

} // namespace brannoc
