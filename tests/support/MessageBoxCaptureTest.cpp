#include "support/MessageBoxCapture.h"
#include <gtest/gtest.h>

using brannoc::test::MessageBoxCapture;

TEST(MessageBoxCapture, RecordsCaptionTextAndStyleAndDismissesTheBox)
{
    MessageBoxCapture capture;
    int result = MessageBoxW(nullptr, L"Macro/module does not exist.", L"Start Error",
                             MB_OK | MB_ICONSTOP | MB_TASKMODAL);
    EXPECT_EQ(IDOK, result);
    auto boxes = capture.Boxes();
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(L"Start Error", boxes[0].caption);
    EXPECT_EQ(L"Macro/module does not exist.", boxes[0].text);
    EXPECT_EQ(static_cast<UINT>(MB_OK), boxes[0].buttons);
    EXPECT_EQ(static_cast<UINT>(MB_ICONSTOP), boxes[0].icon);
    EXPECT_NE(0u, boxes[0].windowStyle & WS_CAPTION);
}

TEST(MessageBoxCapture, AnswersWithTheRequestedButtonAndKeepsEveryBoxInOrder)
{
    MessageBoxCapture capture(IDNO);
    EXPECT_EQ(IDNO, MessageBoxW(nullptr, L"first", L"One", MB_YESNO | MB_ICONQUESTION));
    // A box without the requested button is answered with its first button.
    EXPECT_EQ(IDOK, MessageBoxW(nullptr, L"second", L"Two", MB_OKCANCEL));
    auto boxes = capture.Boxes();
    ASSERT_EQ(2u, boxes.size());
    EXPECT_EQ(L"first", boxes[0].text);
    EXPECT_EQ(static_cast<UINT>(MB_YESNO), boxes[0].buttons);
    EXPECT_EQ(static_cast<UINT>(MB_ICONQUESTION), boxes[0].icon);
    EXPECT_EQ(L"second", boxes[1].text);
    EXPECT_EQ(static_cast<UINT>(MB_OKCANCEL), boxes[1].buttons);
}

TEST(MessageBoxCapture, StopsCapturingWhenDestroyed)
{
    {
        MessageBoxCapture capture;
        MessageBoxW(nullptr, L"inside", L"Scope", MB_OK);
        EXPECT_EQ(1u, capture.Count());
    }
    MessageBoxCapture second;
    EXPECT_EQ(0u, second.Count());
}
