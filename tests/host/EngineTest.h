#pragma once
// The fixture of tests that drive one engine object through its members: the object is made for each
// test and given a FakeCallBack (macros from memory, output and notifications recorded), and halted and
// released at the end. The helpers call a member and answer its result, checking that it answered S_OK.
#include "brannoc.h"
#include "host/CodeUnit.h"
#include "host/FakeCallBack.h"
#include "host/HostTestText.h"
#include <gtest/gtest.h>
#include <string>

namespace brannoc::testing {

class EngineTest : public ::testing::Test {
protected:
    using FlagMember = HRESULT (__stdcall CodeUnit::*)(VARIANT_BOOL*);
    using NameMember = HRESULT (__stdcall CodeUnit::*)(BSTR, VARIANT_BOOL*);
    using TextMember = HRESULT (__stdcall CodeUnit::*)(BSTR*);

    void SetUp() override
    {
        ASSERT_NE(nullptr, unit);
        unit->SetCallBack(&callBack);
    }
    void TearDown() override
    {
        if (!unit)
            return;
        VARIANT_BOOL ignored;
        unit->HaltAll(&ignored);
        unit->SetCallBack(nullptr);
        unit->Release();
    }

    // A member without arguments that answers a Boolean (Step, Continue, IsStopped, ...).
    bool Flag(FlagMember member)
    {
        VARIANT_BOOL result = VARIANT_FALSE;
        EXPECT_EQ(S_OK, (unit->*member)(&result));
        return result == VARIANT_TRUE;
    }
    // A member that takes a name and answers a Boolean (Start, Load, ProjectCreate, ...).
    bool Named(NameMember member, const wchar_t* name)
    {
        BSTR text = SysAllocString(name);
        VARIANT_BOOL result = VARIANT_FALSE;
        EXPECT_EQ(S_OK, (unit->*member)(text, &result));
        SysFreeString(text);
        return result == VARIANT_TRUE;
    }
    // A member that answers a text.
    std::wstring Text(TextMember member)
    {
        BSTR text = nullptr;
        EXPECT_EQ(S_OK, (unit->*member)(&text));
        return testing_text::TakeText(text);
    }
    bool Start(const wchar_t* name) { return Named(&CodeUnit::Start, name); }
    bool Load(const wchar_t* name) { return Named(&CodeUnit::Load, name); }
    // Run with the depth; true while the macro is still active afterwards (stopped at a break).
    bool Run(short depth)
    {
        VARIANT_BOOL active = VARIANT_FALSE;
        EXPECT_EQ(S_OK, unit->Run(depth, &active));
        return active == VARIANT_TRUE;
    }
    bool RunToEnd() { return !Run(0); }
    // Gives the callback the text as the macro "m", starts it and runs it to its end on this thread.
    void RunMacro(const std::wstring& text)
    {
        callBack.macros[L"m"] = text;
        ASSERT_TRUE(Start(L"m"));
        (void)Run(0);
    }
    bool Toggle(const wchar_t* macro, short line)
    {
        BSTR name = SysAllocString(macro);
        VARIANT_BOOL result = VARIANT_FALSE;
        EXPECT_EQ(S_OK, unit->ToggleBreak(name, line, &result));
        SysFreeString(name);
        return result == VARIANT_TRUE;
    }
    long ErrorNumber()
    {
        long number = -1;
        EXPECT_EQ(S_OK, unit->get_ErrorNumber(&number));
        return number;
    }

    CodeUnit* unit = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));
    FakeCallBack callBack;
};

} // namespace brannoc::testing
