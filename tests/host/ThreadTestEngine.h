#pragma once
// Engine objects for tests with several threads: one engine object with its own recording callback per
// thread, a host signal that macros poll, and a long macro that checks its own statements.
#include "brannoc.h"
#include "host/FakeCallBack.h"
#include "host/HostTestText.h"
#include <windows.h>
#include <functional>
#include <string>

namespace brannoc::testing {

using namespace brannoc::testing_text;

// One engine object with its own recording callback, made and used on the thread that creates it.
class ThreadEngine final {
public:
    ThreadEngine()
    {
        if (unit)
            unit->SetCallBack(&callBack);
    }
    ~ThreadEngine()
    {
        if (!unit)
            return;
        VARIANT_BOOL ignored;
        unit->Shutdown(&ignored);
        unit->SetCallBack(nullptr);
        unit->Release();
    }
    ThreadEngine(const ThreadEngine&) = delete;
    ThreadEngine& operator=(const ThreadEngine&) = delete;

    // Starts the macro and runs it to its end; true when the engine is idle afterwards.
    bool RunMacro(const std::wstring& name, const std::wstring& text)
    {
        callBack.macros[name] = text;
        BSTR macro = SysAllocStringLen(name.data(), static_cast<UINT>(name.size()));
        VARIANT_BOOL started = VARIANT_FALSE;
        VARIANT_BOOL active = VARIANT_TRUE;
        unit->Start(macro, &started);
        SysFreeString(macro);
        if (started != VARIANT_TRUE)
            return false;
        unit->Run(0, &active);
        return active == VARIANT_FALSE && IsIdle();
    }
    bool IsIdle()
    {
        VARIANT_BOOL idle = VARIANT_FALSE;
        unit->get_IsIdle(&idle);
        return idle == VARIANT_TRUE;
    }
    std::wstring Caption()
    {
        BSTR caption = nullptr;
        unit->get_Caption(&caption);
        return TakeText(caption);
    }
    void SetCaption(const std::wstring& caption)
    {
        BSTR text = SysAllocStringLen(caption.data(), static_cast<UINT>(caption.size()));
        unit->put_Caption(text);
        SysFreeString(text);
    }

    FakeCallBack callBack;
    _CodeUnit* unit = static_cast<_CodeUnit*>(KZ_CreateCodeUnit());
};

// A process environment variable that macros poll with Environ: set it to let a waiting macro end.
class HostSignal final {
public:
    explicit HostSignal(const wchar_t* name) : m_name(name) { SetEnvironmentVariableW(m_name, nullptr); }
    ~HostSignal() { SetEnvironmentVariableW(m_name, nullptr); }
    void Raise() { SetEnvironmentVariableW(m_name, L"1"); }

private:
    const wchar_t* m_name;
};

// A macro that prints "begin", then runs two counting statements per pass (no call out of the engine)
// until the host signal is raised, and prints whether every pass ran both statements exactly once.
inline std::wstring CountingMacro(const wchar_t* signal)
{
    const std::wstring poll = std::wstring(L"Environ(\"") + signal + L"\") = \"\"";
    return Lines({L"Sub Main",
                  L"    Dim a As Long, b As Long, sum As Double",
                  L"    Debug.Print \"begin\"",
                  (L"    Do While " + poll + L" And a < 20000000").c_str(),
                  L"        a = a + 1",
                  L"        sum = sum + a",
                  L"        b = b + 1",
                  L"    Loop",
                  L"    Debug.Print IIf(a = b And sum = a * (a + 1#) / 2, \"intact\", \"broken\"); a > 0",
                  L"End Sub"});
}

// Waits (with a generous bound) until the condition holds; false when it never did.
inline bool WaitFor(const std::function<bool()>& condition)
{
    for (int i = 0; i < 60000; ++i) {
        if (condition())
            return true;
        Sleep(1);
    }
    return condition();
}

} // namespace brannoc::testing
