// Dispatch objects over implementation objects: late-bound calls reach the implementation's virtual
// functions in description order (the object first), ANSI classes get ANSI text, the standard DISP_E
// codes for bad calls, errors raised inside methods, and one destroy call at the last Release.
#include "support/MessageBoxCapture.h"
#include "support/TestComObject.h"

#include "brannoc.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using brannoc::test::MessageBoxCapture;

namespace {

const char kCallBack[] = "=CallBack\nDebugPrint CodeUnit*,Text$\nDoEvents CodeUnit*\nNotify CodeUnit*,Type%\n"
                         "ReadMacro$(CodeUnit*,MacroName$)\nWindow&=\n";

// Slots in description order; no virtual destructor, so slot 0 is DebugPrint.
struct CallBackImplementation {
    virtual void __stdcall DebugPrint(IDispatch* unit, BSTR text)
    {
        calls.push_back("DebugPrint");
        self.push_back(this);
        units.push_back(unit);
        texts.push_back(BytesOf(text));
    }
    virtual void __stdcall DoEvents(IDispatch* unit)
    {
        calls.push_back("DoEvents");
        self.push_back(this);
    }
    virtual void __stdcall Notify(IDispatch* unit, short code)
    {
        calls.push_back("Notify");
        self.push_back(this);
        codes.push_back(code);
    }
    virtual BSTR __stdcall ReadMacro(IDispatch* unit, BSTR name)
    {
        calls.push_back("ReadMacro");
        self.push_back(this);
        texts.push_back(BytesOf(name));
        return SysAllocStringByteLen("Sub Main", 8);
    }
    virtual long __stdcall Window()
    {
        calls.push_back("Window");
        self.push_back(this);
        return 4711;
    }

    static std::string BytesOf(BSTR text)
    {
        return text ? std::string(reinterpret_cast<const char*>(text), SysStringByteLen(text)) : std::string("(null)");
    }

    std::vector<std::string> calls;
    std::vector<void*> self;
    std::vector<IDispatch*> units;
    std::vector<std::string> texts;
    std::vector<short> codes;
};

// An object to pass as an argument; it is never called.
class PlainDispatch final : public brannoc::testing::TestDispatch {
public:
    HRESULT __stdcall GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT __stdcall Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override
    {
        return E_NOTIMPL;
    }
};

struct DestroyRecord {
    int count = 0;
    void* implementation = nullptr;
    void* userData = nullptr;
};

void __stdcall RecordDestroy(void* implementation, void* userData)
{
    auto* record = static_cast<DestroyRecord*>(userData);
    ++record->count;
    record->implementation = implementation;
}

VARIANT Text(BSTR text)
{
    VARIANT value;
    value.vt = VT_BSTR;
    value.bstrVal = text;
    return value;
}

VARIANT Object(IDispatch* object)
{
    VARIANT value;
    value.vt = VT_DISPATCH;
    value.pdispVal = object;
    return value;
}

VARIANT Short(short number)
{
    VARIANT value;
    value.vt = VT_I2;
    value.iVal = number;
    return value;
}

DISPID IdOf(IDispatch* object, const wchar_t* name)
{
    LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
    DISPID id = DISPID_UNKNOWN;
    EXPECT_EQ(S_OK, object->GetIDsOfNames(IID_NULL, names, 1, 0x409, &id)) << name;
    return id;
}

// Arguments are given in declaration order and passed last first.
HRESULT Call(IDispatch* object, DISPID id, WORD flags, std::vector<VARIANT> arguments, VARIANT* result = nullptr,
             EXCEPINFO* exception = nullptr)
{
    std::reverse(arguments.begin(), arguments.end());
    DISPPARAMS parameters{arguments.empty() ? nullptr : arguments.data(), nullptr,
                          static_cast<UINT>(arguments.size()), 0};
    UINT argumentError = 0;
    return object->Invoke(id, IID_NULL, 0x409, flags, &parameters, result, exception, &argumentError);
}

class DescribedDispatchTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        type = OA_CreateTypeA(kCallBack);
        ASSERT_NE(nullptr, type);
        dispatch = OA_CreateDispatch(type, RecordDestroy, &implementation, &destroyed);
        ASSERT_NE(nullptr, dispatch);
    }
    void TearDown() override
    {
        if (dispatch)
            dispatch->Release();
        if (type)
            type->Release();
    }

    CallBackImplementation implementation;
    DestroyRecord destroyed;
    ITypeInfo* type = nullptr;
    IDispatch* dispatch = nullptr;
    PlainDispatch unit;
};

} // namespace

TEST_F(DescribedDispatchTest, EachMemberReachesItsSlotWithTheObjectFirstAndAnsiText)
{
    BSTR text = SysAllocString(L"h\u00e9llo");
    EXPECT_EQ(S_OK, Call(dispatch, IdOf(dispatch, L"DebugPrint"), DISPATCH_METHOD, {Object(&unit), Text(text)}));
    EXPECT_EQ(S_OK, Call(dispatch, IdOf(dispatch, L"doevents"), DISPATCH_METHOD, {Object(&unit)}));
    EXPECT_EQ(S_OK, Call(dispatch, IdOf(dispatch, L"Notify"), DISPATCH_METHOD, {Object(&unit), Short(3)}));
    VARIANT result;
    VariantInit(&result);
    BSTR name = SysAllocString(L"Module1");
    EXPECT_EQ(S_OK, Call(dispatch, IdOf(dispatch, L"ReadMacro"), DISPATCH_METHOD, {Object(&unit), Text(name)}, &result));
    EXPECT_EQ(VT_BSTR, result.vt);
    EXPECT_EQ("Sub Main", CallBackImplementation::BytesOf(result.bstrVal));
    VariantClear(&result);
    EXPECT_EQ(S_OK, Call(dispatch, IdOf(dispatch, L"Window"), DISPATCH_PROPERTYGET, {}, &result));
    EXPECT_EQ(VT_I4, result.vt);
    EXPECT_EQ(4711, result.lVal);
    SysFreeString(text);
    SysFreeString(name);

    EXPECT_EQ((std::vector<std::string>{"DebugPrint", "DoEvents", "Notify", "ReadMacro", "Window"}), implementation.calls);
    for (void* self : implementation.self)
        EXPECT_EQ(&implementation, self);
    ASSERT_EQ(1u, implementation.units.size());
    EXPECT_EQ(&unit, implementation.units[0]);
    // String parameters arrive as ANSI bytes in the process code page (é is 0xE9 in code page 1252).
    EXPECT_EQ((std::vector<std::string>{"h\xe9llo", "Module1"}), implementation.texts);
    EXPECT_EQ(std::vector<short>{3}, implementation.codes);
    EXPECT_EQ(&implementation, OA_GetDispatchData(dispatch));
    EXPECT_EQ(nullptr, OA_GetDispatchData(&unit));
}

TEST_F(DescribedDispatchTest, AnsiClassesConvertOtherValuesToText)
{
    VARIANT number;
    number.vt = VT_I4;
    number.lVal = 42;
    EXPECT_EQ(S_OK, Call(dispatch, IdOf(dispatch, L"DebugPrint"), DISPATCH_METHOD, {Object(&unit), number}));
    BSTR text = SysAllocString(L"by reference");
    VARIANT reference;
    reference.vt = VT_BYREF | VT_BSTR;
    reference.pbstrVal = &text;
    EXPECT_EQ(S_OK, Call(dispatch, IdOf(dispatch, L"DebugPrint"), DISPATCH_METHOD, {Object(&unit), reference}));
    SysFreeString(text);
    EXPECT_EQ((std::vector<std::string>{"42", "by reference"}), implementation.texts);
}

TEST_F(DescribedDispatchTest, AStringArgumentThatCannotBeTextNamesItsIndex)
{
    // An object without a value cannot become text: the String argument (index 0, the last) is named.
    PlainDispatch valueless;
    std::vector<VARIANT> arguments = {Object(&unit), Object(&valueless)};
    std::reverse(arguments.begin(), arguments.end());
    DISPPARAMS parameters{arguments.data(), nullptr, 2, 0};
    UINT argumentError = 99;
    EXPECT_EQ(DISP_E_TYPEMISMATCH, dispatch->Invoke(IdOf(dispatch, L"DebugPrint"), IID_NULL, 0x409, DISPATCH_METHOD,
                                                    &parameters, nullptr, nullptr, &argumentError));
    EXPECT_EQ(0u, argumentError);
    EXPECT_TRUE(implementation.calls.empty());
}

TEST_F(DescribedDispatchTest, DispatchErrorCodes)
{
    UINT count = 0;
    EXPECT_EQ(S_OK, dispatch->GetTypeInfoCount(&count));
    EXPECT_EQ(1u, count);
    ITypeInfo* info = nullptr;
    EXPECT_EQ(DISP_E_BADINDEX, dispatch->GetTypeInfo(1, 0x409, &info));
    EXPECT_EQ(S_OK, dispatch->GetTypeInfo(0, 0x409, &info));
    ASSERT_NE(nullptr, info);
    info->Release();
    void* other = nullptr;
    EXPECT_EQ(E_NOINTERFACE, dispatch->QueryInterface(IID_IEnumVARIANT, &other));
    EXPECT_EQ(S_OK, dispatch->QueryInterface(IID_IDispatch, &other));
    static_cast<IUnknown*>(other)->Release();

    LPOLESTR names[] = {const_cast<LPOLESTR>(L"Window")};
    DISPID id = 0;
    EXPECT_EQ(DISP_E_UNKNOWNINTERFACE, dispatch->GetIDsOfNames(IID_IDispatch, names, 1, 0x409, &id));
    DISPPARAMS none{};
    EXPECT_EQ(DISP_E_UNKNOWNINTERFACE,
              dispatch->Invoke(IdOf(dispatch, L"Window"), IID_IDispatch, 0x409, DISPATCH_PROPERTYGET, &none, nullptr, nullptr, nullptr));
    DISPID notify = IdOf(dispatch, L"Notify");
    EXPECT_EQ(DISP_E_BADPARAMCOUNT, Call(dispatch, notify, DISPATCH_METHOD, {Object(&unit)}));
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, Call(dispatch, 12345, DISPATCH_METHOD, {}));
    VARIANT result;
    VariantInit(&result);
    EXPECT_EQ(DISP_E_TYPEMISMATCH, Call(dispatch, notify, DISPATCH_METHOD, {Object(&unit), Short(1)}, &result));
    VARIANT arguments[2] = {Short(1), Object(&unit)};
    DISPID named[1] = {7};
    DISPPARAMS withNamed{arguments, named, 2, 1};
    EXPECT_EQ(DISP_E_NONAMEDARGS, dispatch->Invoke(notify, IID_NULL, 0x409, DISPATCH_METHOD, &withNamed, nullptr, nullptr, nullptr));
    EXPECT_TRUE(implementation.calls.empty());
}

TEST_F(DescribedDispatchTest, LastReleaseCallsDestroyOnce)
{
    dispatch->AddRef();
    EXPECT_EQ(1u, dispatch->Release());
    EXPECT_EQ(0, destroyed.count);
    EXPECT_EQ(0u, dispatch->Release());
    dispatch = nullptr;
    EXPECT_EQ(1, destroyed.count);
    EXPECT_EQ(&implementation, destroyed.implementation);
}

namespace {

// Wine's DispCallFunc passes the object and then the hidden result pointer of a Variant result, while a
// g++ member function returning a VARIANT by value expects them the other way round: implementation
// slots with Variant results take the result pointer as their first declared parameter.
// A wide class with a String property, an Object property, a Variant property and a raising method.
struct PropertyImplementation {
    virtual BSTR __stdcall GetValue() { return SysAllocString(value.c_str()); }
    virtual void __stdcall PutValue(BSTR text) { value = text ? text : L""; }
    virtual IDispatch* __stdcall GetTarget() { return nullptr; }
    virtual void __stdcall SetTarget(IDispatch* object) { target = object; }
    // A Variant result comes back through a pointer passed right after the object (see the note above).
    virtual void __stdcall GetAny(VARIANT* result, short) { VariantCopy(result, &any); }
    virtual void __stdcall PutAny(short, VARIANT value) { VariantCopy(&any, &value); }
    virtual void __stdcall Fail(long code)
    {
        OA_RaiseErrorW(code, L"Source", L"It failed", L"help.hlp", 77);
    }
    virtual void __stdcall Twice(BSTR* text) { SysReAllocString(text, L"written"); }

    std::wstring value = L"start";
    IDispatch* target = nullptr;
    VARIANT any{};
};

} // namespace

TEST(DescribedProperties, GetPutAndPutReferenceShareTheirIds)
{
    ITypeInfo* type = OA_CreateTypeW(L"Value$=NewValue$\nTarget*=Other*\n"
                                     L"3:Any?(Dummy%)=V?\nFail Code&\nTwice ByRef Text$");
    ASSERT_NE(nullptr, type);
    PropertyImplementation implementation;
    IDispatch* dispatch = OA_CreateDispatch(type, nullptr, &implementation, nullptr);
    ASSERT_NE(nullptr, dispatch);
    VARIANT result;
    VariantInit(&result);
    EXPECT_EQ(S_OK, Call(dispatch, DISPID_VALUE, DISPATCH_PROPERTYGET, {}, &result));
    EXPECT_STREQ(L"start", result.bstrVal);
    VariantClear(&result);

    DISPID putId = DISPID_PROPERTYPUT;
    BSTR text = SysAllocString(L"changed");
    VARIANT value = Text(text);
    DISPPARAMS put{&value, &putId, 1, 1};
    EXPECT_EQ(S_OK, dispatch->Invoke(DISPID_VALUE, IID_NULL, 0x409, DISPATCH_PROPERTYPUT, &put, nullptr, nullptr, nullptr));
    EXPECT_EQ(L"changed", implementation.value);
    SysFreeString(text);

    PlainDispatch object;
    value = Object(&object);
    DISPID target = IdOf(dispatch, L"Target");
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND,
              dispatch->Invoke(target, IID_NULL, 0x409, DISPATCH_PROPERTYPUT, &put, nullptr, nullptr, nullptr));
    EXPECT_EQ(S_OK, dispatch->Invoke(target, IID_NULL, 0x409, DISPATCH_PROPERTYPUTREF, &put, nullptr, nullptr, nullptr));
    EXPECT_EQ(&object, implementation.target);

    // The Variant property accepts put and put-reference; its get takes the result by pointer.
    VARIANT anyArguments[2] = {Short(9), Short(1)};
    DISPPARAMS anyPut{anyArguments, &putId, 2, 1};
    EXPECT_EQ(S_OK, dispatch->Invoke(3, IID_NULL, 0x409, DISPATCH_PROPERTYPUT, &anyPut, nullptr, nullptr, nullptr));
    EXPECT_EQ(S_OK, dispatch->Invoke(3, IID_NULL, 0x409, DISPATCH_PROPERTYPUTREF, &anyPut, nullptr, nullptr, nullptr));
    EXPECT_EQ(S_OK, Call(dispatch, 3, DISPATCH_PROPERTYGET, {Short(1)}, &result));
    EXPECT_EQ(VT_I2, result.vt);
    EXPECT_EQ(9, result.iVal);

    // A ByRef String parameter writes into the caller's variable.
    BSTR variable = SysAllocString(L"before");
    VARIANT reference;
    reference.vt = VT_BYREF | VT_BSTR;
    reference.pbstrVal = &variable;
    EXPECT_EQ(S_OK, Call(dispatch, IdOf(dispatch, L"Twice"), DISPATCH_METHOD, {reference}));
    EXPECT_STREQ(L"written", variable);
    SysFreeString(variable);

    dispatch->Release();
    type->Release();
}

TEST(RaiseError, InsideAMethodTheCallerGetsTheException)
{
    ITypeInfo* type = OA_CreateTypeW(L"Value$=NewValue$\nTarget*=Other*\n3:Any?(Dummy%)=V?\nFail Code&");
    PropertyImplementation implementation;
    IDispatch* dispatch = OA_CreateDispatch(type, nullptr, &implementation, nullptr);
    ASSERT_NE(nullptr, dispatch);
    MessageBoxCapture capture;
    EXCEPINFO exception{};
    VARIANT code;
    code.vt = VT_I4;
    code.lVal = 1234;
    EXPECT_EQ(DISP_E_EXCEPTION, Call(dispatch, IdOf(dispatch, L"Fail"), DISPATCH_METHOD, {code}, nullptr, &exception));
    EXPECT_EQ(1234, exception.wCode);
    EXPECT_STREQ(L"Source", exception.bstrSource);
    EXPECT_STREQ(L"It failed", exception.bstrDescription);
    EXPECT_STREQ(L"help.hlp", exception.bstrHelpFile);
    EXPECT_EQ(77u, exception.dwHelpContext);
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
    // Without a record the call still answers the exception.
    EXPECT_EQ(DISP_E_EXCEPTION, Call(dispatch, IdOf(dispatch, L"Fail"), DISPATCH_METHOD, {code}));
    EXPECT_EQ(0u, capture.Count());
    dispatch->Release();
    type->Release();
}

TEST(RaiseError, OutsideAnyMethodTheBoxShowsTheDescription)
{
    MessageBoxCapture capture;
    OA_RaiseErrorA(5, "Src", "Nothing to raise into", nullptr, 0);
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"RaiseError not in object.", capture.Boxes()[0].caption);
    EXPECT_EQ(L"Nothing to raise into", capture.Boxes()[0].text);
}

TEST(RaiseError, PreAndPostInvokeErrorScopeAHostsOwnDispatch)
{
    MessageBoxCapture capture;
    EXCEPINFO outer{};
    EXCEPINFO inner{};
    EXPECT_NE(nullptr, OA_PreInvokeError(&outer));
    EXPECT_NE(nullptr, OA_PreInvokeError(&inner));
    OA_RaiseError2A(static_cast<LONG>(0x80040123), "Inner", "inner failure", "", 0);
    EXPECT_EQ(DISP_E_EXCEPTION, OA_PostInvokeError(S_OK));
    EXPECT_EQ(static_cast<SCODE>(0x80040123), inner.scode);
    EXPECT_STREQ(L"inner failure", inner.bstrDescription);
    // The outer scope saw nothing.
    EXPECT_EQ(S_FALSE, OA_PostInvokeError(S_FALSE));
    EXPECT_EQ(nullptr, outer.bstrDescription);
    EXPECT_EQ(0u, capture.Count());
    SysFreeString(inner.bstrSource);
    SysFreeString(inner.bstrDescription);
}
