// A run that ends inside a host call into macros: the host is told that the engine is idle later, from
// the thread's timer window once the host pumps messages, and before any notification sent meanwhile.
#include "brannoc.h"
#include "host/MacroEngine.h"
#include <gtest/gtest.h>
#include <string>

using namespace brannoc;
using namespace brannoc::testing;

namespace {

std::wstring Listed(const std::vector<short>& codes)
{
    std::wstring text;
    for (short code : codes)
        text += std::to_wstring(code) + L" ";
    return text;
}

class DeferredIdle : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(engine.Load(L"lib", L"Sub Main\r\nEnd Sub\r\nSub Hello\r\n    Debug.Print \"hello\"\r\nEnd Sub\r\n"));
        ASSERT_EQ(S_OK, engine.unit->get_Fire(VARIANT_FALSE, &fire));
        engine.callBack.notifications.clear();
    }
    void TearDown() override
    {
        if (fire)
            fire->Release();
    }
    HRESULT CallHello()
    {
        LateCall call;
        return call.Text(L"Hello").Invoke(fire, 2);
    }
    MacroEngine engine;
    IDispatch* fire = nullptr;
};

} // namespace

TEST_F(DeferredIdle, TheIdleNotificationArrivesFromTheTimerAfterTheCallReturned)
{
    ASSERT_EQ(S_OK, CallHello());
    EXPECT_TRUE(engine.IsIdle());
    EXPECT_EQ(L"\"hello\"\r\n", engine.callBack.AllPrinted());
    EXPECT_EQ(0, engine.callBack.Count(2)) << "not told inside the call: " << Listed(engine.callBack.notifications);
    engine.PumpUntilNotified(2);
    EXPECT_EQ(1, engine.callBack.Count(2)) << Listed(engine.callBack.notifications);
    engine.PumpUntilNotified(2, 2, 500);
    EXPECT_EQ(1, engine.callBack.Count(2)) << "delivered once";
}

TEST_F(DeferredIdle, ANotificationSentMeanwhileDeliversThePendingOneFirst)
{
    ASSERT_EQ(S_OK, CallHello());
    ASSERT_EQ(0, engine.callBack.Count(2));
    engine.callBack.notifications.clear();
    // The next run's start comes after the first run's idle notification.
    BSTR name = SysAllocString(L"lib");
    VARIANT_BOOL done = VARIANT_FALSE;
    engine.unit->Start(name, &done);
    SysFreeString(name);
    ASSERT_GE(engine.callBack.notifications.size(), 2u) << Listed(engine.callBack.notifications);
    EXPECT_EQ(2, engine.callBack.notifications[0]) << Listed(engine.callBack.notifications);
    engine.PumpUntilNotified(2, 2, 500);
    EXPECT_EQ(1, engine.callBack.Count(2)) << "nothing left for the timer to deliver: "
                                           << Listed(engine.callBack.notifications);
}
