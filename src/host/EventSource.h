#pragma once
// The events of an event-source object: its default source interface (through its class information)
// and, for each event, the declaration of the procedure that handles it.
#include "values/ComRef.h"
#include <oaidl.h>
#include <optional>
#include <string>
#include <vector>

namespace brannoc {

enum class SourceLookup { Found, NoTypeInfo, NoSource, NotDispatch };

// The default source interface of object (a dispatch interface) into source.
SourceLookup FindDefaultSource(IDispatch* object, ComRef<ITypeInfo>& source);
// The same from a class's type information (a coclass); NoSource for other kinds of type.
SourceLookup DefaultSourceOfClass(ITypeInfo* classInfo, ComRef<ITypeInfo>& source);
// The interface identifier of a type.
GUID TypeGuidOf(ITypeInfo* type);
// The name of member id of a type (an event's name), or empty.
std::wstring MemberNameOf(ITypeInfo* type, MEMBERID id);

struct EventPrototype {
    std::wstring event;
    std::string declaration; // "Sub prefix_Event(ByVal x As Integer, ...)"
};

// One declaration per event of the source interface that is not restricted, in interface order.
std::vector<EventPrototype> EventPrototypes(ITypeInfo* source, const std::string& prefix);
// The declaration for the one event of that member id; nothing when the source has no such event.
std::optional<EventPrototype> EventPrototypeOf(ITypeInfo* source, MEMBERID event, const std::string& prefix);

// The name of a type library type (ITypeInfo::GetDocumentation).
std::wstring TypeInfoName(ITypeInfo* type);

} // namespace brannoc
