// The creation exports: engine objects are made over the CodeUnit class type of the library's own
// type library.
#include "brannoc.h"
#include "host/CodeUnit.h"
#include "host/ThisModule.h"
#include "values/ComRef.h"

using namespace brannoc;

extern "C" void* __stdcall KZ_CodeCreate(ITypeInfo* classType, LONG /*reserved*/)
{
    return static_cast<_CodeUnit*>(CodeUnit::Create(classType));
}

extern "C" void* __stdcall KZ_CreateCodeUnit()
{
    ComRef<ITypeLib> library;
    if (FAILED(LoadTypeLibEx(ThisModulePath().c_str(), REGKIND_NONE, library.Out())))
        return nullptr;
    ComRef<ITypeInfo> classType;
    if (FAILED(library->GetTypeInfoOfGuid(CLSID_CodeUnit, classType.Out())))
        return nullptr;
    return KZ_CodeCreate(classType.Get(), 0);
}

extern "C" void* __stdcall CU_CreateCodeUnit()
{
    return KZ_CreateCodeUnit();
}
