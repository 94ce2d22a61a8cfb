// The inline fast paths of the Integer, Long, Double and Boolean operations must give exactly what the
// generic operator routines give: the same kind, the same bits and the same error. Every operator is
// swept over operand pairs at and around the limits of each kind.
#include "values/NumericCells.h"
#include "values/Operators.h"

#include "RaiseRecorder.h"
#include "ValueMaker.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cstring>
#include <string>
#include <vector>

namespace brannoc {
namespace {

using namespace test;
using Op = OperationId;

std::vector<Variant> Operands()
{
    std::vector<Variant> values;
    for (SHORT v : {SHORT(SHRT_MIN), SHORT(SHRT_MIN + 1), SHORT(-300), SHORT(-7), SHORT(-2), SHORT(-1), SHORT(0),
                    SHORT(1), SHORT(2), SHORT(3), SHORT(7), SHORT(181), SHORT(182), SHORT(300), SHORT(SHRT_MAX - 1),
                    SHORT(SHRT_MAX)})
        values.push_back(MakeInteger(v));
    for (LONG v : {LONG(LONG_MIN), LONG(LONG_MIN + 1), -65536L, -46341L, -7L, -2L, -1L, 0L, 1L, 2L, 7L, 32767L, 32768L,
                   46340L, 46341L, 65536L, 1000003L, LONG(LONG_MAX - 1), LONG(LONG_MAX)})
        values.push_back(MakeLong(v));
    for (double v : {-DBL_MAX, -1e300, -2.5, -1.0, -0.5, -0.0, 0.0, 1e-300, 2.2250738585072014e-308, 0.5, 1.0, 2.5, 3.0,
                     7.0, 1e300, DBL_MAX})
        values.push_back(MakeDouble(v));
    values.push_back(MakeBoolean(true));
    values.push_back(MakeBoolean(false));
    return values;
}

std::string Describe(const Variant& value)
{
    switch (value.Tag()) {
    case VT_I2: return "Integer " + std::to_string(value.Integer());
    case VT_I4: return "Long " + std::to_string(value.Long());
    case VT_R8: return "Double " + std::to_string(value.Double());
    case VT_BOOL: return std::string("Boolean ") + (value.Boolean() ? "True" : "False");
    default: return "tag " + std::to_string(value.Tag());
    }
}

// The tag and the payload bits that the kind uses.
bool SameValue(const Variant& a, const Variant& b)
{
    if (a.Tag() != b.Tag())
        return false;
    switch (a.Tag()) {
    case VT_I2: return a.Integer() == b.Integer();
    case VT_I4: return a.Long() == b.Long();
    case VT_R8: return std::memcmp(&a.Raw().dblVal, &b.Raw().dblVal, sizeof(double)) == 0;
    case VT_BOOL: return a.Boolean() == b.Boolean();
    default: return true;
    }
}

const Op kBinary[] = {Op::kPower, Op::kMultiply, Op::kDivide, Op::kIntegerDivide, Op::kModulo, Op::kAdd,
                      Op::kSubtract, Op::kEqual, Op::kNotEqual, Op::kLess, Op::kLessEqual, Op::kGreater,
                      Op::kGreaterEqual, Op::kAnd, Op::kOr, Op::kXor, Op::kEqv, Op::kImp};

TEST(NumericCells, BinaryFastPathsEqualTheGenericRoutines)
{
    RaiseRecorder raised;
    const std::vector<Variant> operands = Operands();
    int fastTaken = 0;
    for (Op op : kBinary) {
        for (const Variant& left : operands) {
            for (const Variant& right : operands) {
                Variant generic(left);
                raised.Reset();
                const bool genericOk = BinaryOperation(op, generic, right);
                const long genericError = raised.Last();

                Variant fast(left);
                raised.Reset();
                if (TryFastBinary(op, fast.Raw(), right.Raw()))
                    ++fastTaken;
                else
                    EXPECT_TRUE(SameValue(fast, left)) << "a declined fast path changed its operand";
                Variant applied(left);
                const bool appliedOk = ApplyBinary(op, applied, right);
                const long appliedError = raised.Last();

                const std::string what = Describe(left) + " op " + std::to_string(static_cast<int>(op)) + " " +
                                         Describe(right);
                EXPECT_EQ(appliedOk, genericOk) << what;
                EXPECT_EQ(appliedError, genericError) << what;
                EXPECT_TRUE(SameValue(applied, generic))
                    << what << ": generic " << Describe(generic) << ", applied " << Describe(applied);
            }
        }
    }
    // The sweep is meant to exercise the fast paths, not only the fallback.
    EXPECT_GT(fastTaken, 10000);
}

TEST(NumericCells, UnaryFastPathsEqualTheGenericRoutines)
{
    RaiseRecorder raised;
    for (Op op : {Op::kNegate, Op::kNot, Op::kAbs, Op::kFix, Op::kInt}) {
        for (const Variant& value : Operands()) {
            Variant generic(value);
            raised.Reset();
            const bool genericOk = UnaryOperation(op, generic);
            const long genericError = raised.Last();
            Variant applied(value);
            raised.Reset();
            const bool appliedOk = ApplyUnary(op, applied);
            const std::string what = "op " + std::to_string(static_cast<int>(op)) + " " + Describe(value);
            EXPECT_EQ(appliedOk, genericOk) << what;
            EXPECT_EQ(raised.Last(), genericError) << what;
            EXPECT_TRUE(SameValue(applied, generic))
                << what << ": generic " << Describe(generic) << ", applied " << Describe(applied);
        }
    }
}

// The promotions that the fast paths leave to the generic routines, spelled out.
TEST(NumericCells, OverflowClimbsOrRaises)
{
    RaiseRecorder raised;
    Variant a = MakeInteger(SHRT_MAX);
    ASSERT_TRUE(ApplyBinary(Op::kAdd, a, MakeInteger(1)));
    EXPECT_EQ(a.Tag(), VT_I4);
    EXPECT_EQ(a.Long(), 32768);

    Variant b = MakeLong(LONG_MAX);
    ASSERT_TRUE(ApplyBinary(Op::kAdd, b, MakeInteger(1)));
    EXPECT_EQ(b.Tag(), VT_R8);
    EXPECT_EQ(b.Double(), 2147483648.0);

    Variant c = MakeInteger(SHRT_MIN);
    ASSERT_TRUE(ApplyBinary(Op::kIntegerDivide, c, MakeInteger(-1)));
    EXPECT_EQ(c.Tag(), VT_I4);
    EXPECT_EQ(c.Long(), 32768);

    Variant d = MakeLong(LONG_MIN);
    EXPECT_FALSE(ApplyBinary(Op::kIntegerDivide, d, MakeLong(-1)));
    EXPECT_EQ(raised.Last(), 10062);

    Variant e = MakeLong(5);
    EXPECT_FALSE(ApplyBinary(Op::kModulo, e, MakeLong(0)));
    EXPECT_EQ(raised.Last(), 10061);

    Variant f = MakeDouble(DBL_MAX);
    EXPECT_FALSE(ApplyBinary(Op::kMultiply, f, MakeDouble(2)));
    EXPECT_EQ(raised.Last(), 10062);

    Variant g = MakeDouble(1e-300);
    EXPECT_FALSE(ApplyBinary(Op::kMultiply, g, MakeDouble(1e-300)));
    EXPECT_EQ(raised.Last(), 10063);

    Variant h = MakeLong(LONG_MIN);
    ASSERT_TRUE(ApplyUnary(Op::kNegate, h));
    EXPECT_EQ(h.Tag(), VT_R8);
    EXPECT_EQ(h.Double(), 2147483648.0);
}

} // namespace
} // namespace brannoc
