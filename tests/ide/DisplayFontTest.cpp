// The fonts the editor and the window captions rely on: "Courier New" must come out monospaced (the
// test prefix maps it to DejaVu Sans Mono) and Marlett, which draws the caption buttons, must exist.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

namespace {

struct ScreenFont {
    HDC dc = GetDC(nullptr);
    HFONT font = nullptr;
    HGDIOBJ old = nullptr;

    explicit ScreenFont(const char* face)
    {
        font = CreateFontA(-12, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, ANSI_CHARSET, OUT_DEFAULT_PRECIS,
                           CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, face);
        old = SelectObject(dc, font);
    }
    ~ScreenFont()
    {
        SelectObject(dc, old);
        DeleteObject(font);
        ReleaseDC(nullptr, dc);
    }
    int Width(const std::string& text) const
    {
        SIZE size{};
        GetTextExtentPoint32A(dc, text.c_str(), static_cast<int>(text.size()), &size);
        return size.cx;
    }
};

int CALLBACK CountFamily(const LOGFONTA*, const TEXTMETRICA*, DWORD, LPARAM count)
{
    ++*reinterpret_cast<int*>(count);
    return 1;
}

int FamilyCount(const char* face)
{
    LOGFONTA wanted{};
    wanted.lfCharSet = DEFAULT_CHARSET;
    lstrcpynA(wanted.lfFaceName, face, LF_FACESIZE);
    HDC dc = GetDC(nullptr);
    int count = 0;
    EnumFontFamiliesExA(dc, &wanted, CountFamily, reinterpret_cast<LPARAM>(&count), 0);
    ReleaseDC(nullptr, dc);
    return count;
}

} // namespace

TEST(DisplayFont, CourierNewIsMonospaced)
{
    // Asked for by name without a pitch hint, so a proportional stand-in would show here.
    ScreenFont courier("Courier New");
    TEXTMETRICA metrics{};
    ASSERT_TRUE(GetTextMetricsA(courier.dc, &metrics));
    EXPECT_EQ(metrics.tmPitchAndFamily & TMPF_FIXED_PITCH, 0) << "a variable-pitch face stands in for Courier New";
    EXPECT_EQ(courier.Width("iiiiiiiiii"), courier.Width("WWWWWWWWWW"));
    EXPECT_EQ(courier.Width("iiiiiiiiii"), courier.Width(".........."));
    EXPECT_GT(courier.Width("iiiiiiiiii"), 0);
}

TEST(DisplayFont, CaptionButtonFaceIsInstalled)
{
    EXPECT_GT(FamilyCount("Marlett"), 0);
    // A face that no prefix has answers nothing, so the count above is not a stand-in.
    EXPECT_EQ(FamilyCount("No Such Face Brannoc"), 0);
}
