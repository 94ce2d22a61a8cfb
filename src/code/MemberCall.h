#pragma once
// Member access on objects at run time: calls of class module members (early-bound or found by name in
// the instance's module), their module-level variables read and assigned as properties, and automation
// objects through the automation bridge; With objects, Me and "As New" variables.
#include "code/ProcedureBody.h"

namespace brannoc {

// The public member of a class module that an access reaches: a procedure (Get: Function or Property
// Get, then a Sub; Call: Sub, Function or Property Get; Let: Property Let; Set: Property Set), else a
// public module-level variable (its index). False when there is none.
bool FindClassMember(const Module& module, std::string_view name, MemberAccess access, Procedure*& procedure,
                     int& variable);

// kMemberCall: the stack holds the object, the result slot and op.count arguments. A procedure member
// is called (kYield; the activation removes the arguments when it ends); any other member finishes at
// once with the result in the slot and the arguments removed.
EvalStatus RunMemberCall(const RunContext& context, const ExprOp& op);
// kMemberEnd: the result on top replaces the object below it; a slot no Function filled is Empty.
void EndMemberCall(const RunContext& context);
// kWithObject: pushes the innermost With object; `level` is the reference's nesting level among the
// procedure's With blocks (fewer kept objects mean a jump into a block: error 10035).
[[nodiscard]] bool PushWithObject(const RunContext& context, int level);
// kMe: pushes the current instance's object.
[[nodiscard]] bool PushMe(const RunContext& context);
// kLoadNew: pushes an "As New" variable's object, made first when the variable holds Nothing.
[[nodiscard]] bool LoadAutoNew(const RunContext& context, const ExprOp& op);

// True when a variable's storage (references followed) holds an object: name(indexes) then reaches its
// default member instead of an array element.
bool HoldsObject(const VARIANT& storage);
// The default member of the object in storage read with the top `count` values as its arguments, the
// result in their place (value null), or assigned value with them (the arguments are removed). False
// after raising.
[[nodiscard]] bool AccessDefaultMember(const RunContext& context, const VARIANT& storage, int count, const Variant* value);

} // namespace brannoc
