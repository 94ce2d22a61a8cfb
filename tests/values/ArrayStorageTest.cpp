// Safe arrays as the language keeps them: zero values of every element kind, element addresses,
// ReDim Preserve, Erase of fixed arrays, deep copies, and what a large array costs in memory.
#include "values/ArrayStorage.h"
#include "values/Variant.h"
#include "support/TestComObject.h"

#include <gtest/gtest.h>
#include <psapi.h>

#include <cstring>
#include <string>

namespace brannoc {
namespace {

// Records of 8 bytes: a String at 0 and a Long at 4. Counts what the array code asks of it.
class FakeRecord final : public testing::TestComObject<IRecordInfo> {
public:
    int inits = 0;
    int clears = 0;
    int copies = 0;
    int destroys = 0;

    HRESULT __stdcall RecordInit(PVOID record) override
    {
        ++inits;
        std::memset(record, 0, 8);
        static_cast<LONG*>(record)[1] = -1;
        return S_OK;
    }
    HRESULT __stdcall RecordClear(PVOID record) override
    {
        if (*static_cast<BSTR*>(record))
            ++clears;
        Bstr owner;
        owner.Attach(*static_cast<BSTR*>(record));
        std::memset(record, 0, 8);
        return S_OK;
    }
    HRESULT __stdcall RecordCopy(PVOID source, PVOID target) override
    {
        ++copies;
        const BSTR text = *static_cast<BSTR*>(source);
        *static_cast<BSTR*>(target) = text ? SysAllocString(text) : nullptr;
        static_cast<LONG*>(target)[1] = static_cast<LONG*>(source)[1];
        return S_OK;
    }
    HRESULT __stdcall GetGuid(GUID*) override { return E_NOTIMPL; }
    HRESULT __stdcall GetName(BSTR*) override { return E_NOTIMPL; }
    HRESULT __stdcall GetSize(ULONG* size) override
    {
        *size = 8;
        return S_OK;
    }
    HRESULT __stdcall GetTypeInfo(ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT __stdcall GetField(PVOID, LPCOLESTR, VARIANT*) override { return E_NOTIMPL; }
    HRESULT __stdcall GetFieldNoCopy(PVOID, LPCOLESTR, VARIANT*, PVOID*) override { return E_NOTIMPL; }
    HRESULT __stdcall PutField(ULONG, PVOID, LPCOLESTR, VARIANT*) override { return E_NOTIMPL; }
    HRESULT __stdcall PutFieldNoCopy(ULONG, PVOID, LPCOLESTR, VARIANT*) override { return E_NOTIMPL; }
    HRESULT __stdcall GetFieldNames(ULONG*, BSTR*) override { return E_NOTIMPL; }
    BOOL __stdcall IsMatchingType(IRecordInfo* other) override { return other == this; }
    PVOID __stdcall RecordCreate() override
    {
        void* record = CoTaskMemAlloc(8);
        if (record)
            RecordInit(record);
        return record;
    }
    HRESULT __stdcall RecordCreateCopy(PVOID source, PVOID* target) override
    {
        *target = CoTaskMemAlloc(8);
        return *target ? RecordCopy(source, *target) : E_OUTOFMEMORY;
    }
    HRESULT __stdcall RecordDestroy(PVOID record) override
    {
        ++destroys;
        RecordClear(record);
        CoTaskMemFree(record);
        return S_OK;
    }

private:
};

std::wstring TextOf(BSTR text) { return text ? std::wstring(text, SysStringLen(text)) : std::wstring(); }

void* At(SAFEARRAY* array, LONG first, LONG second = 0)
{
    LONG indexes[2] = {first, second};
    return ElementAddress(array, indexes);
}

SIZE_T CommittedBytes()
{
    PROCESS_MEMORY_COUNTERS counters{};
    counters.cb = sizeof counters;
    EXPECT_TRUE(GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters));
    return counters.PagefileUsage;
}

TEST(ArrayStorage, NewArraysHoldTheZeroValueOfTheirKind)
{
    const struct {
        VARTYPE tag;
        UINT fixedLength;
        ULONG elementSize;
    } rows[] = {
        {VT_UI1, 0, 1}, {VT_BOOL, 0, 2}, {VT_I2, 0, 2}, {VT_I4, 0, 4}, {VT_R4, 0, 4}, {VT_R8, 0, 8},
        {VT_CY, 0, 8}, {VT_DATE, 0, 8}, {VT_BSTR, 0, 4}, {VT_DISPATCH, 0, 4}, {VT_VARIANT, 0, 16},
    };
    const LONG lower = -1;
    const LONG upper = 1;
    for (const auto& row : rows) {
        SAFEARRAY* array = CreateArray(ElementKind{row.tag, row.fixedLength, nullptr}, &lower, &upper, 1, false);
        ASSERT_NE(nullptr, array) << "tag " << row.tag;
        EXPECT_EQ(row.elementSize, array->cbElements) << "tag " << row.tag;
        EXPECT_EQ(3u, ElementCount(array));
        EXPECT_FALSE(IsFixedArray(array));
        EXPECT_EQ(row.tag, ElementKindOf(array).tag);
        const char zero[16] = {};
        EXPECT_EQ(0, std::memcmp(zero, At(array, 1), row.elementSize)) << "tag " << row.tag;
        DestroyArray(array);
    }
    SAFEARRAY* padded = CreateArray(ElementKind{VT_BSTR, 3, nullptr}, &lower, &upper, 1, true);
    ASSERT_NE(nullptr, padded);
    EXPECT_TRUE(IsFixedArray(padded));
    EXPECT_EQ(L"   ", TextOf(*static_cast<BSTR*>(At(padded, -1))));
    EXPECT_EQ(L"   ", TextOf(*static_cast<BSTR*>(At(padded, 1))));
    DestroyArray(padded);
}

TEST(ArrayStorage, ElementAddressesFollowTheDimensionsAndRefuseEveryIndexOutside)
{
    const LONG lower[3] = {1, -2, 0};
    const LONG upper[3] = {3, 0, 1};
    SAFEARRAY* array = CreateArray(ElementKind{VT_I4, 0, nullptr}, lower, upper, 3, false);
    ASSERT_NE(nullptr, array);
    for (LONG a = 1; a <= 3; ++a) {
        for (LONG b = -2; b <= 0; ++b) {
            for (LONG c = 0; c <= 1; ++c) {
                LONG indexes[3] = {a, b, c};
                void* expected = nullptr;
                ASSERT_EQ(S_OK, SafeArrayPtrOfIndex(array, indexes, &expected));
                EXPECT_EQ(expected, ElementAddress(array, indexes)) << a << "," << b << "," << c;
            }
        }
    }
    const LONG outside[][3] = {{0, -2, 0}, {4, -2, 0}, {1, -3, 0}, {1, 1, 0}, {1, -2, -1}, {1, -2, 2}};
    for (const auto& indexes : outside)
        EXPECT_EQ(nullptr, ElementAddress(array, indexes)) << indexes[0] << "," << indexes[1] << "," << indexes[2];
    DestroyArray(array);
}

TEST(ArrayStorage, ResizingTheLastDimensionKeepsReleasesAndStartsElements)
{
    const LONG lower[2] = {1, 1};
    const LONG upper[2] = {2, 3};
    const ElementKind kind{VT_BSTR, 2, nullptr};
    SAFEARRAY* array = CreateArray(kind, lower, upper, 2, false);
    ASSERT_NE(nullptr, array);
    Bstr text(std::wstring_view(L"23"));
    Bstr old;
    old.Attach(*static_cast<BSTR*>(At(array, 2, 3)));
    *static_cast<BSTR*>(At(array, 2, 3)) = text.Detach();
    ASSERT_TRUE(ResizeLastDimension(array, kind, 1, 5));
    EXPECT_EQ(L"23", TextOf(*static_cast<BSTR*>(At(array, 2, 3))));
    EXPECT_EQ(L"  ", TextOf(*static_cast<BSTR*>(At(array, 2, 5)))) << "new elements start blank";
    ASSERT_TRUE(ResizeLastDimension(array, kind, 1, 2));
    EXPECT_EQ(nullptr, At(array, 2, 3));
    EXPECT_EQ(L"  ", TextOf(*static_cast<BSTR*>(At(array, 1, 2))));
    LONG upperBound = 0;
    EXPECT_EQ(S_OK, SafeArrayGetUBound(array, 2, &upperBound));
    EXPECT_EQ(2, upperBound);
    DestroyArray(array);
}

TEST(ArrayStorage, RecordsAreKeptReleasedAndStartedByTheEngineNotThePlatform)
{
    FakeRecord record;
    const ElementKind kind{VT_RECORD, 0, &record};
    const LONG lower = 0;
    const LONG upper = 3;
    SAFEARRAY* array = CreateArray(kind, &lower, &upper, 1, false);
    ASSERT_NE(nullptr, array);
    EXPECT_EQ(4, record.inits);
    const wchar_t* names[] = {L"a", L"b", L"c", L"d"};
    for (LONG i = 0; i < 4; ++i) {
        Bstr name{std::wstring_view(names[i])};
        *static_cast<BSTR*>(At(array, i)) = name.Detach();
    }
    ASSERT_TRUE(ResizeLastDimension(array, kind, 0, 1));
    EXPECT_EQ(2, record.clears) << "exactly the two dropped records";
    EXPECT_EQ(L"a", TextOf(*static_cast<BSTR*>(At(array, 0))));
    EXPECT_EQ(L"b", TextOf(*static_cast<BSTR*>(At(array, 1))));
    ASSERT_TRUE(ResizeLastDimension(array, kind, 0, 2));
    EXPECT_EQ(5, record.inits);
    EXPECT_EQ(-1, static_cast<LONG*>(At(array, 2))[1]);
    EXPECT_EQ(L"a", TextOf(*static_cast<BSTR*>(At(array, 0))));
    SAFEARRAY* copy = CopyArray(array);
    ASSERT_NE(nullptr, copy);
    EXPECT_EQ(3, record.copies);
    EXPECT_NE(*static_cast<BSTR*>(At(array, 0)), *static_cast<BSTR*>(At(copy, 0)));
    DestroyArray(copy);
    DestroyArray(array);
    EXPECT_EQ(6, record.clears);
    EXPECT_EQ(1u, record.References()) << "the arrays let go of the record type";
}

TEST(ArrayStorage, ResetGivesEveryElementItsZeroValueAgain)
{
    const LONG lower = 1;
    const LONG upper = 2;
    SAFEARRAY* numbers = CreateArray(ElementKind{VT_R8, 0, nullptr}, &lower, &upper, 1, true);
    SAFEARRAY* padded = CreateArray(ElementKind{VT_BSTR, 4, nullptr}, &lower, &upper, 1, true);
    ASSERT_NE(nullptr, numbers);
    ASSERT_NE(nullptr, padded);
    *static_cast<double*>(At(numbers, 2)) = 2.5;
    Bstr text{std::wstring_view(L"abcd")};
    Bstr old;
    old.Attach(*static_cast<BSTR*>(At(padded, 1)));
    *static_cast<BSTR*>(At(padded, 1)) = text.Detach();
    ASSERT_TRUE(ResetArray(numbers, ElementKind{VT_R8, 0, nullptr}));
    ASSERT_TRUE(ResetArray(padded, ElementKind{VT_BSTR, 4, nullptr}));
    EXPECT_EQ(0.0, *static_cast<double*>(At(numbers, 2)));
    EXPECT_EQ(L"    ", TextOf(*static_cast<BSTR*>(At(padded, 1))));
    EXPECT_TRUE(IsFixedArray(numbers)) << "a reset array keeps its shape";
    DestroyArray(numbers);
    DestroyArray(padded);
}

TEST(ArrayStorage, CopiesAreDeepAndDynamic)
{
    const LONG lower = 0;
    const LONG upper = 1;
    SAFEARRAY* texts = CreateArray(ElementKind{VT_BSTR, 0, nullptr}, &lower, &upper, 1, true);
    ASSERT_NE(nullptr, texts);
    Bstr text{std::wstring_view(L"x")};
    *static_cast<BSTR*>(At(texts, 1)) = text.Detach();
    SAFEARRAY* copy = CopyArray(texts);
    ASSERT_NE(nullptr, copy);
    EXPECT_FALSE(IsFixedArray(copy));
    EXPECT_EQ(L"x", TextOf(*static_cast<BSTR*>(At(copy, 1))));
    EXPECT_NE(*static_cast<BSTR*>(At(texts, 1)), *static_cast<BSTR*>(At(copy, 1)));
    DestroyArray(copy);
    DestroyArray(texts);
    EXPECT_EQ(nullptr, CopyArray(nullptr));
}

TEST(ArrayStorage, ArraysWithoutDescriptorAreCopiedAndTakenAsSuch)
{
    Variant copy;
    ASSERT_TRUE(CopyArrayInto(nullptr, VT_I4, copy));
    EXPECT_EQ(VT_ARRAY | VT_I4, copy.Tag()) << "a copy of an array that is not dimensioned is one too";
    EXPECT_EQ(nullptr, copy.Array());

    const struct {
        VARTYPE given;    // the tag of the value assigned (its array, if any, is not dimensioned)
        VARTYPE target;   // the element kind of the dynamic array assigned to
        long error;
    } rows[] = {
        {VT_ARRAY | VT_I2, VT_I2, 0},
        {VT_ARRAY | VT_BSTR, VT_BSTR, 0},
        {VT_ARRAY | VT_VARIANT, VT_VARIANT, 0},
        {VT_ARRAY | VT_RECORD, VT_RECORD, 0},
        {VT_ARRAY | VT_I2, VT_I4, 10080},
        {VT_ARRAY | VT_VARIANT, VT_I2, 10080},
        {VT_EMPTY, VT_I2, 10080},
        {VT_I2, VT_I2, 10080},
    };
    for (const auto& row : rows) {
        Variant value;
        value.Raw().vt = row.given;
        value.Raw().parray = nullptr;
        SAFEARRAY* result = reinterpret_cast<SAFEARRAY*>(1);
        EXPECT_EQ(row.error, TakeArrayFor(ElementKind{row.target, 0, nullptr}, value, result))
            << "given " << row.given << ", target " << row.target;
        EXPECT_EQ(nullptr, result) << "given " << row.given << ", target " << row.target;
    }
    // Through a by-reference Variant and a by-reference array.
    Variant none;
    none.SetArray(nullptr, VT_R8);
    Variant reference;
    reference.SetByRef(VT_VARIANT, &none.Raw());
    SAFEARRAY* result = nullptr;
    EXPECT_EQ(0, TakeArrayFor(ElementKind{VT_R8, 0, nullptr}, reference, result));
    SAFEARRAY* held = nullptr;
    reference.SetByRef(VT_ARRAY | VT_R8, &held);
    EXPECT_EQ(0, TakeArrayFor(ElementKind{VT_R8, 0, nullptr}, reference, result));
    EXPECT_EQ(10080, TakeArrayFor(ElementKind{VT_I2, 0, nullptr}, reference, result));
}

TEST(ArrayStorage, VariantsHoldingRecordsAreCopiedAndFreedByTheRecordType)
{
    FakeRecord record;
    const LONG lower = 0;
    const LONG upper = 0;
    SAFEARRAY* array = CreateArray(ElementKind{VT_VARIANT, 0, nullptr}, &lower, &upper, 1, false);
    ASSERT_NE(nullptr, array);
    VARIANT& element = *static_cast<VARIANT*>(At(array, 0));
    element.vt = VT_RECORD;
    element.pvRecord = record.RecordCreate();
    element.pRecInfo = &record;
    record.AddRef();
    {
        Variant holder;
        holder.SetArray(array, VT_VARIANT);
        Variant copy(holder);
        EXPECT_EQ(1, record.copies);
        EXPECT_EQ(3u, record.References());
    }
    EXPECT_EQ(2, record.destroys) << "each record block is freed by its type";
    EXPECT_EQ(1u, record.References());
}

TEST(ArrayStorage, TenMillionLongsCostFortyMegabytes)
{
    const SIZE_T before = CommittedBytes();
    const LONG lower = 1;
    const LONG upper = 10000000;
    SAFEARRAY* array = CreateArray(ElementKind{VT_I4, 0, nullptr}, &lower, &upper, 1, false);
    ASSERT_NE(nullptr, array);
    const SIZE_T grown = CommittedBytes() - before;
    EXPECT_GE(grown, 39000000u);
    EXPECT_LE(grown, 42000000u);
    DestroyArray(array);
    const SIZE_T after = CommittedBytes();
    EXPECT_LE(after, before + 1000000u) << "the data block is given back";
    // Too large for 32 bits of bytes: refused, not wrapped around.
    const LONG huge = 0x7FFFFFF0;
    EXPECT_EQ(nullptr, CreateArray(ElementKind{VT_I4, 0, nullptr}, &lower, &huge, 1, false));
}

} // namespace
} // namespace brannoc
