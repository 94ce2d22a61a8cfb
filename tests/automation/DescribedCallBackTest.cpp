// A host callback made from the callback description over a plain object: a macro's Debug.Print, the
// engine's macro reading and its notifications reach the object's slots.
#include "brannoc.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const wchar_t kCallBack[] = L"=CallBack\nDebugPrint CodeUnit*,Text$\nDoEvents CodeUnit*\nNotify CodeUnit*,Type%\n"
                            L"ReadMacro$(CodeUnit*,MacroName$)\nWindow&=\n";

struct PlainCallBack {
    virtual void __stdcall DebugPrint(IDispatch* unit, BSTR text)
    {
        units.push_back(unit);
        printed.push_back(text ? text : L"");
    }
    virtual void __stdcall DoEvents(IDispatch*) {}
    virtual void __stdcall Notify(IDispatch* unit, short code)
    {
        units.push_back(unit);
        notifications.push_back(code);
    }
    virtual BSTR __stdcall ReadMacro(IDispatch* unit, BSTR name)
    {
        units.push_back(unit);
        reads.push_back(name);
        return SysAllocString(L"Sub Main\r\n    Debug.Print \"from \"; 6 * 7\r\nEnd Sub\r\n");
    }
    virtual long __stdcall Window() { return 0; }

    std::vector<IDispatch*> units;
    std::vector<std::wstring> printed;
    std::vector<short> notifications;
    std::vector<std::wstring> reads;
};

int s_destroyed = 0;
void __stdcall CountDestroy(void*, void*) { ++s_destroyed; }

} // namespace

TEST(DescribedCallBack, AMacroRunsThroughACallBackMadeFromTheDescription)
{
    ITypeInfo* type = OA_CreateTypeW(kCallBack);
    ASSERT_NE(nullptr, type);
    PlainCallBack callBack;
    s_destroyed = 0;
    IDispatch* dispatch = OA_CreateDispatch(type, CountDestroy, &callBack, nullptr);
    ASSERT_NE(nullptr, dispatch);
    auto* unit = static_cast<_CodeUnit*>(CU_CreateCodeUnit());
    ASSERT_NE(nullptr, unit);
    ASSERT_EQ(S_OK, unit->SetCallBack(dispatch));
    BSTR name = SysAllocString(L"answer");
    VARIANT_BOOL started = 0;
    ASSERT_EQ(S_OK, unit->Start(name, &started));
    EXPECT_EQ(VARIANT_TRUE, started);
    VARIANT_BOOL running = 0;
    ASSERT_EQ(S_OK, unit->Run(0, &running));
    SysFreeString(name);
    EXPECT_EQ(std::vector<std::wstring>{L"answer"}, callBack.reads);
    // The text's form is the language's debugging display; what matters here is that it arrived.
    ASSERT_EQ(1u, callBack.printed.size());
    EXPECT_NE(std::wstring::npos, callBack.printed[0].find(L"from"));
    EXPECT_NE(std::wstring::npos, callBack.printed[0].find(L"42"));
    ASSERT_GE(callBack.notifications.size(), 2u);
    EXPECT_EQ(9, callBack.notifications.front());   // compiling
    EXPECT_EQ(1, callBack.notifications.at(1));     // active
    EXPECT_EQ(2, callBack.notifications.back());    // idle
    for (IDispatch* engine : callBack.units)
        EXPECT_NE(nullptr, engine);
    unit->Release();
    dispatch->Release();
    EXPECT_EQ(1, s_destroyed);
    type->Release();
}
