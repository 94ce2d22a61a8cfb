#pragma once
// Numbers of the compile-time messages. The texts live in the string table under the same numbers; the
// run-time numbers that the '#Uses scan and the compiler share are listed at the end. A number that is a
// run-time error too is taken from the run-time table, so that each number is written once.
#include "values/ValueError.h"

#include <cstdint>

namespace brannoc {

#define BRANNOC_COMPILE_MESSAGES(X) \
    X(ExpressionDoesNotMatchParameterType, 10500) \
    X(ExpectingASingleLetter, 10501) \
    X(LetterRangeIsOutOfOrder, 10502) \
    X(DefaultValueTypeInvalidOrAlreadySet, 10503) \
    X(ExpectingAVarName, 10504) \
    X(TooManyDimensions, 10505) \
    X(LowerBoundIsLargerThanUpperBound, 10506) \
    X(ArrayHasTooManyElements, 10507) \
    X(ExpectingComparison, 10508) \
    X(AlreadyEvaluatingAnExpression, kErrorAlreadyEvaluating) \
    X(NotAnObjectReference, 10510) \
    X(DefaultPropertyUsageIsInvalid, 10511) \
    X(ExpectingAParameterName, 10512) \
    X(CantPassAVariantOrUserTypeByValue, 10513) \
    X(CantPassAsAFixedLengthString, 10514) \
    X(ParameterOfThisTypeNotSupported, 10515) \
    X(FunctionResultOfThisTypeNotSupported, 10516) \
    X(ExpectingEitherSubOrFunction, 10517) \
    X(ExpectingSubFunctionPropertyName, 10518) \
    X(IdentifierIsAlreadyInUse, 10519) \
    X(ExpectingAQuotedDLLLibraryName, 10520) \
    X(ExpectingAQuotedAliasName, 10521) \
    X(FunctionIsDefinedWithADifferentValueType, 10523) \
    X(MissingParameter, 10524) \
    X(FunctionTerminatedDuringEvaluation, kErrorFunctionTerminated) \
    X(ValueTypeNotExpectedForASubroutine, 10526) \
    X(ExpectingAStringArrayVarWithOneIndex, 10527) \
    X(ExpectingAValidFieldIdentifier, 10528) \
    X(FieldIsNotTheCorrectType, 10529) \
    X(UnexpectedEndOfFile, 10530) \
    X(ExpectingAUserDialogItemDefinition, 10531) \
    X(ExpectingAtLeastTwoOptionButtonDefinitions, 10532) \
    X(ExpectingOptionGroupBeforeOptionButton, 10533) \
    X(OnlyOneOKButtonIsAllowed, 10534) \
    X(OnlyOneCancelButtonIsAllowed, 10535) \
    X(ExpectingOneOfOKButtonOrCancelButton, 10536) \
    X(ExpectingAFactor, 10537) \
    X(OperandOperatorTypeMismatch, 10538) \
    X(ExpectingAnExpression, 10539) \
    X(ThisLanguageFeatureHasBeenDisabled, 10540) \
    X(ExpectingComma, 10541) \
    X(ExpectingAnArrayVar, 10542) \
    X(VarIsAlreadyDefinedAsADifferentType, 10543) \
    X(UnexpectedExpression, 10544) \
    X(ExpectingInputOutputAppendBinaryOrRandom, 10545) \
    X(ExpectingASimpleExpression, 10546) \
    X(ExpectingHash, 10547) \
    X(ExpectingAnIntegerStreamNumberExpression, 10548) \
    X(CantAssignAValueToAnExpression, 10549) \
    X(MethodOrPropertyNotFound, 10550) \
    X(ExpectingAConstantVarNameOrFunctionName, 10551) \
    X(NotInsideAWithBlock, 10552) \
    X(MethodOrPropertyDidNotReturnAnObject, 10553) \
    X(UserDefinedTypeElementDoesNotExist, 10554) \
    X(ExpectingAVarExpression, 10555) \
    X(ExpectingASimpleVarExpression, 10556) \
    X(ExpectingAScalarStringVar, 10557) \
    X(PrivateOrFriendPropertyIsNotAccessible, 10558) \
    X(CantCallAProperty, 10559) \
    X(GoToLabelHasNotBeenDefined, 10560) \
    X(ExpectingAUserDialogVar, 10561) \
    X(ExpectingAVarReference, 10562) \
    X(NotExpectingAnArrayVar, 10563) \
    X(InvalidInstruction, kErrorInvalidInstruction) \
    X(InvalidLetSyntax, 10565) \
    X(ExpectingAnObjectExpression, 10566) \
    X(CantChangeTheNumberOfIndexes, 10568) \
    X(UserDialogMustBeDefinedInTheCurrentSubFunctionProperty, 10569) \
    X(UserDialogVarMustNotBeAnArray, 10570) \
    X(ExpectingAStringOrUserTypeVar, 10571) \
    X(ThisVarCantBeUsedWithLSet, 10572) \
    X(ExpectingAUserTypeVar, 10573) \
    X(InvalidLabelIdentifier, 10575) \
    X(UnexpectedText, 10576) \
    X(SubMainHasNotBeenDefined, 10577) \
    X(TypeElementNameIsInvalid, 10579) \
    X(ElementTypeIsADifferentType, 10580) \
    X(SubsCantBeUsedInExpressions, 10581) \
    X(HexConstantIsTooLong, 10582) \
    X(InvalidNumericConstant, 10583) \
    X(DateTypeIsNotSupported, 10584) \
    X(NotExpectingAnObjectVar, 10585) \
    X(Expecting, 10586) \
    X(UnterminatedBlockStatement, 10587) \
    X(UnexpectedEndStatement, 10588) \
    X(ExpectingACaseDefinition, 10589) \
    X(ExpectingAScalarNumberVar, 10590) \
    X(NextVarDoesNotMatchForsVar, 10591) \
    X(ExpectingAnElementIdentifier, 10592) \
    X(ExpectingAsType, 10593) \
    X(AsObjectIsNotAllowed, 10594) \
    X(ElementIsTooBig, 10595) \
    X(TypeIdentifierIsInvalid, 10596) \
    X(TypeIdentifierInvalidOrAlreadyInUse, 10597) \
    X(UserDefinedTypeIsTooBig, 10598) \
    X(CantPassAnArrayByValue, 10599) \
    X(CantPassAnObjectByValue, 10600) \
    X(NotExpectingAnyParameters, 10601) \
    X(LabelIsNotDefined, 10602) \
    X(MacroModuleIsTooLarge, 10603) \
    X(ExpectingAIntegerConstant, 10604) \
    X(FixedStringSize, 10605) \
    X(ExpectingAValidDataTypeEgInteger, 10606) \
    X(ExpectingAnAlreadyDimensionedArray, 10607) \
    X(ExpectingAnExistingScalarVar, 10608) \
    X(NotInAWithBlock, 10609) \
    X(ExpectingGetLetOrSet, 10610) \
    X(PropertyGetAndLetSetParametersMustMatch, 10611) \
    X(ExpectingAConstantName, 10612) \
    X(CantAssignAValueToAConstant, 10613) \
    X(ExpectingAConstantOrFunctionName, 10614) \
    X(ExpectingAValidConstTypeEgInteger, 10615) \
    X(ArrayOfStringNOrUserDefinedTypeNotAllowed, 10616) \
    X(ExpectingALongInteger, 10617) \
    X(ExpectingADynamicArrayVar, kErrorExpectingDynamicArray) \
    X(StringIndexMustBeGreaterThanOrEqualToOne, kErrorStringIndex) \
    X(InvalidFunctionArgumentValue, kErrorInvalidArgument) \
    X(ParamArrayParameterMustBeVariantArray, 10626) \
    X(ParameterRequiresAnExpression, 10627) \
    X(NoSuchNamedParameter, 10628) \
    X(ParameterAlreadyHasAValue, 10629) \
    X(ExpectingASpecificObjectType, 10630) \
    X(ExpectingReadOrWrite, 10631) \
    X(VariableStorageSpaceExceeded, 10632) \
    X(ExpectingAPublicSub, 10633) \
    X(ExpectingAPrivateSub, 10634) \
    X(PublicConstDeclareTypeArrayOrFixedLengthStringsNotAllowed, 10635) \
    X(ErrorSInObjectHeader, 10636) \
    X(CreationOfANewObjectModuleInstanceFailed, kErrorObjectInstanceNotCreated) \
    X(UserDefinedTypeParameterResultNotAllowed, 10638) \
    X(DefaultPropertyHasAlreadyBeenDefined, 10639) \
    X(CantDefineADefaultPropertyInAMacroOrCodeModule, 10640) \
    X(InvalidDefaultPropertyAttribute, 10641) \
    X(TheReferenceCouldNotBeAdded, 10642) \
    X(TheBuiltInInstructionCantHaveAResult, 10900) \
    X(BuiltinFunctionInstructionIsNotImplemented, kErrorNotImplemented) \
    X(OutOfMemory, kErrorOutOfMemory) \
    X(InvalidUsesComment, 10008) \
    X(InvalidUsesDependency, 10009) \
    X(ModuleDoesNotExist, kErrorModuleMissing) \
    X(DivideByZero, kErrorDivideByZero) \
    X(Overflow, kErrorOverflow) \
    X(TypeMismatch, kErrorTypeMismatch) \
    X(WrongNumberOfParameters, kErrorWrongNumberOfParameters)

enum class CompileMessage : std::uint16_t {
#define BRANNOC_COMPILE_MESSAGE_ENUM(name, number) name = number,
    BRANNOC_COMPILE_MESSAGES(BRANNOC_COMPILE_MESSAGE_ENUM)
#undef BRANNOC_COMPILE_MESSAGE_ENUM
};

constexpr unsigned MessageNumber(CompileMessage message) { return static_cast<unsigned>(message); }

} // namespace brannoc
