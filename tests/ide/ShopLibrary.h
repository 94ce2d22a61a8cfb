#pragma once
// A small type library "Shop" written for the completion tests, loaded into a catalog:
// - enumeration ShopColour (scRed 0, scGreen 1, _scSecret 2) and enumeration _ShopHidden;
// - dispatch interface Basket: Item(Index As Long) As Variant (member id 0, a property get), Count As
//   Long (property get), Add Name As String, Optional Colour As ShopColour, Paint(Colour As ShopColour,
//   Glossy As Boolean) As Boolean and a method _Reset;
// - dispatch interface Shopper: Basket As Basket (property get), Checkout(Express As Boolean);
// - class Cart (creatable, default interface Basket) and a hidden dispatch interface Internals.
#include "ide/BrowseCatalog.h"

#include <windows.h>
#include <oaidl.h>

#include <string>

namespace brannoc::test {

class ShopLibrary final {
public:
    ShopLibrary()
    {
        char folder[MAX_PATH];
        GetTempPathA(MAX_PATH, folder);
        m_path = std::wstring(folder, folder + lstrlenA(folder)) + L"completion_shop.tlb";
        if (Write())
            LoadTypeLib(m_path.c_str(), &m_library);
    }
    ~ShopLibrary()
    {
        if (m_library)
            m_library->Release();
        DeleteFileW(m_path.c_str());
    }
    ShopLibrary(const ShopLibrary&) = delete;
    ShopLibrary& operator=(const ShopLibrary&) = delete;

    ITypeLib* Library() const { return m_library; }
    const std::wstring& Path() const { return m_path; }
    // A catalog holding the library.
    ide::BrowseCatalog Catalog() const
    {
        ide::BrowseCatalog catalog;
        if (m_library)
            ide::AddLibrary(catalog, m_library);
        return catalog;
    }

private:
    static GUID Guid(unsigned short n)
    {
        return GUID{0x5c0f1e20, 0x7a1b, n, {0x91, 0x32, 0x43, 0x54, 0x65, 0x76, 0x87, 0x98}};
    }

    static bool AddConstant(ICreateTypeInfo* info, UINT index, const wchar_t* name, long value)
    {
        VARIANT constant;
        VariantInit(&constant);
        constant.vt = VT_I4;
        constant.lVal = value;
        VARDESC variable{};
        variable.memid = static_cast<MEMBERID>(0x40000000 + index);
        variable.lpvarValue = &constant;
        variable.elemdescVar.tdesc.vt = VT_I4;
        variable.varkind = VAR_CONST;
        return SUCCEEDED(info->AddVarDesc(index, &variable)) && SUCCEEDED(info->SetVarName(index, const_cast<LPOLESTR>(name)));
    }

    struct Parameter {
        const wchar_t* name;
        VARTYPE type;           // VT_USERDEFINED uses `reference`
        HREFTYPE reference = 0;
        bool optional = false;
    };

    static bool AddFunction(ICreateTypeInfo* info, UINT index, MEMBERID id, INVOKEKIND kind, const wchar_t* name,
                            VARTYPE result, HREFTYPE resultReference, std::initializer_list<Parameter> parameters)
    {
        TYPEDESC userTypes[8] = {};
        ELEMDESC elements[8] = {};
        LPOLESTR names[9] = {const_cast<LPOLESTR>(name)};
        UINT count = 0;
        for (const Parameter& parameter : parameters) {
            elements[count].tdesc.vt = parameter.type;
            if (parameter.type == VT_USERDEFINED)
                elements[count].tdesc.hreftype = parameter.reference;
            elements[count].paramdesc.wParamFlags = PARAMFLAG_FIN | (parameter.optional ? PARAMFLAG_FOPT : 0);
            names[count + 1] = const_cast<LPOLESTR>(parameter.name);
            ++count;
        }
        FUNCDESC function{};
        function.memid = id;
        function.funckind = FUNC_DISPATCH;
        function.invkind = kind;
        function.callconv = CC_STDCALL;
        function.cParams = static_cast<SHORT>(count);
        function.lprgelemdescParam = elements;
        TYPEDESC pointer{};
        if (result == VT_USERDEFINED) {
            userTypes[0].vt = VT_USERDEFINED;
            userTypes[0].hreftype = resultReference;
            pointer.vt = VT_PTR;
            pointer.lptdesc = &userTypes[0];
            function.elemdescFunc.tdesc = pointer;
        } else {
            function.elemdescFunc.tdesc.vt = result;
        }
        return SUCCEEDED(info->AddFuncDesc(index, &function)) && SUCCEEDED(info->SetFuncAndParamNames(index, names, count + 1));
    }

    static HREFTYPE Reference(ICreateTypeInfo* from, ICreateTypeInfo* to)
    {
        ITypeInfo* type = nullptr;
        HREFTYPE reference = 0;
        if (SUCCEEDED(to->QueryInterface(IID_ITypeInfo, reinterpret_cast<void**>(&type)))) {
            from->AddRefTypeInfo(type, &reference);
            type->Release();
        }
        return reference;
    }

    bool Write()
    {
        ICreateTypeLib2* library = nullptr;
        if (FAILED(CreateTypeLib2(SYS_WIN32, m_path.c_str(), &library)))
            return false;
        library->SetName(const_cast<LPOLESTR>(L"Shop"));
        library->SetGuid(Guid(1));
        library->SetVersion(1, 0);
        library->SetLcid(0);
        ICreateTypeInfo *colour = nullptr, *hidden = nullptr, *basket = nullptr, *shopper = nullptr, *cart = nullptr,
                        *internals = nullptr;
        bool written =
            SUCCEEDED(library->CreateTypeInfo(const_cast<LPOLESTR>(L"ShopColour"), TKIND_ENUM, &colour)) &&
            SUCCEEDED(library->CreateTypeInfo(const_cast<LPOLESTR>(L"_ShopHidden"), TKIND_ENUM, &hidden)) &&
            SUCCEEDED(library->CreateTypeInfo(const_cast<LPOLESTR>(L"Basket"), TKIND_DISPATCH, &basket)) &&
            SUCCEEDED(library->CreateTypeInfo(const_cast<LPOLESTR>(L"Shopper"), TKIND_DISPATCH, &shopper)) &&
            SUCCEEDED(library->CreateTypeInfo(const_cast<LPOLESTR>(L"Cart"), TKIND_COCLASS, &cart)) &&
            SUCCEEDED(library->CreateTypeInfo(const_cast<LPOLESTR>(L"Internals"), TKIND_DISPATCH, &internals));
        if (written) {
            colour->SetGuid(Guid(2));
            hidden->SetGuid(Guid(3));
            basket->SetGuid(Guid(4));
            shopper->SetGuid(Guid(5));
            cart->SetGuid(Guid(6));
            internals->SetGuid(Guid(7));
            internals->SetTypeFlags(TYPEFLAG_FHIDDEN);
            cart->SetTypeFlags(TYPEFLAG_FCANCREATE);
            const HREFTYPE colourOfBasket = Reference(basket, colour);
            const HREFTYPE basketOfShopper = Reference(shopper, basket);
            const HREFTYPE basketOfCart = Reference(cart, basket);
            written = AddConstant(colour, 0, L"scRed", 0) && AddConstant(colour, 1, L"scGreen", 1) &&
                      AddConstant(colour, 2, L"_scSecret", 2) && AddConstant(hidden, 0, L"hdNothing", 0) &&
                      AddFunction(basket, 0, 0, INVOKE_PROPERTYGET, L"Item", VT_VARIANT, 0, {{L"Index", VT_I4}}) &&
                      AddFunction(basket, 1, 1, INVOKE_PROPERTYGET, L"Count", VT_I4, 0, {}) &&
                      AddFunction(basket, 2, 2, INVOKE_FUNC, L"Add", VT_VOID, 0,
                                  {{L"Name", VT_BSTR}, {L"Colour", VT_USERDEFINED, colourOfBasket, true}}) &&
                      AddFunction(basket, 3, 3, INVOKE_FUNC, L"Paint", VT_BOOL, 0,
                                  {{L"Colour", VT_USERDEFINED, colourOfBasket}, {L"Glossy", VT_BOOL}}) &&
                      AddFunction(basket, 4, 4, INVOKE_FUNC, L"_Reset", VT_VOID, 0, {}) &&
                      AddFunction(shopper, 0, 1, INVOKE_PROPERTYGET, L"Basket", VT_USERDEFINED, basketOfShopper, {}) &&
                      AddFunction(shopper, 1, 2, INVOKE_FUNC, L"Checkout", VT_VOID, 0, {{L"Express", VT_BOOL}}) &&
                      AddFunction(internals, 0, 1, INVOKE_FUNC, L"Wipe", VT_VOID, 0, {}) &&
                      SUCCEEDED(cart->AddImplType(0, basketOfCart)) &&
                      SUCCEEDED(cart->SetImplTypeFlags(0, IMPLTYPEFLAG_FDEFAULT)) && SUCCEEDED(library->SaveAllChanges());
        }
        for (ICreateTypeInfo* info : {colour, hidden, basket, shopper, cart, internals})
            if (info)
                info->Release();
        library->Release();
        return written;
    }

    std::wstring m_path;
    ITypeLib* m_library = nullptr;
};

} // namespace brannoc::test
