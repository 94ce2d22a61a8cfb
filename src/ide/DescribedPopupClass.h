#pragma once
// The class object of a pop-up component: a dispatch class made from the component's description over
// a plain object whose virtual functions are the described members, in their order.
#include "values/ComRef.h"

#include "brannoc.h"

#include <new>

namespace brannoc::ide {

template <class Popup> void __stdcall DestroyDescribedPopup(void* implementation, void*)
{
    delete static_cast<Popup*>(implementation);
}

template <class Popup> IDispatch* __stdcall CreateDescribedPopup(ITypeInfo* type, void*)
{
    auto* popup = new (std::nothrow) Popup;
    IDispatch* dispatch = popup ? OA_CreateDispatch(type, DestroyDescribedPopup<Popup>, popup, nullptr) : nullptr;
    if (!dispatch)
        delete popup;
    return dispatch;
}

// The class object (one reference for the caller); null when the description cannot be built.
template <class Popup> IClassFactory* CreateDescribedPopupClass(const wchar_t* description)
{
    ComRef<ITypeInfo> type = ComRef<ITypeInfo>::Adopt(OA_CreateTypeW(description));
    return type ? OA_CreateClass(type.Get(), CreateDescribedPopup<Popup>, 0, nullptr) : nullptr;
}

} // namespace brannoc::ide
