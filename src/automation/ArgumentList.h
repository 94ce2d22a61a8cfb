#pragma once
// An OA_ARG list owned by the code that builds it: the OA_Invoke... call it is handed to consumes it,
// and whatever is left (a list never invoked, or one the call refused) is released at the end of scope.
// Adding beyond the announced count marks the list as unusable, as OA_ArgAdd... does.
#include "brannoc.h"

namespace brannoc::automation {

class ArgumentList final {
public:
    explicit ArgumentList(LONG count) { m_usable = OA_ArgStart(count, &m_list) != FALSE; }
    ~ArgumentList() { OA_ArgRelease(&m_list); }
    ArgumentList(const ArgumentList&) = delete;
    ArgumentList& operator=(const ArgumentList&) = delete;

    // Null or empty text is passed as an empty string.
    void AddText(LPCSTR text) { Keep(OA_ArgAddStringA(&m_list, text ? text : "")); }
    void AddObject(IDispatch* object) { Keep(OA_ArgAddDisp(&m_list, object)); }
    // A C Boolean (any nonzero value is true) as an automation Boolean (-1 or 0).
    void AddFlag(BOOL on) { Keep(OA_ArgAddBOOL(&m_list, on ? VARIANT_TRUE : VARIANT_FALSE)); }

    // False when the list could not be made or an argument could not be added.
    bool Usable() const { return m_usable; }
    OA_ARG* List() { return &m_list; }

private:
    void Keep(BOOL added) { m_usable = m_usable && added; }

    OA_ARG m_list{};
    bool m_usable = false;
};

} // namespace brannoc::automation
