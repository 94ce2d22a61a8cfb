#pragma once
// The procedures and WithEvents variables of a sheet's code, as the object and proc lists show them.
#include "ide/TextDocument.h"

#include <string>
#include <vector>

namespace brannoc::ide {

enum class ProcedureKind { Sub, Function, PropertyGet, PropertyLet, PropertySet };

struct ProcedureEntry {
    std::string name;
    ProcedureKind kind = ProcedureKind::Sub;
    int line = 0; // of the header, in the shown code
};

std::vector<ProcedureEntry> ListProcedures(const TextDocument& document);
// Module-level variables declared "WithEvents" (Dim, Private, Public or Global lines; Declare lines skipped).
std::vector<std::string> ListWithEventsVariables(const TextDocument& document);
// The name as the proc list shows it: property procedures get " [PropertyGet]" and the like.
std::string ProcListText(const ProcedureEntry& entry);

} // namespace brannoc::ide
