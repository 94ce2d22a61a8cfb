#include "exec/ModuleInstance.h"

#include "ProgramRunner.h"
#include "exec/ExecFakes.h"

#include <gtest/gtest.h>

#include <iterator>

namespace brannoc {
namespace {

class ModuleInstanceTest : public ::testing::Test {
protected:
    Module* Compile(const std::vector<std::string>& lines, const char* name = "Test")
    {
        source.texts[name] = ModuleText{testing::JoinLines(lines), false};
        compiler.SetBodyCompiler(&bodies);
        if (compiler.Parse(name, 2) != ParseResult::Okay)
            return nullptr;
        return compiler.FindModule(name);
    }

    testing::MemorySource source;
    Compiler compiler{source};
    BodyCompiler bodies;
};

TEST_F(ModuleInstanceTest, SlotsStartAtTheZeroValueOfTheirType)
{
    Module* module = Compile({"Dim a As Integer", "Dim b As String", "Dim c As Variant", "Dim d As Double",
                              "Dim e As Boolean", "Dim f As String * 3"});
    ASSERT_NE(module, nullptr);
    ModuleInstance instance(*module);
    ASSERT_EQ(instance.VariableCount(), 6u);
    EXPECT_EQ(instance.Slot(0).vt, VT_I2);
    EXPECT_EQ(instance.Slot(0).iVal, 0);
    EXPECT_EQ(instance.Slot(1).vt, VT_BSTR);
    EXPECT_EQ(instance.Slot(2).vt, VT_EMPTY);
    EXPECT_EQ(instance.Slot(3).vt, VT_R8);
    EXPECT_EQ(instance.Slot(4).vt, VT_BOOL);
    ASSERT_EQ(instance.Slot(5).vt, VT_BSTR);
    EXPECT_EQ(SysStringLen(instance.Slot(5).bstrVal), 3u);
}

TEST_F(ModuleInstanceTest, FixedArraysAreMadeWithTheirBounds)
{
    Module* module = Compile({"Dim grid(1 To 3, 4) As Long", "Dim pending() As Integer"});
    ASSERT_NE(module, nullptr);
    ModuleInstance instance(*module);
    ASSERT_EQ(instance.Slot(0).vt, VT_ARRAY | VT_I4);
    SAFEARRAY* array = instance.Slot(0).parray;
    ASSERT_EQ(SafeArrayGetDim(array), 2u);
    LONG bound = 0;
    ASSERT_EQ(SafeArrayGetLBound(array, 1, &bound), S_OK);
    EXPECT_EQ(bound, 1);
    ASSERT_EQ(SafeArrayGetUBound(array, 1, &bound), S_OK);
    EXPECT_EQ(bound, 3);
    ASSERT_EQ(SafeArrayGetUBound(array, 2, &bound), S_OK);
    EXPECT_EQ(bound, 4);
    EXPECT_EQ(instance.Slot(1).vt, VT_ARRAY | VT_I2) << "a dynamic array is not dimensioned";
    EXPECT_EQ(instance.Slot(1).parray, nullptr);
}

TEST_F(ModuleInstanceTest, DynamicArraysStartAsArraysOfTheirKindWithoutDescriptor)
{
    Module* module = Compile({"Type Point", "    X As Long", "End Type", "Dim a() As Integer", "Private b() As String",
                              "Public c() As Double", "Dim d()", "Dim e() As String * 3", "Dim f() As Object",
                              "Dim g() As Point", "Dim h() As Byte"});
    ASSERT_NE(module, nullptr);
    ModuleInstance instance(*module);
    const VARTYPE expected[] = {VT_I2, VT_BSTR, VT_R8, VT_VARIANT, VT_BSTR, VT_DISPATCH, VT_RECORD, VT_UI1};
    ASSERT_EQ(instance.VariableCount(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_EQ(instance.Slot(i).vt, VT_ARRAY | expected[i]) << "variable " << i;
        EXPECT_EQ(instance.Slot(i).parray, nullptr) << "variable " << i;
    }
}

TEST_F(ModuleInstanceTest, TypedSlotsOfArrayTypesHaveNoDescriptor)
{
    const struct {
        TypeCode type;
        VARTYPE tag;
    } rows[] = {
        {TypeCode(TypeCode::kInteger).WithRank(1), VT_ARRAY | VT_I2},
        {TypeCode(TypeCode::kLong).WithRank(TypeCode::kDynamicRank), VT_ARRAY | VT_I4},
        {TypeCode(TypeCode::kVariant).WithRank(2), VT_ARRAY | VT_VARIANT},
        {TypeCode::FixedString(5).WithRank(1), VT_ARRAY | VT_BSTR},
        {TypeCode(TypeCode::kDecimal).WithRank(1), VT_ARRAY | VT_DECIMAL},
        {TypeCode(TypeCode::kInteger), VT_I2},
        {TypeCode(TypeCode::kVariant), VT_EMPTY},
    };
    for (const auto& row : rows) {
        VARIANT slot;
        InitializeTypedSlot(slot, row.type.Code());
        EXPECT_EQ(slot.vt, row.tag) << "type code " << row.type.Code();
        if (slot.vt & VT_ARRAY)
            EXPECT_EQ(slot.parray, nullptr) << "type code " << row.type.Code();
    }
}

TEST_F(ModuleInstanceTest, FindAnswersItselfLinkedThenOldestLive)
{
    Module* first = Compile({"Dim a As Integer"}, "First");
    Module* second = Compile({"Dim b As Integer"}, "Second");
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    ModuleInstance firstInstance(*first);
    EXPECT_EQ(firstInstance.Find(*first), &firstInstance);
    EXPECT_EQ(firstInstance.Find(*second), nullptr);
    ModuleInstance oldest(*second);
    ModuleInstance linked(*second);
    EXPECT_EQ(firstInstance.Find(*second), &oldest) << "no link: the oldest live instance";
    firstInstance.Link(linked);
    EXPECT_EQ(firstInstance.Find(*second), &linked);
}

TEST_F(ModuleInstanceTest, DestroyedInstanceIsNoLongerLinked)
{
    Module* first = Compile({"Dim a As Integer"}, "First");
    Module* second = Compile({"Dim b As Integer"}, "Second");
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    ModuleInstance firstInstance(*first);
    ModuleInstance oldest(*second);
    {
        ModuleInstance linked(*second);
        firstInstance.Link(linked);
        EXPECT_EQ(firstInstance.Find(*second), &linked);
    }
    EXPECT_EQ(firstInstance.Find(*second), &oldest);
}

TEST_F(ModuleInstanceTest, UseCountFollowsAddAndRelease)
{
    Module* module = Compile({"Dim a As Integer"});
    ASSERT_NE(module, nullptr);
    ModuleInstance instance(*module);
    EXPECT_EQ(instance.UseCount(), 0);
    instance.AddUse();
    instance.AddUse();
    EXPECT_EQ(instance.ReleaseUse(), 1);
}

// An activation holds a use of its instance; an instance given up by its owner while a procedure still
// runs in it lives until that activation ends.
TEST_F(ModuleInstanceTest, AnAbandonedInstanceLivesUntilItsLastActivationEnds)
{
    Module* module = Compile({"Dim a As Integer"});
    Module* other = Compile({"Dim b As Integer"}, "Other");
    ASSERT_NE(module, nullptr);
    ASSERT_NE(other, nullptr);
    ModuleInstance probe(*other);
    auto* instance = new ModuleInstance(*module);
    instance->AddUse();
    testing::FakeHost host;
    Interpreter interpreter(host);
    host.interpreter = &interpreter;
    InterpreterScope scope(interpreter);
    std::vector<int> seenUses;
    std::vector<bool> seenLive;
    testing::TestProcedure procedure;
    procedure.Add([&] {
        seenUses.push_back(instance->UseCount());
        (void)instance->ReleaseUse();
        instance->Abandon();
        return true;
    });
    procedure.Add([&] {
        seenLive.push_back(probe.Find(*module) == instance);
        return true;
    });
    ASSERT_TRUE(interpreter.RunHostCall(procedure, instance));
    EXPECT_EQ(seenUses, std::vector<int>{2});
    EXPECT_EQ(seenLive, std::vector<bool>{true});
    EXPECT_EQ(probe.Find(*module), nullptr) << "the abandoned instance went with the activation";
}

TEST(TypedSlots, ArrayElementKinds)
{
    EXPECT_EQ(ArrayElementTag(TypeCode(TypeCode::kInteger).WithRank(1).Code()), VT_I2);
    EXPECT_EQ(ArrayElementTag(TypeCode(TypeCode::kVariant).WithRank(2).Code()), VT_VARIANT);
    EXPECT_EQ(ArrayElementTag(TypeCode::FixedString(5).WithRank(1).Code()), VT_BSTR);
    EXPECT_EQ(ArrayElementTag(TypeCode(TypeCode::kUserType).WithRank(1).Code()), VT_RECORD);
}

} // namespace
} // namespace brannoc
