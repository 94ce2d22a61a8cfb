// The records of user-defined types: each type's run-time record type, built from its elements in
// declaration order once every type name of the module is known (a type may use one declared later).
#include "frontend/DeclarationReader.h"

#include "exec/ModuleInstance.h"
#include "frontend/Lexer.h"
#include "frontend/Module.h"

#include <algorithm>

namespace brannoc {

namespace {

// The field that holds an element of type spec (arrays with their fixed bounds).
RecordField FieldFor(const UserTypeElement& element)
{
    RecordField field;
    field.name = element.name;
    const TypeCode code = element.type.code;
    if (code.IsArray()) {
        field.kind = FieldKind::Array;
        const ElementKind kind = ArrayElementKind(code.Code(), nullptr);
        field.elementTag = kind.tag;
        field.elementLength = kind.fixedLength;
        if (element.type.userType)
            field.record = element.type.userType->record;
        for (const Bounds& bounds : element.bounds)
            field.bounds.emplace_back(bounds.lower, bounds.upper);
        return field;
    }
    if (code.IsUserType()) {
        field.kind = FieldKind::Record;
        if (element.type.userType)
            field.record = element.type.userType->record;
    } else if (code.IsFixedString()) {
        field.kind = FieldKind::FixedString;
        field.length = static_cast<UINT>(code.FixedLength());
    } else if (code.IsString()) {
        field.kind = FieldKind::String;
    } else if (code.IsVariant()) {
        field.kind = FieldKind::Variant;
    } else if (code.IsObject()) {
        field.kind = FieldKind::Object;
        field.tag = VT_DISPATCH;
    } else {
        field.kind = FieldKind::Plain;
        field.tag = static_cast<VARTYPE>(code.ValueTag());
    }
    return field;
}

} // namespace

void DeclarationReader::LayoutTypes()
{
    std::vector<const UserType*> open;
    for (auto& type : m_state.userTypes) {
        m_lexer.ClearStatementError();
        (void)LayoutType(*type, open);
    }
}

// Builds type's record type after those of the types its elements use; `open` holds the types being
// built, so that a type that contains itself is found.
bool DeclarationReader::LayoutType(UserType& type, std::vector<const UserType*>& open)
{
    if (type.record)
        return true;
    if (std::find(open.begin(), open.end(), &type) != open.end()) {
        m_lexer.SignalErrorAt(CompileMessage::UserDefinedTypeIsTooBig, {}, type.position);
        return false;
    }
    open.push_back(&type);
    bool laidOut = true;
    for (UserTypeElement& element : type.elements) {
        if (element.type.userType && !LayoutType(const_cast<UserType&>(*element.type.userType), open)) {
            laidOut = false;
            break;
        }
    }
    open.pop_back();
    if (!laidOut)
        return false;
    RecordTypeRef record(RecordType::Create(type.name));
    if (!record) {
        m_lexer.SignalError(CompileMessage::OutOfMemory);
        return false;
    }
    for (UserTypeElement& element : type.elements) {
        if (!record->AddField(FieldFor(element))) {
            m_lexer.SignalErrorAt(CompileMessage::UserDefinedTypeIsTooBig, {}, type.position);
            return false;
        }
        element.offset = record->FieldAt(record->FieldCount() - 1).offset;
    }
    type.size = record->Size();
    type.record = std::move(record);
    return true;
}

} // namespace brannoc
