#pragma once
// The text area's two pop-up components, the completion list "Brannoc.AutoFill.3" and the parameter
// tip "Brannoc.AutoParm.3": automation objects made from class descriptions, whose class objects this
// library registers with COM while a text area lives, so that the text area creates them by program
// identifier and calls them by dispatch number like any outside component.
#include "values/ComRef.h"

#include <oaidl.h>

namespace brannoc::ide {

inline constexpr wchar_t kCompletionProgId[] = L"Brannoc.AutoFill.3";
inline constexpr wchar_t kParameterTipProgId[] = L"Brannoc.AutoParm.3";
// Registered window messages each component posts to the window given to Show: wParam nonzero when
// the user chose a word (list) or 0 when the pop-up closed on its own.
inline constexpr char kCompletionEventName[] = "Brannoc.AutoFillEvent";
inline constexpr char kParameterTipEventName[] = "Brannoc.AutoParmEvent";

// The members both components answer, by dispatch number.
enum PopupMember : DISPID {
    POPUP_INDEX = 1, // tip: the current argument index (get and put)
    POPUP_WORD = 2,  // list: put the typed prefix, get the chosen word
    POPUP_SHOW = 3,  // Show(window, font, x, y, line height, text): nonzero when shown
    POPUP_HIDE = 4,
    POPUP_MOVE = 5,  // Move(x, y)
};

// The program identifiers and class identifiers in the registry (written once per process); false
// when the registry refused them.
bool RegisterPopupProgramIds();

// While at least one of these lives on the thread, the class objects of both components are
// registered with COM (COM must be initialised on the thread).
class PopupClassObjects final {
public:
    PopupClassObjects();
    ~PopupClassObjects();
    PopupClassObjects(const PopupClassObjects&) = delete;
    PopupClassObjects& operator=(const PopupClassObjects&) = delete;
};

// A component created by program identifier; null when it cannot be created.
ComRef<IDispatch> CreatePopupComponent(const wchar_t* progId);

// The class objects (one reference for the caller); null when the description cannot be built.
IClassFactory* CreateCompletionListClass();
IClassFactory* CreateParameterTipClass();

} // namespace brannoc::ide
