// Calls on the editor component: each goes through the OA_Invoke family with an error record, so
// nothing is shown; the record's strings are freed when the call is over.
#include "automation/EditorCall.h"

#include "automation/InvokeExceptionRecord.h"

namespace brannoc::automation {

namespace {

BOOL Invoke(IDispatch* editor, DISPID member, ArgumentList& arguments, EditorCallKind kind, OA_ERROR* error)
{
    switch (kind) {
    case EditorCallKind::Method:
        return OA_Invoke(editor, member, arguments.List(), error);
    case EditorCallKind::Put:
        return OA_InvokePut(editor, member, arguments.List(), error);
    case EditorCallKind::BooleanAnswer:
        return OA_InvokeBOOL(editor, member, arguments.List(), error) ? TRUE : FALSE;
    }
    return FALSE;
}

bool Callable(IDispatch* editor, const ArgumentList& arguments) { return editor && arguments.Usable(); }

} // namespace

BOOL CallEditor(IDispatch* editor, DISPID member, ArgumentList& arguments, EditorCallKind kind, BOOL fallback)
{
    if (!Callable(editor, arguments))
        return fallback;
    InvokeExceptionRecord exception;
    const BOOL answer = Invoke(editor, member, arguments, kind, exception.Receiver());
    if (exception.ExceptionReported()) {
        OA_Release(editor);
        return fallback;
    }
    return answer;
}

bool CallEditorMethodSilently(IDispatch* editor, DISPID member, ArgumentList& arguments)
{
    if (!Callable(editor, arguments))
        return false;
    InvokeExceptionRecord exception;
    return OA_Invoke(editor, member, arguments.List(), exception.Receiver()) != FALSE;
}

BSTR AskEditorText(IDispatch* editor, DISPID member, ArgumentList& arguments)
{
    if (!Callable(editor, arguments))
        return nullptr;
    InvokeExceptionRecord exception;
    return OA_InvokeBSTRA(editor, member, arguments.List(), exception.Receiver());
}

IDispatch* AskEditorObject(IDispatch* editor, DISPID member, ArgumentList& arguments)
{
    if (!Callable(editor, arguments))
        return nullptr;
    InvokeExceptionRecord exception;
    return OA_InvokeDisp(editor, member, arguments.List(), exception.Receiver());
}

} // namespace brannoc::automation
