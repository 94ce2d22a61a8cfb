// String helpers: wide BSTRs, ANSI text in byte-length BSTRs, conversions and the wide C functions.
#include "brannoc.h"

#include <gtest/gtest.h>

#include <string>

TEST(StringExports, EmptyInputGivesAnEmptyStringNotNull)
{
    for (BSTR text : {OA_SysAllocStringA(""), OA_SysAllocStringA(nullptr), OA_SysAllocString(nullptr),
                      OA_SysAllocNullString(), OA_OLESTRFromStringA(nullptr), OA_AsciiFromStringW(L"")}) {
        ASSERT_NE(nullptr, text);
        EXPECT_EQ(0u, SysStringByteLen(text));
        OA_SysFreeString(text);
    }
    EXPECT_EQ(nullptr, OA_AsciiFromBSTRW(nullptr));
    EXPECT_EQ(nullptr, OA_SysDupString(nullptr));
    EXPECT_EQ(0u, OA_SysStringLen(nullptr));
    EXPECT_EQ(0u, OA_StrLen(nullptr));
}

TEST(StringExports, AnsiStringsHaveByteLengths)
{
    BSTR ansi = OA_SysAllocStringA("h\xe9llo");
    EXPECT_EQ(5u, OA_SysStringLenA(ansi));
    EXPECT_EQ(0, memcmp(ansi, "h\xe9llo", 6));
    BSTR odd = OA_SysAllocStringLenA("abc", 3);
    EXPECT_EQ(3u, OA_SysStringLenA(odd));
    BSTR copy = OA_SysDupStringA(odd);
    EXPECT_EQ(3u, OA_SysStringLenA(copy));
    EXPECT_EQ(1, OA_SysReAllocStringA(&copy, "longer text"));
    EXPECT_EQ(11u, OA_SysStringLenA(copy));
    EXPECT_EQ(1, OA_SysReAllocStringLenA(&copy, "xy", 2));
    EXPECT_EQ(2u, OA_SysStringLenA(copy));
    BSTR wide = OA_OLESTRFromBSTRA(ansi);
    EXPECT_STREQ(L"h\u00e9llo", wide);
    BSTR back = OA_AsciiFromBSTRW(wide);
    EXPECT_EQ(5u, OA_SysStringLenA(back));
    EXPECT_EQ(0, memcmp(back, "h\xe9llo", 5));
    BSTR part = OA_AsciiFromStringLenW(L"abcdef", 3);
    EXPECT_EQ(3u, OA_SysStringLenA(part));
    BSTR widePart = OA_OLESTRFromStringLenA("abcdef", 4);
    EXPECT_STREQ(L"abcd", widePart);
    for (BSTR text : {ansi, odd, copy, wide, back, part, widePart})
        OA_SysFreeStringA(text);
}

TEST(StringExports, WideStringsAndComparisons)
{
    BSTR a = OA_SysAllocString(L"abc");
    BSTR b = OA_SysAllocString(L"abd");
    BSTR shorter = OA_SysAllocStringLen(L"ab", 2);
    EXPECT_LT(OA_SysCmp(a, b), 0);
    EXPECT_GT(OA_SysCmp(b, a), 0);
    EXPECT_EQ(1, OA_SysCmp(a, shorter));
    EXPECT_EQ(0, OA_SysCmp(a, a));
    EXPECT_EQ(1, OA_SysReAllocString(&shorter, nullptr));
    ASSERT_NE(nullptr, shorter);
    EXPECT_EQ(0u, OA_SysStringLen(shorter));
    EXPECT_EQ(1, OA_SysReAllocString(&shorter, L"again"));
    EXPECT_STREQ(L"again", shorter);
    EXPECT_EQ(0, OA_StrCmpi(L"HeLLo", L"hello"));
    EXPECT_NE(0, OA_StrCmp(L"HeLLo", L"hello"));
    wchar_t buffer[32];
    OA_StrCpy(buffer, nullptr);
    EXPECT_STREQ(L"", buffer);
    OA_StrCpy(buffer, L"ab");
    OA_StrCat(buffer, L"cd");
    EXPECT_STREQ(L"abcd", buffer);
    EXPECT_EQ(4u, OA_StrLen(buffer));
    char narrow[32];
    EXPECT_TRUE(OA_AsciiFromWide(narrow, L"n\u00e9"));
    EXPECT_STREQ("n\xe9", narrow);
    EXPECT_TRUE(OA_WideFromAscii(buffer, "w\xe9"));
    EXPECT_STREQ(L"w\u00e9", buffer);
    for (BSTR text : {a, b, shorter})
        OA_SysFreeString(text);
}

TEST(StringExports, VariantSetters)
{
    VARIANT value;
    VariantInit(&value);
    OA_VariantFromStringA(&value, "text");
    EXPECT_EQ(VT_BSTR, value.vt);
    EXPECT_STREQ(L"text", value.bstrVal);
    OA_VariantFromBOOL(&value, 1);   // the 16-bit value unchanged
    EXPECT_EQ(VT_BOOL, value.vt);
    EXPECT_EQ(1, value.boolVal);
    OA_VariantFromR8(&value, 2.5);
    EXPECT_EQ(VT_R8, value.vt);
    EXPECT_DOUBLE_EQ(2.5, value.dblVal);
    OA_VariantFromI2(&value, 7);
    EXPECT_EQ(VT_I2, value.vt);
    OA_VariantFromStringW(&value, nullptr);
    EXPECT_EQ(0u, SysStringLen(value.bstrVal));
    VariantClear(&value);
}
