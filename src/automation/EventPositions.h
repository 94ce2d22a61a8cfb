#pragma once
// Events that carry a position as two integers (parameters declared with the OLE_XPOS_... and
// OLE_YPOS_... types) reach their procedure with two Singles in the units of the source's container.
#include "host/ArgumentMatching.h"
#include "values/Variant.h"

#include <oaidl.h>

namespace brannoc::automation {

struct PositionParameters {
    int x = -1;          // the X parameter's position (the Y parameter follows it); -1: none
    bool pixels = false; // declared in pixels: the values are turned into HIMETRIC units as well
};

// Replaces the arguments for the X and Y parameters in given by Singles kept in converted: the two
// integers passed through the source's control site (TransformCoords, HIMETRIC to container), or left
// as they are when the source has no site; pixel positions then scaled by 2540 over the screen's
// logical pixels per inch. Nothing changes when either argument is missing, is a Single already, or
// is not a number.
void ConvertPositionArguments(IDispatch* source, const PositionParameters& positions, GivenArguments& given,
                              Variant (&converted)[2]);

} // namespace brannoc::automation
