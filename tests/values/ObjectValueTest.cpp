// Objects used as data: default values, their errors and their display.
#include "values/Conversion.h"
#include "values/Operators.h"
#include "values/TextForm.h"
#include "support/TestComObject.h"

#include "RaiseRecorder.h"
#include "ValueMaker.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

using namespace test;

// A dispatch object whose default member answers a fixed value and records how often it was asked.
class FakeDispatch final : public testing::TestDispatch {
public:
    explicit FakeDispatch(Variant value) : m_value(std::move(value)) {}
    int Calls() const { return m_calls; }

    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID locale, WORD flags, DISPPARAMS* params,
                                     VARIANT* result, EXCEPINFO*, UINT*) override
    {
        ++m_calls;
        EXPECT_EQ(member, DISPID_VALUE);
        EXPECT_EQ(locale, 0x409u);
        EXPECT_EQ(flags, DISPATCH_PROPERTYGET);
        EXPECT_EQ(params->cArgs, 0u);
        if (!result)
            return E_INVALIDARG;
        return VariantCopy(result, &m_value.Raw());
    }

private:
    Variant m_value;
    int m_calls = 0;
};

Variant MakeObject(IDispatch* object)
{
    Variant value;
    value.SetObject(object);
    return value;
}

TEST(ObjectDefaultValue, UsedByOperatorsAndPrint)
{
    FakeDispatch object(MakeLong(42));
    Variant left = MakeObject(&object);
    ASSERT_TRUE(BinaryOperation(OperationId::kAdd, left, MakeInteger(1)));
    EXPECT_EQ(left.Tag(), VT_I4);
    EXPECT_EQ(left.Long(), 43);
    EXPECT_EQ(object.Calls(), 1);

    std::wstring printed;
    ASSERT_TRUE(WritePrint(printed, MakeObject(&object)));
    EXPECT_EQ(printed, L" 42");
    EXPECT_EQ(object.Calls(), 2);
}

TEST(ObjectDefaultValue, ObjectDefaultIsTypeMismatch)
{
    FakeDispatch inner(MakeLong(1));
    FakeDispatch outer(MakeObject(&inner));
    RaiseRecorder raised;
    Variant value = MakeObject(&outer);
    EXPECT_FALSE(Resolve(value));
    EXPECT_EQ(raised.Last(), 10080);
    EXPECT_EQ(value.Tag(), VT_EMPTY);
}

TEST(ObjectDefaultValue, ChangeTypeToObjectKeepsTheObject)
{
    FakeDispatch object(MakeLong(1));
    Variant value = MakeObject(&object);
    ASSERT_TRUE(ChangeType(value, VT_DISPATCH));
    EXPECT_EQ(value.Object(), &object);
    EXPECT_EQ(object.Calls(), 0);
}

TEST(ObjectDisplay, DebugShowsNameAndAddress)
{
    FakeDispatch object(MakeLong(1));
    std::wstring shown;
    ASSERT_TRUE(WriteDebug(shown, MakeObject(&object)));
    EXPECT_EQ(shown.rfind(L"[Object@0x", 0), 0u) << ::testing::PrintToString(shown);
    EXPECT_EQ(shown.back(), L']');
    EXPECT_EQ(object.Calls(), 0);
}

// ---- Mixed static kinds ----

TEST(StaticKinds, VariantSideIsConvertedTowardTheFixedSide)
{
    Variant left = MakeString(L"5");
    Variant right = MakeInteger(5);
    ASSERT_TRUE(AlignStaticKinds(OperationId::kEqual, left, StaticKind::kVariant, right, StaticKind::kFixed));
    ASSERT_TRUE(BinaryOperation(OperationId::kEqual, left, right));
    EXPECT_EQ(left.Boolean(), VARIANT_TRUE);

    left = MakeInteger(5);
    right = MakeString(L"5");
    ASSERT_TRUE(AlignStaticKinds(OperationId::kEqual, left, StaticKind::kVariant, right, StaticKind::kFixed));
    EXPECT_EQ(left.Tag(), VT_BSTR);
    ASSERT_TRUE(BinaryOperation(OperationId::kEqual, left, right));
    EXPECT_EQ(left.Boolean(), VARIANT_TRUE);

    // Concatenation and Null are left alone.
    left = MakeInteger(5);
    ASSERT_TRUE(AlignStaticKinds(OperationId::kConcatenate, left, StaticKind::kVariant, right, StaticKind::kFixed));
    EXPECT_EQ(left.Tag(), VT_I2);
    left = MakeNull();
    ASSERT_TRUE(AlignStaticKinds(OperationId::kEqual, left, StaticKind::kVariant, right, StaticKind::kFixed));
    EXPECT_EQ(left.Tag(), VT_NULL);
}

} // namespace
} // namespace brannoc
