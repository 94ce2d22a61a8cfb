#include "values/Operators.h"

#include "values/Conversion.h"
#include "values/DecimalWhole.h"
#include "values/StringCapacity.h"
#include "values/ValueError.h"

#include <array>
#include <cfloat>
#include <float.h>
#include <cwchar>
#include <climits>
#include <cmath>
#include <cstring>
#include <string>

namespace brannoc {

namespace {

constexpr int kTagCount = 18;

// The common-kind table, indexed by left tag times 18 plus right tag.
using KindTable = std::array<VARTYPE, kTagCount * kTagCount>;

KindTable BuildKindTable()
{
    KindTable table{};
    auto isOrdered = [](int tag) { return tag >= VT_I2 && tag <= VT_DATE; };
    for (int left = 0; left < kTagCount; ++left) {
        for (int right = 0; right < kTagCount; ++right) {
            VARTYPE kind = VT_EMPTY;
            if (left == VT_DECIMAL || right == VT_DECIMAL) {
                bool bothNumeric = IsNumericTag(static_cast<VARTYPE>(left)) && IsNumericTag(static_cast<VARTYPE>(right));
                kind = bothNumeric ? VT_DECIMAL : VT_EMPTY;
            } else if (isOrdered(left) && isOrdered(right)) {
                bool longWithSingle = (left == VT_I4 && right == VT_R4) || (left == VT_R4 && right == VT_I4);
                kind = longWithSingle ? static_cast<VARTYPE>(VT_R8) : static_cast<VARTYPE>(left > right ? left : right);
            } else if ((left == VT_BOOL || left == VT_UI1) && isOrdered(right)) {
                kind = static_cast<VARTYPE>(right);
            } else if ((right == VT_BOOL || right == VT_UI1) && isOrdered(left)) {
                kind = static_cast<VARTYPE>(left);
            } else if (left == right && (left == VT_BOOL || left == VT_UI1)) {
                kind = static_cast<VARTYPE>(left);
            } else if ((left == VT_BOOL && right == VT_UI1) || (left == VT_UI1 && right == VT_BOOL)) {
                kind = VT_I2;
            }
            table[left * kTagCount + right] = kind;
        }
    }
    return table;
}

const KindTable s_kindTable = BuildKindTable();

bool IsIntegerKind(VARTYPE kind) { return kind == VT_I2 || kind == VT_I4 || kind == VT_UI1 || kind == VT_BOOL; }

LONGLONG IntegerOf(const Variant& value)
{
    switch (value.Tag()) {
    case VT_I2: return value.Integer();
    case VT_I4: return value.Long();
    case VT_UI1: return value.Byte();
    case VT_BOOL: return value.Boolean();
    default: return 0;
    }
}

double DoubleOf(const Variant& value)
{
    switch (value.Tag()) {
    case VT_R4: return value.Single();
    case VT_R8: return value.Double();
    case VT_DATE: return value.Date();
    default: return static_cast<double>(IntegerOf(value));
    }
}

void StoreInteger(Variant& target, VARTYPE kind, LONGLONG number)
{
    switch (kind) {
    case VT_I2: target.SetInteger(static_cast<SHORT>(number)); break;
    case VT_I4: target.SetLong(static_cast<LONG>(number)); break;
    case VT_UI1: target.SetByte(static_cast<BYTE>(number)); break;
    case VT_BOOL: target.SetBooleanBits(static_cast<VARIANT_BOOL>(number)); break;
    default: target.SetDouble(static_cast<double>(number)); break;
    }
}

bool FitsKind(VARTYPE kind, LONGLONG number)
{
    switch (kind) {
    case VT_UI1: return number >= 0 && number <= 255;
    case VT_I2: case VT_BOOL: return number >= SHRT_MIN && number <= SHRT_MAX;
    case VT_I4: return number >= LONG_MIN && number <= LONG_MAX;
    default: return true;
    }
}

// Leaves the left operand as 0 of kind and passes the failure on.
bool FailWithZero(Variant& left, VARTYPE kind, long number)
{
    Variant zero;
    zero.SetInteger(0);
    if (kind != VT_EMPTY && SUCCEEDED(VariantChangeType(&zero.Raw(), &zero.Raw(), 0, kind)))
        left = std::move(zero);
    else
        left.SetInteger(0);
    return RaiseValueError(number);
}

bool CompareResult(OperationId op, int order, Variant& left)
{
    left.SetBoolean(OrderHolds(op, order));
    return true;
}

template <typename T>
int Order(T a, T b)
{
    return a < b ? -1 : (b < a ? 1 : 0);
}

LONGLONG Logic(OperationId op, LONGLONG a, LONGLONG b)
{
    switch (op) {
    case OperationId::kAnd: return a & b;
    case OperationId::kOr: return a | b;
    case OperationId::kXor: return a ^ b;
    case OperationId::kEqv: return ~(a ^ b);
    case OperationId::kImp: return ~a | b;
    default: return 0;
    }
}

LONGLONG MaskToKind(VARTYPE kind, LONGLONG number)
{
    switch (kind) {
    case VT_UI1: return number & 0xFF;
    case VT_I2: case VT_BOOL: return static_cast<SHORT>(number);
    default: return static_cast<LONG>(number);
    }
}

// Integer, Long, Byte and Boolean (logic and comparison only for Boolean).
bool ComputeInteger(OperationId op, VARTYPE kind, LONGLONG a, LONGLONG b, Variant& left)
{
    if (IsComparison(op))
        return CompareResult(op, Order(a, b), left);
    if (IsLogic(op)) {
        StoreInteger(left, kind, MaskToKind(kind, Logic(op, a, b)));
        return true;
    }
    LONGLONG result = 0;
    switch (op) {
    case OperationId::kAdd: result = a + b; break;
    case OperationId::kSubtract: result = a - b; break;
    case OperationId::kMultiply: result = a * b; break;
    case OperationId::kIntegerDivide:
        if (b == 0)
            return FailWithZero(left, kind, kErrorDivideByZero);
        result = a / b;
        if (kind == VT_I4 && !FitsKind(VT_I4, result))
            return FailWithZero(left, kind, kErrorOverflow);
        break;
    case OperationId::kModulo:
        if (b == 0)
            return FailWithZero(left, kind, kErrorDivideByZero);
        result = a % b;
        break;
    default:
        return FailWithZero(left, kind, kErrorTypeMismatch);
    }
    // Leaving the kind's range climbs Byte -> Integer -> Long -> Double.
    VARTYPE resultKind = kind;
    while (!FitsKind(resultKind, result))
        resultKind = resultKind == VT_UI1 ? VT_I2 : resultKind == VT_I2 ? VT_I4 : VT_R8;
    StoreInteger(left, resultKind, result);
    return true;
}

// Status bits that _clearfp answers (the C runtime's values; the headers here do not define them).
constexpr unsigned kStatusInexact = 0x01;
constexpr unsigned kStatusUnderflow = 0x02;
constexpr unsigned kStatusOverflow = 0x04;
constexpr unsigned kStatusZeroDivide = 0x08;
constexpr unsigned kStatusInvalid = 0x10;
constexpr unsigned kStatusDenormal = 0x80000;

// Reads and clears the floating-point status; raises the matching error for a set flag.
bool CheckFloatStatus(unsigned status, Variant& left, VARTYPE kind)
{
    status &= ~kStatusInexact;
    if (status == 0)
        return true;
    long number = kErrorFloatInvalid;
    if (status & kStatusInvalid)
        number = kErrorFloatInvalid;
    else if (status & kStatusZeroDivide)
        number = kErrorDivideByZero;
    else if (status & kStatusOverflow)
        number = kErrorOverflow;
    else if (status & kStatusUnderflow)
        number = kErrorUnderflow;
    else if (status == kStatusDenormal)
        return true;
    return FailWithZero(left, kind, number);
}

bool ComputeFloat(OperationId op, VARTYPE kind, double a, double b, Variant& left)
{
    if (IsComparison(op)) {
        if (kind == VT_R4)
            return CompareResult(op, Order(static_cast<float>(a), static_cast<float>(b)), left);
        return CompareResult(op, Order(a, b), left);
    }
    _clearfp();
    volatile double result = 0;
    switch (op) {
    case OperationId::kAdd: result = a + b; break;
    case OperationId::kSubtract: result = a - b; break;
    case OperationId::kMultiply: result = a * b; break;
    case OperationId::kDivide: result = a / b; break;
    case OperationId::kPower: result = std::pow(a, b); break;
    default: return FailWithZero(left, kind, kErrorTypeMismatch);
    }
    double value = result;
    unsigned status = _clearfp();
    if (kind == VT_R4 && std::isfinite(value) && std::fabs(value) > FLT_MAX) {
        // A Single that leaves its range is recomputed as Double.
        left.SetDouble(value);
        return true;
    }
    if (!CheckFloatStatus(status, left, kind))
        return false;
    if (op == OperationId::kDivide && std::isnan(value))
        return FailWithZero(left, kind, kErrorFloatInvalid);
    if (kind == VT_R4) {
        _clearfp();
        volatile float narrow = static_cast<float>(value);
        if (!CheckFloatStatus(_clearfp(), left, kind))
            return false;
        left.SetSingle(narrow);
    } else if (kind == VT_DATE) {
        left.SetDate(value);
    } else {
        left.SetDouble(value);
    }
    return true;
}

// 64 x 64 -> 128-bit unsigned product as (high, low).
void Multiply128(ULONGLONG a, ULONGLONG b, ULONGLONG& high, ULONGLONG& low)
{
    ULONGLONG aLow = a & 0xFFFFFFFFu, aHigh = a >> 32, bLow = b & 0xFFFFFFFFu, bHigh = b >> 32;
    ULONGLONG lowLow = aLow * bLow, lowHigh = aLow * bHigh, highLow = aHigh * bLow, highHigh = aHigh * bHigh;
    ULONGLONG middle = (lowLow >> 32) + (lowHigh & 0xFFFFFFFFu) + (highLow & 0xFFFFFFFFu);
    low = (lowLow & 0xFFFFFFFFu) | (middle << 32);
    high = highHigh + (lowHigh >> 32) + (highLow >> 32) + (middle >> 32);
}

// (high, low) / divisor, truncated; false when the quotient needs more than 64 bits.
bool Divide128(ULONGLONG high, ULONGLONG low, ULONGLONG divisor, ULONGLONG& quotient)
{
    if (high >= divisor)
        return false;
    ULONGLONG remainder = high;
    quotient = 0;
    for (int bit = 63; bit >= 0; --bit) {
        bool carry = (remainder >> 63) != 0;
        remainder = (remainder << 1) | ((low >> bit) & 1u);
        quotient <<= 1;
        if (carry || remainder >= divisor) {
            remainder -= divisor;
            quotient |= 1u;
        }
    }
    return true;
}

ULONGLONG Magnitude(LONGLONG value) { return value < 0 ? 0 - static_cast<ULONGLONG>(value) : value; }

bool SignedFromMagnitude(ULONGLONG magnitude, bool negative, LONGLONG& result)
{
    if (magnitude > static_cast<ULONGLONG>(LLONG_MAX) + (negative ? 1u : 0u))
        return RaiseValueError(kErrorOverflow);
    result = negative ? static_cast<LONGLONG>(0 - magnitude) : static_cast<LONGLONG>(magnitude);
    return true;
}

constexpr ULONGLONG kCurrencyScale = 10000;

bool ComputeCurrency(OperationId op, LONGLONG a, LONGLONG b, Variant& left)
{
    if (IsComparison(op))
        return CompareResult(op, Order(a, b), left);
    LONGLONG result = 0;
    bool ok = true;
    switch (op) {
    case OperationId::kAdd: ok = !__builtin_add_overflow(a, b, &result) || RaiseValueError(kErrorOverflow); break;
    case OperationId::kSubtract:
        ok = !__builtin_sub_overflow(a, b, &result) || RaiseValueError(kErrorOverflow);
        break;
    case OperationId::kMultiply: ok = CurrencyMultiply(a, b, result); break;
    case OperationId::kDivide: ok = CurrencyDivide(a, b, result); break;
    default: ok = RaiseValueError(kErrorTypeMismatch); break;
    }
    if (!ok) {
        left.SetCurrencyUnits(0);
        return false;
    }
    left.SetCurrencyUnits(result);
    return true;
}

bool RaiseForDecimalStatus(HRESULT status)
{
    if (status == DISP_E_OVERFLOW)
        return RaiseValueError(kErrorOverflow);
    if (status == DISP_E_DIVBYZERO)
        return RaiseValueError(kErrorDivideByZero);
    return RaiseValueError(kErrorTypeMismatch);
}

bool ComputeDecimal(OperationId op, const Variant& a, const Variant& b, Variant& left)
{
    DECIMAL x = a.Decimal(), y = b.Decimal(), out{};
    if (IsComparison(op)) {
        HRESULT order = VarDecCmp(&x, &y);
        return CompareResult(op, order == VARCMP_LT ? -1 : order == VARCMP_GT ? 1 : 0, left);
    }
    HRESULT status = E_FAIL;
    switch (op) {
    case OperationId::kAdd: status = VarDecAdd(&x, &y, &out); break;
    case OperationId::kSubtract: status = VarDecSub(&x, &y, &out); break;
    case OperationId::kMultiply: status = VarDecMul(&x, &y, &out); break;
    case OperationId::kDivide:
        if (!y.Hi32 && !y.Lo64) {
            status = DISP_E_DIVBYZERO;
            break;
        }
        status = VarDecDiv(&x, &y, &out);
        break;
    default: status = DISP_E_TYPEMISMATCH; break;
    }
    if (FAILED(status)) {
        DECIMAL zero{};
        left.SetDecimal(zero);
        return RaiseForDecimalStatus(status);
    }
    left.SetDecimal(out);
    return true;
}

// Both operands are numbers; choose the kind and compute.
bool NumericOperation(OperationId op, Variant& left, Variant right)
{
    VARTYPE kind = OperationKind(op, left.Tag(), right.Tag());
    if (kind == VT_EMPTY)
        return FailWithZero(left, VT_EMPTY, kErrorTypeMismatch);
    if (!ChangeType(left, kind) || !ChangeType(right, kind))
        return false;
    if (IsIntegerKind(kind))
        return ComputeInteger(op, kind, IntegerOf(left), IntegerOf(right), left);
    switch (kind) {
    case VT_R4: case VT_R8: case VT_DATE: return ComputeFloat(op, kind, DoubleOf(left), DoubleOf(right), left);
    case VT_CY: return ComputeCurrency(op, left.Currency().int64, right.Currency().int64, left);
    case VT_DECIMAL: return ComputeDecimal(op, left, right, left);
    default: return FailWithZero(left, kind, kErrorTypeMismatch);
    }
}

namespace {

// Two strings joined byte for byte, for when either is a byte string of odd length.
bool ConcatenateBytes(Variant& left, BSTR tail)
{
    const BSTR head = left.String();
    const UINT headBytes = SysStringByteLen(head);
    const UINT tailBytes = SysStringByteLen(tail);
    if (tailBytes > 0x7FFFFFF0u - headBytes)
        return RaiseValueError(kErrorOutOfMemory);
    BSTR joined = SysAllocStringByteLen(nullptr, headBytes + tailBytes);
    if (!joined)
        return RaiseValueError(kErrorOutOfMemory);
    if (headBytes)
        std::memcpy(joined, head, headBytes);
    if (tailBytes)
        std::memcpy(reinterpret_cast<char*>(joined) + headBytes, tail, tailBytes);
    left.SetString(joined);
    return true;
}

} // namespace

// left & right, with Null read as the empty string. The result is appended to the left string in place
// when it has spare room, so a string built up by repeated & is not copied each time.
bool Concatenate(Variant& left, const Variant& right)
{
    Bstr rightText;
    BSTR tailString = nullptr;
    const VARIANT& rightEnd = *FollowByRefChain(&right.Raw());
    if (rightEnd.vt == VT_BSTR) {
        tailString = rightEnd.bstrVal;
    } else if (rightEnd.vt != VT_NULL) {
        if (!ToText(right, TextMode::kNullAsEmpty, rightText))
            return false;
        tailString = rightText.Get();
    }
    if (left.Tag() != VT_BSTR) {
        Bstr leftText;
        if (!ToText(left, TextMode::kNullAsEmpty, leftText))
            return false;
        left.SetString(std::move(leftText));
    }
    std::wstring_view head;
    std::wstring_view tail;
    if (!WholeCharacters(left.String(), head) || !WholeCharacters(tailString, tail))
        return ConcatenateBytes(left, tailString);
    return AppendToString(left, tail);
}

bool CompareWithStrings(OperationId op, Variant& left, Variant right)
{
    if (left.Tag() == VT_BSTR && right.Tag() == VT_BSTR) {
        std::wstring_view a = left.StringView(), b = right.StringView();
        int order = a.compare(b); // by UTF-16 code unit
        return CompareResult(op, order < 0 ? -1 : order > 0 ? 1 : 0, left);
    }
    // Every number is less than every string.
    bool leftIsString = left.Tag() == VT_BSTR;
    if (!ToNumber(leftIsString ? right : left)) {
        left.SetBoolean(false);
        return false;
    }
    return CompareResult(op, leftIsString ? 1 : -1, left);
}

// And, Or and Imp with one Null operand (three-valued logic).
bool LogicWithNull(OperationId op, Variant& left, const Variant& right)
{
    bool nullOnLeft = left.Tag() == VT_NULL;
    Variant other(nullOnLeft ? right : left);
    VARTYPE otherKind = other.Tag();
    if (!ChangeType(other, VT_I4))
        return false;
    LONG x = other.Long();
    if (op == OperationId::kImp && !nullOnLeft)
        x = ~x;
    bool isNull = op == OperationId::kAnd ? x != 0 : x == 0;
    if (isNull) {
        left.SetNull();
        return true;
    }
    VARTYPE resultKind = (otherKind == VT_BOOL || otherKind == VT_I2) ? otherKind : static_cast<VARTYPE>(VT_I4);
    StoreInteger(left, resultKind, MaskToKind(resultKind, op == OperationId::kAnd ? 0 : x));
    return true;
}

bool LikeOperation(Variant& left, Variant right)
{
    if (!ChangeType(left, VT_BSTR) || !ChangeType(right, VT_BSTR))
        return false;
    auto toAnsi = [](std::wstring_view text) {
        std::string out;
        int bytes = WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr,
                                        nullptr);
        if (bytes > 0) {
            out.resize(static_cast<size_t>(bytes));
            WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), out.data(), bytes, nullptr,
                                nullptr);
        }
        return out;
    };
    bool matched = false;
    bool ok = MatchLike(toAnsi(left.StringView()), toAnsi(right.StringView()), matched);
    left.SetBoolean(ok && matched);
    return ok;
}

// Matches text from t against pattern from p; error is set for a malformed list.
bool MatchFrom(std::string_view text, size_t t, std::string_view pattern, size_t p, bool& error)
{
    while (p < pattern.size()) {
        char c = pattern[p];
        if (c == '*') {
            while (p < pattern.size() && pattern[p] == '*')
                ++p;
            if (p == pattern.size())
                return true;
            for (size_t start = t; start <= text.size(); ++start) {
                if (MatchFrom(text, start, pattern, p, error))
                    return true;
                if (error)
                    return false;
            }
            return false;
        }
        if (t == text.size())
            break;
        if (c == '[') {
            size_t close = pattern.find(']', p + 1);
            if (close == std::string_view::npos) {
                error = true;
                return false;
            }
            std::string_view list = pattern.substr(p + 1, close - p - 1);
            p = close + 1;
            if (list.empty())
                continue; // an empty list consumes no character
            bool negate = list.front() == '!';
            if (negate)
                list.remove_prefix(1);
            unsigned char ch = static_cast<unsigned char>(text[t]);
            bool inList = false;
            for (size_t i = 0; i < list.size(); ++i) {
                unsigned char low = static_cast<unsigned char>(list[i]);
                if (i + 2 < list.size() + 0 && list[i + 1] == '-' && i + 2 < list.size()) {
                    unsigned char high = static_cast<unsigned char>(list[i + 2]);
                    if (high < low) {
                        error = true;
                        return false;
                    }
                    inList = inList || (ch >= low && ch <= high);
                    i += 2;
                } else {
                    inList = inList || ch == low;
                }
            }
            if (inList == negate)
                return false;
            ++t;
            continue;
        }
        if (c == '?' || (c == '#' && text[t] >= '0' && text[t] <= '9') || (c != '#' && c == text[t])) {
            ++p;
            ++t;
            continue;
        }
        return false;
    }
    if (t < text.size())
        return false;
    // At the end of the text only "*" may remain.
    for (; p < pattern.size(); ++p)
        if (pattern[p] != '*')
            return false;
    return true;
}

} // namespace

VARTYPE CommonKind(VARTYPE left, VARTYPE right)
{
    if (left >= kTagCount || right >= kTagCount)
        return VT_EMPTY;
    return s_kindTable[left * kTagCount + right];
}

VARTYPE OperationKind(OperationId op, VARTYPE left, VARTYPE right)
{
    if (op == OperationId::kPower)
        return VT_R8;
    VARTYPE kind = CommonKind(left, right);
    if (kind == VT_EMPTY)
        return kind;
    // Booleans take part in arithmetic as Integers; / divides Integers into a Double.
    if (kind == VT_BOOL)
        return IsComparison(op) || IsLogic(op) ? VT_BOOL : op == OperationId::kDivide ? VT_R8 : VT_I2;
    if (IsLogic(op))
        return kind == VT_I2 || kind == VT_I4 || kind == VT_UI1 ? kind : static_cast<VARTYPE>(VT_I4);
    switch (op) {
    case OperationId::kMultiply:
        if (kind == VT_DATE)
            return VT_R8;
        if (kind == VT_CY && (left == VT_R4 || left == VT_R8 || right == VT_R4 || right == VT_R8))
            return VT_R8;
        return kind;
    case OperationId::kDivide: return kind == VT_DECIMAL ? VT_DECIMAL : VT_R8;
    case OperationId::kIntegerDivide:
    case OperationId::kModulo: return kind == VT_I2 || kind == VT_UI1 ? kind : static_cast<VARTYPE>(VT_I4);
    case OperationId::kSubtract: return left == VT_DATE && right == VT_DATE ? static_cast<VARTYPE>(VT_R8) : kind;
    default: return kind;
    }
}

bool AlignStaticKinds(OperationId op, Variant& left, StaticKind leftKind, Variant& right, StaticKind rightKind)
{
    if (op == OperationId::kConcatenate || (leftKind == StaticKind::kVariant && rightKind == StaticKind::kVariant))
        return true;
    if (IsNull(left) || IsNull(right))
        return true;
    Variant& converted = leftKind == StaticKind::kVariant ? left : right;
    const Variant& other = leftKind == StaticKind::kVariant ? right : left;
    if (FollowByRefChain(&other.Raw())->vt == VT_BSTR)
        return ChangeType(converted, VT_BSTR);
    return ToNumber(converted);
}

bool BinaryOperation(OperationId op, Variant& left, const Variant& right)
{
    // A plain right operand of & is read where it is, so appending a string costs no copy of it.
    if (op == OperationId::kConcatenate && right.Tag() != VT_DISPATCH && !right.IsByRef()) {
        if (!Resolve(left))
            return false;
        if (left.Tag() == VT_NULL && right.Tag() == VT_NULL)
            return true;
        return Concatenate(left, right);
    }
    Variant rightValue(right);
    if (!Resolve(left) || !Resolve(rightValue))
        return false;
    bool leftNull = left.Tag() == VT_NULL, rightNull = rightValue.Tag() == VT_NULL;
    if (leftNull && rightNull)
        return true; // the left operand is already Null
    if (op == OperationId::kConcatenate)
        return Concatenate(left, rightValue);
    if (op == OperationId::kAdd) {
        if (leftNull || rightNull) {
            left.SetNull();
            return true;
        }
        if (left.Tag() == VT_BSTR && rightValue.Tag() == VT_BSTR)
            return Concatenate(left, rightValue);
    } else if (IsComparison(op)) {
        if (leftNull || rightNull) {
            left.SetNull();
            return true;
        }
        if (left.Tag() == VT_ERROR && rightValue.Tag() == VT_ERROR)
            return CompareResult(op, Order(left.Error(), rightValue.Error()), left);
        if (left.Tag() == VT_BSTR || rightValue.Tag() == VT_BSTR)
            return CompareWithStrings(op, left, std::move(rightValue));
    } else if ((op == OperationId::kAnd || op == OperationId::kOr || op == OperationId::kImp) &&
               (leftNull || rightNull)) {
        return LogicWithNull(op, left, rightValue);
    } else if (op == OperationId::kLike) {
        if (leftNull || rightNull) {
            left.SetNull();
            return true;
        }
        return LikeOperation(left, std::move(rightValue));
    } else if (op == OperationId::kIs) {
        bool same = left.Tag() == VT_DISPATCH && rightValue.Tag() == VT_DISPATCH && left.Object() == rightValue.Object();
        left.SetBoolean(same);
        return true;
    }
    if (leftNull || rightNull) {
        left.SetNull();
        return true;
    }
    if (!ToNumber(left) || !ToNumber(rightValue))
        return false;
    return NumericOperation(op, left, std::move(rightValue));
}

namespace {

bool Negate(Variant& value)
{
    switch (value.Tag()) {
    case VT_BOOL: value.SetInteger(value.Boolean()); break;
    case VT_UI1: value.SetInteger(value.Byte()); break;
    default: break;
    }
    switch (value.Tag()) {
    case VT_I2:
        if (value.Integer() == SHRT_MIN)
            value.SetLong(-static_cast<LONG>(SHRT_MIN));
        else
            value.SetInteger(static_cast<SHORT>(-value.Integer()));
        return true;
    case VT_I4:
        if (value.Long() == LONG_MIN)
            value.SetDouble(-static_cast<double>(LONG_MIN));
        else
            value.SetLong(-value.Long());
        return true;
    case VT_R4: value.SetSingle(-value.Single()); return true;
    case VT_R8: value.SetDouble(-value.Double()); return true;
    case VT_DATE: value.SetDate(-value.Date()); return true;
    case VT_CY:
        if (value.Currency().int64 == LLONG_MIN) {
            value.SetCurrencyUnits(0);
            return RaiseValueError(kErrorOverflow);
        }
        value.SetCurrencyUnits(-value.Currency().int64);
        return true;
    case VT_DECIMAL: {
        DECIMAL d = value.Decimal();
        d.sign ^= DECIMAL_NEG;
        value.SetDecimal(d);
        return true;
    }
    default: return RaiseValueError(kErrorTypeMismatch);
    }
}

bool Truncate(OperationId op, Variant& value)
{
    bool toFloor = op == OperationId::kInt;
    auto round = [toFloor](double x) { return toFloor ? std::floor(x) : std::trunc(x); };
    switch (value.Tag()) {
    case VT_I2: case VT_I4: case VT_UI1: case VT_BOOL: return true;
    case VT_R4: value.SetSingle(static_cast<float>(round(value.Single()))); return true;
    case VT_R8: value.SetDouble(round(value.Double())); return true;
    case VT_DATE: value.SetDate(round(value.Date())); return true;
    case VT_CY: {
        LONGLONG units = value.Currency().int64;
        LONGLONG whole = units / static_cast<LONGLONG>(kCurrencyScale) * static_cast<LONGLONG>(kCurrencyScale);
        if (toFloor && whole > units)
            whole -= kCurrencyScale;
        value.SetCurrencyUnits(whole);
        return true;
    }
    case VT_DECIMAL:
        // Exactly on the magnitude: the platform's routines may go through a Double and lose digits.
        value.SetDecimal(DecimalWholePart(value.Decimal(), toFloor));
        return true;
    default: return RaiseValueError(kErrorTypeMismatch);
    }
}

} // namespace

bool UnaryOperation(OperationId op, Variant& value)
{
    if (!Resolve(value))
        return false;
    if (value.Tag() == VT_NULL)
        return true;
    if (!ToNumber(value))
        return false;
    switch (op) {
    case OperationId::kNegate: return Negate(value);
    case OperationId::kNot:
        switch (value.Tag()) {
        case VT_I2: value.SetInteger(static_cast<SHORT>(~value.Integer())); return true;
        case VT_I4: value.SetLong(~value.Long()); return true;
        case VT_BOOL: value.SetBooleanBits(static_cast<VARIANT_BOOL>(~value.Boolean())); return true;
        case VT_UI1: value.SetByte(static_cast<BYTE>(~value.Byte())); return true;
        default:
            if (!ChangeType(value, VT_I4))
                return false;
            value.SetLong(~value.Long());
            return true;
        }
    case OperationId::kAbs:
        if (value.Tag() == VT_BOOL)
            value.SetInteger(value.Boolean());
        return !IsNegative(value) || Negate(value);
    case OperationId::kFix:
    case OperationId::kInt: return Truncate(op, value);
    default: return RaiseValueError(kErrorTypeMismatch);
    }
}

bool MatchLike(std::string_view text, std::string_view pattern, bool& matched)
{
    bool error = false;
    matched = MatchFrom(text, 0, pattern, 0, error);
    if (error) {
        matched = false;
        return RaiseValueError(kErrorInvalidArgument);
    }
    return true;
}

bool CurrencyMultiply(LONGLONG left, LONGLONG right, LONGLONG& result)
{
    ULONGLONG high = 0, low = 0, quotient = 0;
    Multiply128(Magnitude(left), Magnitude(right), high, low);
    if (!Divide128(high, low, kCurrencyScale, quotient))
        return RaiseValueError(kErrorOverflow);
    return SignedFromMagnitude(quotient, (left < 0) != (right < 0), result);
}

bool CurrencyDivide(LONGLONG left, LONGLONG right, LONGLONG& result)
{
    if (right == 0)
        return RaiseValueError(kErrorDivideByZero);
    ULONGLONG high = 0, low = 0, quotient = 0;
    Multiply128(Magnitude(left), kCurrencyScale, high, low);
    if (!Divide128(high, low, Magnitude(right), quotient))
        return RaiseValueError(kErrorOverflow);
    return SignedFromMagnitude(quotient, (left < 0) != (right < 0), result);
}

} // namespace brannoc
