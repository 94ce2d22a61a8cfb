// Form modules: the host reads the header (ParseMacroProperties), makes an object for each new instance
// (NewMacroInstance) and may add extensions specific to the module meanwhile; the instance answers the
// host object's members that the module does not have. Instances are also named "*NewInstance" and
// their number in hexadecimal.
#include "brannoc.h"
#include "host/CodeUnit.h"
#include "host/FakeCallBack.h"
#include "host/FakeEventSource.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <string>
#include <vector>

using namespace brannoc;
using brannoc::testing::FakeCallBack;
using brannoc::testing::FakeEventSource;
using brannoc::testing::TestDispatch;

namespace {

const wchar_t kForm[] = L"VERSION 5.00\r\n"
                        L"Begin VB.Form Panel\r\n"
                        L"   Caption = \"Panel\"\r\n"
                        L"End\r\n"
                        L"Attribute VB_Name = \"Panel\"\r\n"
                        L"Public Clicks As Long\r\n"
                        L"Private Sub Form_Initialize()\r\n"
                        L"    Clicks = 3\r\n"
                        L"End Sub\r\n";

// The host's object for a form instance: one property, Title, answering 42.
class FormObject final : public TestDispatch {
public:
    // The locales of every name look-up and call, in order.
    std::vector<LCID> locales;
    HRESULT __stdcall GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override
    {
        locales.push_back(locale);
        if (count != 1 || std::wstring(names[0]) != L"Title")
            return DISP_E_UNKNOWNNAME;
        ids[0] = 7;
        return S_OK;
    }
    HRESULT __stdcall Invoke(DISPID id, REFIID, LCID locale, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*, UINT*) override
    {
        locales.push_back(locale);
        if (id != 7 || !result)
            return DISP_E_MEMBERNOTFOUND;
        VariantInit(result);
        result->vt = VT_I4;
        result->lVal = 42;
        return S_OK;
    }
};

// The test host: the ordinary members through a FakeCallBack, and the two form members recorded.
class FormHost final : public TestDispatch {
public:
    enum : DISPID { kParse = 100, kNewInstance = 101 };
    FakeCallBack base;
    bool acceptHeader = true;
    IDispatch* instanceObject = nullptr;
    std::vector<std::wstring> parsed;  // "name|properties"
    std::vector<std::wstring> instances;
    // Called inside NewMacroInstance with the engine object.
    void (*duringNewInstance)(FormHost&, _CodeUnit*) = nullptr;
    std::vector<bool> extensionAnswers;
    IDispatch* eventSource = nullptr;

    HRESULT __stdcall GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override
    {
        const std::wstring name = count == 1 ? names[0] : L"";
        if (name == L"ParseMacroProperties")
            return ids[0] = kParse, S_OK;
        if (name == L"NewMacroInstance")
            return ids[0] = kNewInstance, S_OK;
        return base.GetIDsOfNames(iid, names, count, locale, ids);
    }
    HRESULT __stdcall Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                             EXCEPINFO* exception, UINT* argumentError) override
    {
        const auto text = [](const VARIANT& value) { return std::wstring(value.bstrVal, SysStringLen(value.bstrVal)); };
        if (id == kParse) {
            parsed.push_back(text(parameters->rgvarg[1]) + L"|" + text(parameters->rgvarg[0]));
            VariantInit(result);
            result->vt = VT_BOOL;
            result->boolVal = acceptHeader ? VARIANT_TRUE : VARIANT_FALSE;
            return S_OK;
        }
        if (id == kNewInstance) {
            instances.push_back(text(parameters->rgvarg[0]));
            if (duringNewInstance) {
                _CodeUnit* engine = nullptr;
                parameters->rgvarg[1].pdispVal->QueryInterface(IID__CodeUnit, reinterpret_cast<void**>(&engine));
                duringNewInstance(*this, engine);
                engine->Release();
            }
            VariantInit(result);
            result->vt = VT_DISPATCH;
            result->pdispVal = instanceObject;
            if (instanceObject)
                instanceObject->AddRef();
            return S_OK;
        }
        return base.Invoke(id, iid, locale, flags, parameters, result, exception, argumentError);
    }
};

class FormModuleTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_NE(nullptr, unit);
        host.base.macros[L"panel"] = kForm;
        host.instanceObject = &form;
        unit->SetCallBack(&host);
    }
    void TearDown() override
    {
        if (!unit)
            return;
        VARIANT_BOOL ignored;
        unit->HaltAll(&ignored);
        unit->SetCallBack(nullptr);
        unit->Release();
    }
    IDispatch* MacroObject(const wchar_t* name, bool createNew)
    {
        BSTR text = SysAllocString(name);
        IDispatch* object = reinterpret_cast<IDispatch*>(1);
        EXPECT_EQ(S_OK, unit->Macro(text, createNew ? VARIANT_TRUE : VARIANT_FALSE, &object));
        SysFreeString(text);
        return object;
    }

    CodeUnit* unit = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));
    FormObject form;
    FormHost host;
    FakeCallBack& callBack = host.base;
};

IDispatch* CreateHandler(_CodeUnit* engine, const wchar_t* prototype)
{
    BSTR text = SysAllocString(prototype);
    IDispatch* handler = nullptr;
    EXPECT_EQ(S_OK, engine->CreateHandler(text, &handler));
    SysFreeString(text);
    return handler;
}

IDispatch* CreateHandlers(_CodeUnit* engine, const wchar_t* prefix, IDispatch* source)
{
    BSTR text = SysAllocString(prefix);
    IDispatch* handlers = nullptr;
    EXPECT_EQ(S_OK, engine->CreateHandlers(text, source, &handlers));
    SysFreeString(text);
    return handlers;
}

long ReadMember(IDispatch* object, const wchar_t* member)
{
    DISPID id = 0;
    LPOLESTR name = const_cast<LPOLESTR>(member);
    EXPECT_EQ(S_OK, object->GetIDsOfNames(IID_NULL, &name, 1, 0x409, &id));
    DISPPARAMS none{nullptr, nullptr, 0, 0};
    VARIANT value;
    VariantInit(&value);
    EXPECT_EQ(S_OK, object->Invoke(id, IID_NULL, 0x409, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr));
    VariantChangeType(&value, &value, 0, VT_I4);
    return value.lVal;
}

} // namespace

TEST_F(FormModuleTest, TheHostReadsTheHeaderAndGivesEachNewInstanceItsObject)
{
    IDispatch* first = MacroObject(L"panel", true);
    ASSERT_NE(nullptr, first);
    ASSERT_EQ(1u, host.parsed.size());
    EXPECT_EQ(0u, host.parsed[0].find(L"panel|VERSION 5.00\r\nBegin VB.Form Panel\r\n")) << "full name, header text";
    EXPECT_NE(std::wstring::npos, host.parsed[0].find(L"Attribute VB_Name = \"Panel\"\r\n"));
    EXPECT_EQ(std::wstring::npos, host.parsed[0].find(L"Public Clicks")) << "only up to the end of the header";
    EXPECT_EQ((std::vector<std::wstring>{L"panel"}), host.instances);

    EXPECT_EQ(3, ReadMember(first, L"Clicks")) << "the module's own member";
    EXPECT_EQ(42, ReadMember(first, L"Title")) << "the host object's member";
    // The calls passed on to the host's object carry the engine's fixed locale.
    ASSERT_FALSE(form.locales.empty());
    for (LCID locale : form.locales)
        EXPECT_EQ(0x409u, locale);
    EXPECT_GT(form.References(), 1u) << "the instance holds the host object";

    IDispatch* second = MacroObject(L"panel", true);
    ASSERT_NE(nullptr, second);
    EXPECT_EQ(2u, host.instances.size()) << "one call per new instance";
    first->Release();
    second->Release();
}

TEST_F(FormModuleTest, NothingFromTheHostFailsTheCreationWith10637)
{
    host.instanceObject = nullptr;
    EXPECT_EQ(nullptr, MacroObject(L"panel", true));
    ASSERT_FALSE(callBack.errorNumbers.empty());
    EXPECT_EQ(10637, callBack.errorNumbers.back());
}

TEST_F(FormModuleTest, ARefusedHeaderIsAnObjectHeaderError)
{
    host.acceptHeader = false;
    EXPECT_EQ(nullptr, MacroObject(L"panel", true));
    ASSERT_FALSE(callBack.errorNumbers.empty());
    EXPECT_EQ(10636, callBack.errorNumbers.front());
    EXPECT_TRUE(host.instances.empty());
}

TEST_F(FormModuleTest, DuringNewInstanceOnlyThatModulesExtensionsMayBeAddedAndNoneRemoved)
{
    host.duringNewInstance = [](FormHost& self, _CodeUnit* engine) {
        const auto add = [&](const wchar_t* prefix) {
            BSTR text = SysAllocString(prefix);
            VARIANT_BOOL added = VARIANT_FALSE;
            engine->AddExtensionEx(text, self.instanceObject, &added);
            SysFreeString(text);
            self.extensionAnswers.push_back(added == VARIANT_TRUE);
        };
        add(L"panel|Pnl.");
        add(L"Other.");
        BSTR none = SysAllocString(L"");
        VARIANT_BOOL removed = VARIANT_TRUE;
        engine->RemoveExtensions(none, &removed);
        SysFreeString(none);
        self.extensionAnswers.push_back(removed == VARIANT_TRUE);
    };
    IDispatch* object = MacroObject(L"panel", true);
    ASSERT_NE(nullptr, object);
    EXPECT_EQ((std::vector<bool>{true, false, false}), host.extensionAnswers);
    object->Release();
}

TEST_F(FormModuleTest, StarNewInstanceNamesALiveInstanceByItsNumber)
{
    host.base.macros[L"counter"] = L"VERSION 1.0 CLASS\r\nAttribute VB_Name = \"Counter\"\r\nPublic Count As Long\r\n";
    IDispatch* made = MacroObject(L"counter", true);
    ASSERT_NE(nullptr, made);
    IDispatch* found = MacroObject(L"*NewInstance1", false);
    EXPECT_EQ(made, found);
    IDispatch* same = MacroObject(L"*newinstance00000001", false);
    EXPECT_EQ(made, same);
    EXPECT_EQ(nullptr, MacroObject(L"*NewInstance2", false));
    EXPECT_EQ(nullptr, MacroObject(L"*NewInstanceZ", false));
    EXPECT_EQ(nullptr, MacroObject(L"*NewInstance123456789", false)) << "at most 8 digits";
    if (found)
        found->Release();
    if (same)
        same->Release();
    made->Release();
    EXPECT_EQ(nullptr, MacroObject(L"*NewInstance1", false)) << "a released instance is gone";
}

TEST_F(FormModuleTest, DuringNewInstanceOnlyThatModulesHandlersMayBeMade)
{
    ComRef<ITypeInfo> ledgerClass = brannoc::testing::MakeLedgerClass();
    ASSERT_TRUE(ledgerClass);
    FakeEventSource ledger(ledgerClass.Get());
    host.eventSource = &ledger;
    callBack.offerTrace = true;
    VARIANT_BOOL ignored;
    unit->Run(static_cast<short>(0x8040), &ignored);
    host.duringNewInstance = [](FormHost& self, _CodeUnit* engine) {
        const auto made = [&](IDispatch* handler) {
            self.extensionAnswers.push_back(handler != nullptr);
            if (handler)
                handler->Release();
        };
        made(CreateHandler(engine, L"Panel|Sub Pnl_Click()"));
        made(CreateHandler(engine, L"Sub Pnl_Click()"));
        made(CreateHandler(engine, L"other|Sub Pnl_Click()"));
        made(CreateHandlers(engine, L"panel|Ledger", self.eventSource));
        made(CreateHandlers(engine, L"Ledger", self.eventSource));
    };
    IDispatch* object = MacroObject(L"panel", true);
    ASSERT_NE(nullptr, object);
    EXPECT_EQ((std::vector<bool>{true, false, false, true, false}), host.extensionAnswers);
    const auto traced = [&](const std::wstring& line) {
        return std::count(callBack.traces.begin(), callBack.traces.end(), L"2:" + line);
    };
    EXPECT_EQ(2, traced(L"Only a module specific handler for the current NewInstance is allowed."));
    EXPECT_EQ(1, traced(L"Only module specific handlers for the current NewInstance are allowed."));

    // Once the instance is made, the module exists: handlers specific to it are refused.
    host.duringNewInstance = nullptr;
    EXPECT_EQ(nullptr, CreateHandler(unit, L"panel|Sub Pnl_Click()"));
    EXPECT_EQ(1, traced(L"Module specific handler not allowed for a module that already exists."));
    EXPECT_EQ(nullptr, CreateHandlers(unit, L"panel|Ledger", &ledger));
    EXPECT_EQ(1, traced(L"Module specific handlers not allowed for a module that already exists."));
    IDispatch* general = CreateHandler(unit, L"Sub Pnl_Click()");
    EXPECT_NE(nullptr, general);
    if (general)
        general->Release();
    object->Release();
}
