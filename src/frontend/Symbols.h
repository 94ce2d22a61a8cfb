#pragma once
// Module-level items that the declaration readers produce: variables, constants, user-defined types,
// enumerations and procedures (including external Declare procedures).
#include "frontend/ConstantValue.h"
#include "frontend/TypeCode.h"
#include "exec/ExternalBinding.h"
#include "exec/ProcedureCode.h"
#include "values/RecordType.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace brannoc {

enum class Visibility : std::int8_t { Private = -1, None = 0, Public = 1, Friend = 2 };

struct UserType;

// A type code with what the code alone cannot say: the record type or the class name.
struct TypeSpec {
    TypeCode code;
    const UserType* userType = nullptr;
    std::string className;
    // Where a named type was written, for errors found when the name is resolved later.
    const char* namePosition = nullptr;
};

struct Bounds {
    std::int32_t lower = 0;
    std::int32_t upper = 0;
    bool operator==(const Bounds&) const = default;
};

struct Variable {
    std::string name;
    TypeSpec type;
    std::vector<Bounds> bounds;   // fixed arrays; empty for scalars and dynamic arrays
    Visibility visibility = Visibility::None;
    bool isStatic = false;
    bool withEvents = false;
    bool createsNew = false;      // "As New": the class is created on first use
    std::uint32_t offset = 0;
    int line = 0;
};

struct Constant {
    std::string name;
    TypeCode type;
    ConstantValue value;
    Visibility visibility = Visibility::None;
};

struct UserTypeElement {
    std::string name;
    TypeSpec type;
    std::vector<Bounds> bounds;
    std::uint32_t offset = 0;
};

struct UserType {
    std::string name;
    Visibility visibility = Visibility::None;
    std::vector<UserTypeElement> elements;
    // The record size and run-time record type, set when the module's types are laid out.
    std::uint32_t size = 0;
    RecordTypeRef record;
    // Where the type's name was written.
    const char* position = nullptr;
};

struct EnumType {
    std::string name;
    Visibility visibility = Visibility::None;
    std::vector<Constant> members;
};

struct Parameter {
    std::string name;
    TypeSpec type;
    bool byVal = false;
    bool optional = false;
    bool paramArray = false;
    bool hasDefault = false;
    ConstantValue defaultValue;
};

enum class ProcedureKind : std::uint8_t { Sub, Function, PropertyGet, PropertyLet, PropertySet, External };

struct Procedure {
    std::string name;
    ProcedureKind kind = ProcedureKind::Sub;
    Visibility visibility = Visibility::None;
    std::vector<Parameter> parameters;
    TypeSpec result;                // Function and Property Get; External functions
    int firstLine = 0;              // the header line
    int lineCount = 0;              // header to End line inclusive
    std::string text;               // those lines, as written
    std::string headerComment;      // trailing comment of the header line
    bool isDefaultMember = false;
    // External procedures.
    std::string library;
    std::string alias;
    // Made at the first call.
    ExternalBinding binding;
    // The executable form the body compiler builds (none for external procedures and when no body
    // compiler ran).
    std::unique_ptr<ProcedureCode> code;
};

// Whether a call of the procedure leaves a result: Functions, Property Gets and Declare'd Functions.
inline bool HasResult(const Procedure& procedure)
{
    return procedure.kind == ProcedureKind::Function || procedure.kind == ProcedureKind::PropertyGet ||
           (procedure.kind == ProcedureKind::External && !(procedure.result.code == TypeCode()));
}

} // namespace brannoc
