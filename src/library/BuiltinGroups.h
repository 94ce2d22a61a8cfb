#pragma once
// The groups of the built-in table, in table order. Each group file defines its function named here
// and answers its records; adding a group is one line in this list.
#include "library/BuiltinTable.h"

#define BRANNOC_BUILTIN_GROUPS(X) \
    X(StringFunctions)            \
    X(StringSearchFunctions)      \
    X(StringListFunctions)        \
    X(CharacterFunctions)         \
    X(NumberTextFunctions)        \
    X(ConversionFunctions)        \
    X(MathFunctions)              \
    X(RandomFunctions)            \
    X(ChoiceFunctions)            \
    X(ValueTestFunctions)         \
    X(ArrayFunctions)             \
    X(ColorFunctions)             \
    X(ProgramFunctions)           \
    X(FileFunctions)              \
    X(FileSystemFunctions)        \
    X(SystemFunctions)            \
    X(WindowFunctions)            \
    X(DdeFunctions)               \
    X(DialogFunctions)            \
    X(StandardDialogs)            \
    X(ObjectFunctions)            \
    X(DateFunctions)

namespace brannoc {

#define BRANNOC_DECLARE_BUILTIN_GROUP(name) BuiltinGroup name();
BRANNOC_BUILTIN_GROUPS(BRANNOC_DECLARE_BUILTIN_GROUP)
#undef BRANNOC_DECLARE_BUILTIN_GROUP

// The Error statement (Error n raises error n); the table's Error record is the function.
const BuiltinRecord& ErrorStatementRecord();

} // namespace brannoc
