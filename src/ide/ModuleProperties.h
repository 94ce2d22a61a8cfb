#pragma once
// The module properties box of an object, class or code module sheet: its VB_Name and, for object
// and class modules, its instancing.
namespace brannoc::ide {

class EditorFrame;
struct Sheet;

// Shows the box for the sheet and returns when it closed, its values applied to the sheet's header.
void ShowModuleProperties(EditorFrame& frame, Sheet& sheet);

} // namespace brannoc::ide
