#pragma once
// The engine object's Err object as an automation object: a dispatch object (made from the type
// library's ErrObject interface) over an implementation bound to one engine context. Its members read
// and write that engine's error record the way the language's Err does. Detached from the context
// when the engine object goes, after which every member answers E_UNEXPECTED.
#include "values/ComRef.h"

#include <oaidl.h>

namespace brannoc {

class EngineContext;

// Makes the Err dispatch object of context over the ErrObject interface of the engine's type library
// (found through the class type). Null when the type or memory is missing.
ComRef<IDispatch> CreateErrDispatch(EngineContext& context, ITypeInfo* classType);

// Detaches the implementation behind a dispatch made by CreateErrDispatch from its context.
void DetachErrDispatch(IDispatch* dispatch);

} // namespace brannoc
