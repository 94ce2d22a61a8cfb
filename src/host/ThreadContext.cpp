#include "host/ThreadContext.h"
#include "host/ThisModule.h"
#include <atomic>
#include <mutex>
#include <new>

extern "C" LRESULT CALLBACK KZ_TimerWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

namespace brannoc {
namespace {

// The record lives in a fiber-local slot whose callback runs when the thread ends, so that the window
// and the handles go with the thread whether the engine is a DLL or linked into the program.
std::once_flag s_slotMade;
DWORD s_slot = FLS_OUT_OF_INDEXES;

DWORD ContextSlot(PFLS_CALLBACK_FUNCTION destroy)
{
    std::call_once(s_slotMade, [destroy] { s_slot = FlsAlloc(destroy); });
    return s_slot;
}

std::atomic<long> s_liveCount{0};
// Every live record, so that those of other threads can go when the library is unloaded.
std::mutex s_liveLock;
ThreadContext* s_live = nullptr;

void RegisterTimerWindowClass()
{
    static std::once_flag s_registered;
    std::call_once(s_registered, [] {
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = &KZ_TimerWindowProc;
        windowClass.hInstance = ThisModule();
        windowClass.lpszClassName = ThreadContext::kTimerWindowClass;
        RegisterClassW(&windowClass);
    });
}

} // namespace

ThreadContext* ThreadContext::Existing()
{
    const DWORD slot = ContextSlot(&Destroy);
    return slot == FLS_OUT_OF_INDEXES ? nullptr : static_cast<ThreadContext*>(FlsGetValue(slot));
}

ThreadContext* ThreadContext::Current()
{
    if (ThreadContext* existing = Existing())
        return existing;
    const DWORD slot = ContextSlot(&Destroy);
    if (slot == FLS_OUT_OF_INDEXES)
        return nullptr;
    auto* context = new (std::nothrow) ThreadContext();
    if (!context)
        return nullptr;
    if (!context->m_lock.wake) {
        delete context;
        return nullptr;
    }
    FlsSetValue(slot, context);
    return context;
}

void ThreadContext::ReleaseSlot()
{
    if (s_slot != FLS_OUT_OF_INDEXES)
        FlsFree(s_slot);
    s_slot = FLS_OUT_OF_INDEXES;
    // Records that freeing the slot did not destroy (the platform may call the slot's callback only for
    // the calling thread) go now.
    for (;;) {
        ThreadContext* remaining = nullptr;
        {
            std::lock_guard<std::mutex> lock(s_liveLock);
            remaining = s_live;
        }
        if (!remaining)
            break;
        delete remaining;
    }
}

long ThreadContext::LiveCount() { return s_liveCount.load(); }

ThreadContext::ThreadContext() : m_threadId(GetCurrentThreadId())
{
    ++s_liveCount;
    {
        std::lock_guard<std::mutex> lock(s_liveLock);
        m_nextLive = s_live;
        s_live = this;
    }
    DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(), &m_handle, 0, FALSE,
                    DUPLICATE_SAME_ACCESS);
    m_lock.wake = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    // Room for the usual nesting of calls out, so that giving the engine up does not allocate.
    m_lock.saved.reserve(16);
    RegisterTimerWindowClass();
    m_timerWindow = CreateWindowExW(0, kTimerWindowClass, L"", kTimerWindowStyle, 0, 0, 0, 0, nullptr, nullptr,
                                    ThisModule(), nullptr);
}

ThreadContext::~ThreadContext()
{
    {
        std::lock_guard<std::mutex> lock(s_liveLock);
        for (ThreadContext** link = &s_live; *link; link = &(*link)->m_nextLive) {
            if (*link == this) {
                *link = m_nextLive;
                break;
            }
        }
    }
    if (m_timerWindow && GetWindowThreadProcessId(m_timerWindow, nullptr) == GetCurrentThreadId()) {
        DestroyWindow(m_timerWindow);
    } else if (m_timerWindow) {
        // Another thread's window (the library is being unloaded): it must not call into the library's
        // code again, and its own thread closes it.
        SetWindowLongPtrW(m_timerWindow, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&DefWindowProcW));
        PostMessageW(m_timerWindow, WM_CLOSE, 0, 0);
    }
    if (m_lock.wake)
        CloseHandle(m_lock.wake);
    if (m_handle)
        CloseHandle(m_handle);
    --s_liveCount;
}

void WINAPI ThreadContext::Destroy(void* context)
{
    delete static_cast<ThreadContext*>(context);
}

} // namespace brannoc

// The hidden window of each thread that uses the engine. A one-shot window (style bit 1) goes when its
// timer fires; others only kill timer 1. Engine timers are handled by their own procedures.
extern "C" LRESULT CALLBACK KZ_TimerWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const bool oneShot = (GetWindowLongW(window, GWL_STYLE) & 0x1) != 0;
    switch (message) {
    case WM_DESTROY:
        if (oneShot)
            KillTimer(window, 1);
        break;
    case WM_TIMER:
        if (oneShot)
            DestroyWindow(window);
        else
            KillTimer(window, 1);
        return 0;
    default:
        break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}
