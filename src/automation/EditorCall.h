#pragma once
// Calls on the editor component behind the KZBE_ functions ("Brannoc.BasicEditor2"), made by dispatch
// number through the OA_Invoke family. None of them shows a message box: a failed call answers its
// fallback, and an exception raised by the component in a Boolean or value-less call also ends the
// caller's hold on it (the handle is released, as the component is taken to be gone).
#include "automation/ArgumentList.h"

#include "brannoc.h"

namespace brannoc::automation {

enum class EditorCallKind {
    Method,        // a method without a result
    BooleanAnswer, // a method or property get whose result is a Boolean
    Put,           // a property put
};

// The routine of every Boolean getter, value-less method and put: TRUE or FALSE as the component
// answers (a value-less call answers TRUE when it went through); fallback for a null editor, an
// argument list that could not be built, or a raised exception, which also releases the editor.
BOOL CallEditor(IDispatch* editor, DISPID member, ArgumentList& arguments, EditorCallKind kind, BOOL fallback);

// A method call whose failure the caller handles itself: nothing is released; true when it went through.
bool CallEditorMethodSilently(IDispatch* editor, DISPID member, ArgumentList& arguments);

// A string result as ANSI text in a byte-length BSTR (the caller frees it with OA_SysFreeStringA); null
// for a null editor or a failed call.
BSTR AskEditorText(IDispatch* editor, DISPID member, ArgumentList& arguments);

// An object result, held for the caller; null for a null editor or a failed call.
IDispatch* AskEditorObject(IDispatch* editor, DISPID member, ArgumentList& arguments);

} // namespace brannoc::automation
