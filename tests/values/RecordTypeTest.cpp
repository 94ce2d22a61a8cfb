// Record types: the layout rule, starting, clearing, copying and destroying records, fields by name,
// and records held by Variants.
#include "values/RecordType.h"

#include "values/RaiseRecorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <psapi.h>

#include <cstring>

namespace brannoc {
namespace {

RecordField Plain(const char* name, VARTYPE tag)
{
    RecordField field;
    field.name = name;
    field.kind = FieldKind::Plain;
    field.tag = tag;
    return field;
}

RecordField Of(const char* name, FieldKind kind, UINT length = 0)
{
    RecordField field;
    field.name = name;
    field.kind = kind;
    field.length = length;
    if (kind == FieldKind::Object)
        field.tag = VT_DISPATCH;
    return field;
}

RecordField Nested(const char* name, RecordType* type)
{
    RecordField field = Of(name, FieldKind::Record);
    type->AddRef();
    field.record = RecordTypeRef(type);
    return field;
}

RecordField FixedArray(const char* name, VARTYPE element, LONG lower, LONG upper)
{
    RecordField field = Of(name, FieldKind::Array);
    field.elementTag = element;
    field.bounds.emplace_back(lower, upper);
    return field;
}

template <typename T>
T& FieldOf(void* record, const RecordType& type, const char* name)
{
    return *reinterpret_cast<T*>(static_cast<char*>(record) + type.FindField(name)->offset);
}

std::wstring TextOf(BSTR text) { return text ? std::wstring(text, SysStringLen(text)) : std::wstring(); }

SIZE_T CommittedBytes()
{
    PROCESS_MEMORY_COUNTERS counters{};
    counters.cb = sizeof counters;
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters.PagefileUsage;
}

TEST(RecordType, FieldsFollowInOrderAtTheirAlignmentAndTheSizeRoundsUp)
{
    RecordTypeRef small(RecordType::Create("Small"));
    ASSERT_TRUE(small->AddField(Plain("B", VT_UI1)));
    EXPECT_EQ(1u, small->Size());
    EXPECT_EQ(1u, small->Alignment());

    RecordTypeRef mixed(RecordType::Create("Mixed"));
    const struct {
        RecordField field;
        ULONG offset;
        ULONG size;
    } rows[] = {
        {Plain("B", VT_UI1), 0, 1},           {Plain("I", VT_I2), 2, 2},     {Plain("L", VT_I4), 4, 4},
        {Plain("B2", VT_UI1), 8, 1},          {Plain("D", VT_R8), 12, 8},    {Of("F", FieldKind::FixedString, 3), 20, 6},
        {Of("S", FieldKind::String), 28, 4},  {Of("V", FieldKind::Variant), 32, 16},
        {Nested("N", small.Get()), 48, 1},    {Plain("C", VT_CY), 52, 8},   {Plain("M", VT_DECIMAL), 60, 16},
        {Of("O", FieldKind::Object), 76, 4},  {FixedArray("A", VT_I4, 0, 3), 80, 4},
    };
    for (const auto& row : rows) {
        ASSERT_TRUE(mixed->AddField(row.field)) << row.field.name;
        const RecordField* added = mixed->FindField(row.field.name);
        ASSERT_NE(nullptr, added);
        EXPECT_EQ(row.offset, added->offset) << row.field.name;
        EXPECT_EQ(row.size, added->size) << row.field.name;
    }
    EXPECT_EQ(84u, mixed->Size());
    EXPECT_EQ(4u, mixed->Alignment());
    EXPECT_EQ(mixed->FindField("S"), mixed->FindField("s")) << "names compare without regard to case";
    EXPECT_EQ(nullptr, mixed->FindField("Missing"));

    RecordTypeRef huge(RecordType::Create("Huge"));
    EXPECT_TRUE(huge->AddField(Of("F", FieldKind::FixedString, 8000000)));
    EXPECT_FALSE(huge->AddField(Of("G", FieldKind::FixedString, 400000))) << "more than 16 777 216 bytes";
}

class RecordTypeOps : public ::testing::Test {
protected:
    RecordTypeOps()
    {
        (void)point->AddField(Plain("X", VT_I2));
        (void)point->AddField(Of("Label", FieldKind::String));
        (void)shape->AddField(Of("Name", FieldKind::String));
        (void)shape->AddField(Of("Code", FieldKind::FixedString, 2));
        (void)shape->AddField(Nested("Corner", point.Get()));
        (void)shape->AddField(FixedArray("Tags", VT_BSTR, 1, 2));
        (void)shape->AddField(Of("Extra", FieldKind::Variant));
    }
    RecordTypeRef point{RecordType::Create("Point")};
    RecordTypeRef shape{RecordType::Create("Shape")};
};

TEST_F(RecordTypeOps, NewRecordsHoldZeroValuesAndClearingIsHarmlessTwice)
{
    void* record = shape->RecordCreate();
    ASSERT_NE(nullptr, record);
    EXPECT_EQ(nullptr, FieldOf<BSTR>(record, *shape, "Name"));
    const wchar_t* code = &FieldOf<wchar_t>(record, *shape, "Code");
    EXPECT_EQ(L' ', code[0]);
    EXPECT_EQ(L' ', code[1]);
    SAFEARRAY* tags = FieldOf<SAFEARRAY*>(record, *shape, "Tags");
    ASSERT_NE(nullptr, tags);
    EXPECT_TRUE(IsFixedArray(tags));
    EXPECT_EQ(2u, ElementCount(tags));
    EXPECT_EQ(VT_EMPTY, FieldOf<VARIANT>(record, *shape, "Extra").vt);
    FieldOf<BSTR>(record, *shape, "Name") = SysAllocString(L"n");
    EXPECT_EQ(S_OK, shape->RecordClear(record));
    EXPECT_EQ(nullptr, FieldOf<BSTR>(record, *shape, "Name"));
    EXPECT_EQ(nullptr, FieldOf<SAFEARRAY*>(record, *shape, "Tags"));
    EXPECT_EQ(S_OK, shape->RecordClear(record));
    EXPECT_EQ(S_OK, shape->RecordDestroy(record));
}

TEST_F(RecordTypeOps, CopiesAreDeepAndKeepFixedArraysFixed)
{
    void* record = shape->RecordCreate();
    ASSERT_NE(nullptr, record);
    FieldOf<BSTR>(record, *shape, "Name") = SysAllocString(L"square");
    char* corner = &FieldOf<char>(record, *shape, "Corner");
    FieldOf<SHORT>(corner, *point, "X") = 7;
    FieldOf<BSTR>(corner, *point, "Label") = SysAllocString(L"c");
    void* copy = nullptr;
    ASSERT_EQ(S_OK, shape->RecordCreateCopy(record, &copy));
    EXPECT_EQ(L"square", TextOf(FieldOf<BSTR>(copy, *shape, "Name")));
    EXPECT_NE(FieldOf<BSTR>(record, *shape, "Name"), FieldOf<BSTR>(copy, *shape, "Name"));
    char* copiedCorner = &FieldOf<char>(copy, *shape, "Corner");
    EXPECT_EQ(7, FieldOf<SHORT>(copiedCorner, *point, "X"));
    EXPECT_NE(FieldOf<BSTR>(corner, *point, "Label"), FieldOf<BSTR>(copiedCorner, *point, "Label"));
    SAFEARRAY* tags = FieldOf<SAFEARRAY*>(copy, *shape, "Tags");
    EXPECT_NE(FieldOf<SAFEARRAY*>(record, *shape, "Tags"), tags);
    EXPECT_TRUE(IsFixedArray(tags));
    EXPECT_EQ(S_OK, shape->RecordCopy(copy, copy)) << "copying onto itself changes nothing";
    EXPECT_EQ(L"square", TextOf(FieldOf<BSTR>(copy, *shape, "Name")));
    shape->RecordDestroy(copy);
    shape->RecordDestroy(record);
}

TEST_F(RecordTypeOps, FieldsAreReadAndWrittenByName)
{
    void* record = shape->RecordCreate();
    ASSERT_NE(nullptr, record);
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_BSTR;
    value.bstrVal = SysAllocString(L"abc");
    EXPECT_EQ(S_OK, shape->PutField(INVOKE_PROPERTYPUT, record, L"code", &value));
    VariantClear(&value);
    VARIANT read;
    VariantInit(&read);
    ASSERT_EQ(S_OK, shape->GetField(record, L"CODE", &read));
    EXPECT_EQ(VT_BSTR, read.vt);
    EXPECT_EQ(L"ab", TextOf(read.bstrVal)) << "a fixed-length String keeps its length";
    VariantClear(&read);
    ASSERT_EQ(S_OK, shape->GetField(record, L"Corner", &read));
    EXPECT_EQ(VT_RECORD, read.vt);
    EXPECT_EQ(static_cast<IRecordInfo*>(point.Get()), read.pRecInfo);
    {
        Variant holder;
        holder.Attach(read);
    }
    EXPECT_EQ(E_INVALIDARG, shape->GetField(record, L"Missing", &read));
    ULONG count = 0;
    EXPECT_EQ(S_OK, shape->GetFieldNames(&count, nullptr));
    EXPECT_EQ(5u, count);
    BSTR names[5] = {};
    EXPECT_EQ(S_OK, shape->GetFieldNames(&count, names));
    EXPECT_EQ(L"Name", TextOf(names[0]));
    EXPECT_EQ(L"Extra", TextOf(names[4]));
    for (BSTR name : names)
        SysFreeString(name);
    BSTR typeName = nullptr;
    EXPECT_EQ(S_OK, shape->GetName(&typeName));
    EXPECT_EQ(L"Shape", TextOf(typeName));
    SysFreeString(typeName);
    EXPECT_TRUE(shape->IsMatchingType(shape.Get()));
    EXPECT_FALSE(shape->IsMatchingType(point.Get()));
    EXPECT_EQ(shape.Get(), AsRecordType(shape.Get()));
    shape->RecordDestroy(record);
}

TEST_F(RecordTypeOps, StoringAFieldConvertsOrRefuses)
{
    test::RaiseRecorder raised;
    void* record = shape->RecordCreate();
    ASSERT_NE(nullptr, record);
    Variant text;
    ASSERT_TRUE(text.SetString(std::wstring_view(L"12")));
    char* corner = &FieldOf<char>(record, *shape, "Corner");
    ASSERT_TRUE(RecordType::StoreField(*point->FindField("X"), corner, text));
    EXPECT_EQ(12, FieldOf<SHORT>(corner, *point, "X"));
    EXPECT_FALSE(RecordType::StoreField(*shape->FindField("Corner"), record, text));
    EXPECT_EQ(10080, raised.Last()) << "a record takes only a record of its type";
    Variant number;
    number.SetLong(1);
    EXPECT_FALSE(RecordType::StoreField(*shape->FindField("Tags"), record, number));
    EXPECT_EQ(10618, raised.Last()) << "a fixed array cannot take a whole array";
    shape->RecordDestroy(record);
}

TEST_F(RecordTypeOps, VariantsCopyAndFreeTheirRecords)
{
    // A first round fills the heap's and the string cache's free lists, so that the measured round
    // grows only by what it leaks (a record and its name per pass would be over 2 MB).
    auto round = [&](int passes) {
        for (int i = 0; i < passes; ++i) {
            Variant value;
            value.SetRecord(shape->RecordCreate(), shape.Get());
            shape->AddRef();
            FieldOf<BSTR>(value.Raw().pvRecord, *shape, "Name") = SysAllocString(L"a name that takes some room");
            Variant copy(value);
            EXPECT_EQ(VT_RECORD, copy.Tag());
            EXPECT_NE(value.Raw().pvRecord, copy.Raw().pvRecord);
            Variant reference;
            reference.SetRecordReference(value.Raw().pvRecord, shape.Get());
            Variant fromReference;
            EXPECT_TRUE(fromReference.CopyIndirectFrom(reference.Raw()));
            EXPECT_NE(value.Raw().pvRecord, fromReference.Raw().pvRecord);
        }
    };
    // A leak grows the process by megabytes with every run; the platform's own threads may commit a
    // megabyte now and then, so the smaller growth of two measured runs counts.
    round(20000);
    const SIZE_T first = CommittedBytes();
    round(20000);
    const SIZE_T second = CommittedBytes();
    round(20000);
    const SIZE_T third = CommittedBytes();
    const auto growth = [](SIZE_T from, SIZE_T to) { return to > from ? to - from : SIZE_T{0}; };
    EXPECT_LT(std::min(growth(first, second), growth(second, third)), 1000000u) << "records and what they hold are freed";
}

} // namespace
} // namespace brannoc
