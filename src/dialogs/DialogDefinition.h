#pragma once
// A user dialog as its Begin Dialog block defined it when it last ran: the compiled template with the
// header's numbers and title and each item's box and text as evaluated then. It lives in a hidden slot
// of the procedure's frame, where Dialog finds it.
#include "dialogs/DialogTemplate.h"
#include "values/Variant.h"

#include <optional>
#include <string>
#include <vector>

namespace brannoc {

struct DialogBox {
    int x = 0;
    int y = 0;
    int dx = 0;
    int dy = 0;
};

struct DialogItemValues {
    DialogBox box;
    std::wstring text;
    int pictureType = 0;
};

class DialogDefinition final : public IUnknown {
public:
    explicit DialogDefinition(DialogTemplate& dialogTemplate);
    DialogDefinition(const DialogDefinition&) = delete;
    DialogDefinition& operator=(const DialogDefinition&) = delete;

    const DialogTemplate& Template() const { return *m_template; }
    DialogBox box;
    // The header's title; none: the engine's caption.
    std::optional<std::wstring> title;
    std::vector<DialogItemValues> items;
    // The list arrays as the block handed them over (references to the variables when it could).
    std::vector<Variant> lists;

    // The definition an IUnknown made by this class stands for, or null.
    static DialogDefinition* From(IUnknown* object);

    HRESULT __stdcall QueryInterface(REFIID id, void** object) override;
    ULONG __stdcall AddRef() override;
    ULONG __stdcall Release() override;

private:
    ~DialogDefinition();
    DialogTemplate* m_template;
    LONG m_references = 1;
};

} // namespace brannoc
