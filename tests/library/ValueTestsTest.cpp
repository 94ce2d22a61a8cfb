#include "BuiltinRows.h"

namespace brannoc::testing {
namespace {

const BuiltinRow kTestRows[] = {
    {"IsNumeric(\"12\")", L"True"},
    {"IsNumeric(\"&H10\")", L"True"},
    {"IsNumeric(\"abc\")", L"False"},
    {"IsNumeric(e)", L"True"},
    {"IsNumeric(n)", L"False"},
    {"IsNumeric(CVErr(1))", L"False"},
    {"IsDate(\"2000-01-31\")", L"True"},
    {"IsDate(\"abc\")", L"False"},
    {"IsDate(5)", L"False"},
    {"IsNull(n)", L"True"},
    {"IsNull(e)", L"False"},
    {"IsEmpty(e)", L"True"},
    {"IsEmpty(s)", L"False"},
    {"IsArray(Array())", L"True"},
    {"IsArray(s)", L"False"},
    {"IsArray(d)", L"True"},
    {"IsEmpty(d)", L"False"},
    {"IsArray(e)", L"False"},
    {"IsObject(Nothing)", L"True"},
    {"IsObject(s)", L"False"},
    {"IsError(CVErr(1))", L"True"},
    {"IsError(1)", L"False"},
    {"IsMissing(e)", L"False"},
    {"VarType(s)", L"8%"},
    {"VarType(Array(1))", L"8204%"},
    {"VarType(Split(\"a\"))", L"8200%"},
    {"VarType(n)", L"1%"},
    {"VarType(e)", L"0%"},
    {"VarType(1.5)", L"5%"},
    {"VarType(Nothing)", L"9%"},
    {"VarType(d)", L"8194%"},
    {"TypeName(Nothing)", L"\"Nothing\""},
    {"TypeName(1)", L"\"Integer\""},
    {"TypeName(1&)", L"\"Long\""},
    {"TypeName(1!)", L"\"Single\""},
    {"TypeName(1.5)", L"\"Double\""},
    {"TypeName(CCur(1))", L"\"Currency\""},
    {"TypeName(CDate(1))", L"\"Date\""},
    {"TypeName(s)", L"\"String\""},
    {"TypeName(True)", L"\"Boolean\""},
    {"TypeName(n)", L"\"Null\""},
    {"TypeName(e)", L"\"Empty\""},
    {"TypeName(CVErr(1))", L"\"Error\""},
    {"TypeName(CByte(1))", L"\"Byte\""},
    {"TypeName(Array())", L"\"Variant()\""},
    {"TypeName(d)", L"\"Integer()\""},
};
INSTANTIATE_TEST_SUITE_P(ValueTests, BuiltinRowTest, ::testing::ValuesIn(kTestRows));

const BuiltinRow kChoiceRows[] = {
    {"IIf(True, 1, 1 / Len(e))", L"1%"},
    {"IIf(False, 1 / Len(e), \"b\")", L"\"b\""},
    {"IIf(n, 1, 2)", L"2%"},
    {"IIf(\"x\", 1, 2)", nullptr, 10080},
    {"Choose(2, \"a\", \"b\", 1 / Len(e))", L"\"b\""},
    {"Choose(0, \"a\")", L"Null"},
    {"Choose(3, \"a\", \"b\")", L"Null"},
    {"Choose(1.6, \"a\", \"b\")", L"\"b\""},
    {"Choose(1)", L"Null"},
    {"Choose(n, 1)", nullptr, 10075},
    {"UBound(Array(1, 2, 3))", L"2&"},
    {"LBound(Array(1, 2, 3))", L"0&"},
    {"UBound(Array())", L"-1&"},
    {"UBound(Array(1), 2)", nullptr, 10023},
    {"UBound(Array(1), 0)", nullptr, 10023},
    {"LBound(e)", nullptr, 10080},
    {"LBound(d)", nullptr, 10022},
    {"UBound(d, 1)", nullptr, 10022},
};
INSTANTIATE_TEST_SUITE_P(Choices, BuiltinRowTest, ::testing::ValuesIn(kChoiceRows));

} // namespace
} // namespace brannoc::testing
