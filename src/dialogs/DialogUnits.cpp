#include "dialogs/DialogUnits.h"

namespace brannoc {

DialogUnits DialogUnits::Of(HWND dialog)
{
    // Four horizontal and eight vertical dialog-template units are one average character.
    RECT units{0, 0, 4, 8};
    DialogUnits result;
    if (dialog && MapDialogRect(dialog, &units)) {
        result.baseX = units.right > 0 ? units.right : 8;
        result.baseY = units.bottom > 0 ? units.bottom : 12;
    }
    return result;
}

} // namespace brannoc
