// An engine halted for good (its memory reserve spent: the sticky out-of-memory bit, which lasts for the
// rest of the process, so this is a program of its own): host calls into macros answer the exception
// "Basic is halted due to an unrecoverable error condition." and run nothing.
#include "brannoc.h"
#include "exec/HaltFlags.h"
#include "host/CodeUnit.h"
#include "host/EntryGuard.h"
#include "host/MacroEngine.h"
#include "support/MessageBoxCapture.h"
#include <gtest/gtest.h>

using namespace brannoc;
using namespace brannoc::testing;

TEST(HaltedForGood, FireAndHandlerCallsAnswerTheHaltException)
{
    brannoc::test::MessageBoxCapture capture;
    MacroEngine engine;
    ASSERT_TRUE(engine.Load(L"lib", L"Sub Main\r\nEnd Sub\r\nSub Hello\r\n    Debug.Print \"hello\"\r\nEnd Sub\r\n"));
    IDispatch* fire = nullptr;
    ASSERT_EQ(S_OK, engine.unit->get_Fire(VARIANT_FALSE, &fire));
    BSTR prototype = SysAllocString(L"Sub Hello()");
    IDispatch* handler = nullptr;
    ASSERT_EQ(S_OK, engine.unit->CreateHandler(prototype, &handler));
    SysFreeString(prototype);
    ASSERT_NE(nullptr, handler);

    {
        EntryGuard guard(static_cast<CodeUnit*>(engine.unit)->Context());
        HaltFlags::Set(HaltFlags::kOutOfMemory);
    }
    LateCall fired;
    EXPECT_EQ(DISP_E_EXCEPTION, fired.Text(L"Hello").Invoke(fire, 2));
    EXPECT_EQ(10200, fired.exception.wCode);
    EXPECT_EQ(L"Basic is halted due to an unrecoverable error condition.", fired.Description());
    LateCall called;
    EXPECT_EQ(DISP_E_EXCEPTION, called.Invoke(handler, 1, DISPATCH_METHOD, false));
    EXPECT_EQ(10200, called.exception.wCode);
    EXPECT_EQ(L"", engine.callBack.AllPrinted()) << "nothing ran";
    handler->Release();
    fire->Release();
}
