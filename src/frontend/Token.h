#pragma once
// The token numbering of the language: one table of 340 entries whose order is the token number.
// Entries 0 to 29 are token kinds and punctuation, 31 to 162 reserved words, 163 the identifier kind and
// 164 to 339 the recognised names (words that may still name variables, labels and procedures).
#include <cstdint>
#include <string_view>

namespace brannoc {

// X(enumerator, text): text is what the keyword hash holds and what "Expecting " messages show.
#define BRANNOC_TOKEN_TABLE(X) \
    X(EndOfLine, nullptr) /* 0 */ \
    X(Operator, "operator") /* 1 */ \
    X(LiteralDate, "literal-date") /* 2 */ \
    X(LiteralNumber, "literal-number") /* 3 */ \
    X(LiteralString, "literal-string") /* 4 */ \
    X(Other, "other") /* 5 */ \
    X(Bang, "!") /* 6 */ \
    X(Equal, "=") /* 7 */ \
    X(GreaterEqual, ">=") /* 8 */ \
    X(Greater, ">") /* 9 */ \
    X(LessEqual, "<=") /* 10 */ \
    X(Less, "<") /* 11 */ \
    X(NotEqual, "<>") /* 12 */ \
    X(Colon, ":") /* 13 */ \
    X(ColonEqual, ":=") /* 14 */ \
    X(Comma, ",") /* 15 */ \
    X(Apostrophe, "'") /* 16 */ \
    X(Ampersand, "&") /* 17 */ \
    X(Slash, "/") /* 18 */ \
    X(Backslash, "\\") /* 19 */ \
    X(Dollar, "$") /* 20 */ \
    X(Dot, ".") /* 21 */ \
    X(Caret, "^") /* 22 */ \
    X(Minus, "-") /* 23 */ \
    X(Star, "*") /* 24 */ \
    X(RightParen, ")") /* 25 */ \
    X(LeftParen, "(") /* 26 */ \
    X(Plus, "+") /* 27 */ \
    X(Hash, "#") /* 28 */ \
    X(Semicolon, ";") /* 29 */ \
    X(Reserved, "reserved") /* 30 */ \
    X(Abs, "Abs") /* 31 */ \
    X(AddressOf, "AddressOf") /* 32 */ \
    X(And, "And") /* 33 */ \
    X(Any, "Any") /* 34 */ \
    X(As, "As") /* 35 */ \
    X(Attribute, "Attribute") /* 36 */ \
    X(Begin, "Begin") /* 37 */ \
    X(Boolean, "Boolean") /* 38 */ \
    X(ByRef, "ByRef") /* 39 */ \
    X(Byte, "Byte") /* 40 */ \
    X(ByVal, "ByVal") /* 41 */ \
    X(Call, "Call") /* 42 */ \
    X(Case, "Case") /* 43 */ \
    X(CBool, "CBool") /* 44 */ \
    X(CByte, "CByte") /* 45 */ \
    X(CCur, "CCur") /* 46 */ \
    X(CDate, "CDate") /* 47 */ \
    X(CDbl, "CDbl") /* 48 */ \
    X(CDec, "CDec") /* 49 */ \
    X(CInt, "CInt") /* 50 */ \
    X(CLng, "CLng") /* 51 */ \
    X(Close, "Close") /* 52 */ \
    X(Const, "Const") /* 53 */ \
    X(CSng, "CSng") /* 54 */ \
    X(CStr, "CStr") /* 55 */ \
    X(Currency, "Currency") /* 56 */ \
    X(CVar, "CVar") /* 57 */ \
    X(CVDate, "CVDate") /* 58 */ \
    X(CVErr, "CVErr") /* 59 */ \
    X(Date, "Date") /* 60 */ \
    X(Debug, "Debug") /* 61 */ \
    X(Decimal, "Decimal") /* 62 */ \
    X(Declare, "Declare") /* 63 */ \
    X(DefBool, "DefBool") /* 64 */ \
    X(DefByte, "DefByte") /* 65 */ \
    X(DefCur, "DefCur") /* 66 */ \
    X(DefDate, "DefDate") /* 67 */ \
    X(DefDbl, "DefDbl") /* 68 */ \
    X(DefDec, "DefDec") /* 69 */ \
    X(DefInt, "DefInt") /* 70 */ \
    X(DefLng, "DefLng") /* 71 */ \
    X(DefSng, "DefSng") /* 72 */ \
    X(DefStr, "DefStr") /* 73 */ \
    X(DefObj, "DefObj") /* 74 */ \
    X(DefVar, "DefVar") /* 75 */ \
    X(Dim, "Dim") /* 76 */ \
    X(Do, "Do") /* 77 */ \
    X(Double, "Double") /* 78 */ \
    X(Each, "Each") /* 79 */ \
    X(Else, "Else") /* 80 */ \
    X(ElseIf, "ElseIf") /* 81 */ \
    X(Empty, "Empty") /* 82 */ \
    X(End, "End") /* 83 */ \
    X(Enum, "Enum") /* 84 */ \
    X(Erase, "Erase") /* 85 */ \
    X(Eqv, "Eqv") /* 86 */ \
    X(Event, "Event") /* 87 */ \
    X(Exit, "Exit") /* 88 */ \
    X(False, "False") /* 89 */ \
    X(Fix, "Fix") /* 90 */ \
    X(For, "For") /* 91 */ \
    X(Friend, "Friend") /* 92 */ \
    X(Function, "Function") /* 93 */ \
    X(Get, "Get") /* 94 */ \
    X(Global, "Global") /* 95 */ \
    X(GoTo, "GoTo") /* 96 */ \
    X(If, "If") /* 97 */ \
    X(Imp, "Imp") /* 98 */ \
    X(Implements, "Implements") /* 99 */ \
    X(In, "In") /* 100 */ \
    X(Input, "Input") /* 101 */ \
    X(Int, "Int") /* 102 */ \
    X(Integer, "Integer") /* 103 */ \
    X(Is, "Is") /* 104 */ \
    X(LBound, "LBound") /* 105 */ \
    X(Len, "Len") /* 106 */ \
    X(LenB, "LenB") /* 107 */ \
    X(Let, "Let") /* 108 */ \
    X(Like, "Like") /* 109 */ \
    X(Lock, "Lock") /* 110 */ \
    X(Long, "Long") /* 111 */ \
    X(Loop, "Loop") /* 112 */ \
    X(LSet, "LSet") /* 113 */ \
    X(Me, "Me") /* 114 */ \
    X(Mod, "Mod") /* 115 */ \
    X(New, "New") /* 116 */ \
    X(Next, "Next") /* 117 */ \
    X(Not, "Not") /* 118 */ \
    X(Nothing, "Nothing") /* 119 */ \
    X(Null, "Null") /* 120 */ \
    X(On, "On") /* 121 */ \
    X(Open, "Open") /* 122 */ \
    X(Option, "Option") /* 123 */ \
    X(Optional, "Optional") /* 124 */ \
    X(Or, "Or") /* 125 */ \
    X(ParamArray, "ParamArray") /* 126 */ \
    X(PortInt, "PortInt") /* 127 */ \
    X(Preserve, "Preserve") /* 128 */ \
    X(Print, "Print") /* 129 */ \
    X(Private, "Private") /* 130 */ \
    X(Property, "Property") /* 131 */ \
    X(Public, "Public") /* 132 */ \
    X(Put, "Put") /* 133 */ \
    X(RaiseEvent, "RaiseEvent") /* 134 */ \
    X(ReDim, "ReDim") /* 135 */ \
    X(Rem, "Rem") /* 136 */ \
    X(Resume, "Resume") /* 137 */ \
    X(RSet, "RSet") /* 138 */ \
    X(Seek, "Seek") /* 139 */ \
    X(Select, "Select") /* 140 */ \
    X(Set, "Set") /* 141 */ \
    X(Sgn, "Sgn") /* 142 */ \
    X(Single, "Single") /* 143 */ \
    X(Static, "Static") /* 144 */ \
    X(Stop, "Stop") /* 145 */ \
    X(String, "String") /* 146 */ \
    X(Sub, "Sub") /* 147 */ \
    X(Then, "Then") /* 148 */ \
    X(To, "To") /* 149 */ \
    X(True, "True") /* 150 */ \
    X(Type, "Type") /* 151 */ \
    X(TypeOf, "TypeOf") /* 152 */ \
    X(UBound, "UBound") /* 153 */ \
    X(Unlock, "Unlock") /* 154 */ \
    X(Until, "Until") /* 155 */ \
    X(Variant, "Variant") /* 156 */ \
    X(Wend, "Wend") /* 157 */ \
    X(While, "While") /* 158 */ \
    X(With, "With") /* 159 */ \
    X(WithEvents, "WithEvents") /* 160 */ \
    X(Write, "Write") /* 161 */ \
    X(Xor, "Xor") /* 162 */ \
    X(Id, "id") /* 163 */ \
    X(Access, "Access") /* 164 */ \
    X(Alias, "Alias") /* 165 */ \
    X(All, "All") /* 166 */ \
    X(AppActivate, "AppActivate") /* 167 */ \
    X(Append, "Append") /* 168 */ \
    X(Array, "Array") /* 169 */ \
    X(Asc, "Asc") /* 170 */ \
    X(AscB, "AscB") /* 171 */ \
    X(AscW, "AscW") /* 172 */ \
    X(Atn, "Atn") /* 173 */ \
    X(Base, "Base") /* 174 */ \
    X(Beep, "Beep") /* 175 */ \
    X(Binary, "Binary") /* 176 */ \
    X(CallByName, "CallByName") /* 177 */ \
    X(ChDir, "ChDir") /* 178 */ \
    X(ChDrive, "ChDrive") /* 179 */ \
    X(Choose, "Choose") /* 180 */ \
    X(Chr, "Chr") /* 181 */ \
    X(ChrB, "ChrB") /* 182 */ \
    X(ChrW, "ChrW") /* 183 */ \
    X(Clipboard, "Clipboard") /* 184 */ \
    X(Command, "Command") /* 185 */ \
    X(Cos, "Cos") /* 186 */ \
    X(CreateObject, "CreateObject") /* 187 */ \
    X(CurDir, "CurDir") /* 188 */ \
    X(DateAdd, "DateAdd") /* 189 */ \
    X(DateDiff, "DateDiff") /* 190 */ \
    X(DatePart, "DatePart") /* 191 */ \
    X(DateSerial, "DateSerial") /* 192 */ \
    X(DateValue, "DateValue") /* 193 */ \
    X(Day, "Day") /* 194 */ \
    X(DDEExecute, "DDEExecute") /* 195 */ \
    X(DDEInitiate, "DDEInitiate") /* 196 */ \
    X(DDEPoke, "DDEPoke") /* 197 */ \
    X(DDERequest, "DDERequest") /* 198 */ \
    X(DDETerminate, "DDETerminate") /* 199 */ \
    X(DDETerminateAll, "DDETerminateAll") /* 200 */ \
    X(DeleteSetting, "DeleteSetting") /* 201 */ \
    X(Dialog, "Dialog") /* 202 */ \
    X(Dir, "Dir") /* 203 */ \
    X(DoEvents, "DoEvents") /* 204 */ \
    X(Environ, "Environ") /* 205 */ \
    X(Eof, "EOF") /* 206 */ \
    X(Err, "Err") /* 207 */ \
    X(Error, "Error") /* 208 */ \
    X(Eval, "Eval") /* 209 */ \
    X(Execute, "Execute") /* 210 */ \
    X(Exp, "Exp") /* 211 */ \
    X(Explicit, "Explicit") /* 212 */ \
    X(FileAttr, "FileAttr") /* 213 */ \
    X(FileCopy, "FileCopy") /* 214 */ \
    X(FileDateTime, "FileDateTime") /* 215 */ \
    X(FileLen, "FileLen") /* 216 */ \
    X(Filter, "Filter") /* 217 */ \
    X(Format, "Format") /* 218 */ \
    X(FreeFile, "FreeFile") /* 219 */ \
    X(GetAllSettings, "GetAllSettings") /* 220 */ \
    X(GetAttr, "GetAttr") /* 221 */ \
    X(GetFilePath, "GetFilePath") /* 222 */ \
    X(GetObjectFunction, "GetObject") /* 223 */ \
    X(GetSetting, "GetSetting") /* 224 */ \
    X(Hex, "Hex") /* 225 */ \
    X(Hour, "Hour") /* 226 */ \
    X(IIf, "IIf") /* 227 */ \
    X(InputBox, "InputBox") /* 228 */ \
    X(InStr, "InStr") /* 229 */ \
    X(InStrB, "InStrB") /* 230 */ \
    X(InStrRev, "InStrRev") /* 231 */ \
    X(IsArray, "IsArray") /* 232 */ \
    X(IsDate, "IsDate") /* 233 */ \
    X(IsEmpty, "IsEmpty") /* 234 */ \
    X(IsError, "IsError") /* 235 */ \
    X(IsMissing, "IsMissing") /* 236 */ \
    X(IsNull, "IsNull") /* 237 */ \
    X(IsNumeric, "IsNumeric") /* 238 */ \
    X(IsObject, "IsObject") /* 239 */ \
    X(Join, "Join") /* 240 */ \
    X(Kill, "Kill") /* 241 */ \
    X(LCase, "LCase") /* 242 */ \
    X(Left, "Left") /* 243 */ \
    X(LeftB, "LeftB") /* 244 */ \
    X(Lib, "Lib") /* 245 */ \
    X(Line, "Line") /* 246 */ \
    X(Loc, "Loc") /* 247 */ \
    X(LOF, "LOF") /* 248 */ \
    X(Log, "Log") /* 249 */ \
    X(LTrim, "LTrim") /* 250 */ \
    X(MacroDir, "MacroDir") /* 251 */ \
    X(MacroRun, "MacroRun") /* 252 */ \
    X(MacroRunThis, "MacroRunThis") /* 253 */ \
    X(Mid, "Mid") /* 254 */ \
    X(MidB, "MidB") /* 255 */ \
    X(Minute, "Minute") /* 256 */ \
    X(MkDir, "MkDir") /* 257 */ \
    X(Module, "Module") /* 258 */ \
    X(Month, "Month") /* 259 */ \
    X(MonthName, "MonthName") /* 260 */ \
    X(MsgBox, "MsgBox") /* 261 */ \
    X(Name, "Name") /* 262 */ \
    X(Now, "Now") /* 263 */ \
    X(Object, "Object") /* 264 */ \
    X(Oct, "Oct") /* 265 */ \
    X(Output, "Output") /* 266 */ \
    X(QBColor, "QBColor") /* 267 */ \
    X(Random, "Random") /* 268 */ \
    X(Randomize, "Randomize") /* 269 */ \
    X(Read, "Read") /* 270 */ \
    X(Replace, "Replace") /* 271 */ \
    X(Reset, "Reset") /* 272 */ \
    X(RGB, "RGB") /* 273 */ \
    X(Right, "Right") /* 274 */ \
    X(RightB, "RightB") /* 275 */ \
    X(RmDir, "RmDir") /* 276 */ \
    X(Rnd, "Rnd") /* 277 */ \
    X(Round, "Round") /* 278 */ \
    X(RTrim, "RTrim") /* 279 */ \
    X(SaveSetting, "SaveSetting") /* 280 */ \
    X(Second, "Second") /* 281 */ \
    X(SendKeys, "SendKeys") /* 282 */ \
    X(SetAttr, "SetAttr") /* 283 */ \
    X(Shared, "Shared") /* 284 */ \
    X(Shell, "Shell") /* 285 */ \
    X(Sin, "Sin") /* 286 */ \
    X(Space, "Space") /* 287 */ \
    X(Split, "Split") /* 288 */ \
    X(Sqr, "Sqr") /* 289 */ \
    X(Step, "Step") /* 290 */ \
    X(Str, "Str") /* 291 */ \
    X(StrComp, "StrComp") /* 292 */ \
    X(StrConv, "StrConv") /* 293 */ \
    X(StrReverse, "StrReverse") /* 294 */ \
    X(Tan, "Tan") /* 295 */ \
    X(Time, "Time") /* 296 */ \
    X(Timer, "Timer") /* 297 */ \
    X(TimeSerial, "TimeSerial") /* 298 */ \
    X(TimeValue, "TimeValue") /* 299 */ \
    X(Trim, "Trim") /* 300 */ \
    X(TypeName, "TypeName") /* 301 */ \
    X(UCase, "UCase") /* 302 */ \
    X(UserDialog, "UserDialog") /* 303 */ \
    X(Val, "Val") /* 304 */ \
    X(VarType, "VarType") /* 305 */ \
    X(Wait, "Wait") /* 306 */ \
    X(Weekday, "Weekday") /* 307 */ \
    X(WeekdayName, "WeekdayName") /* 308 */ \
    X(Win16, "Win16") /* 309 */ \
    X(Win32, "Win32") /* 310 */ \
    X(Year, "Year") /* 311 */ \
    X(CancelButton, "CancelButton") /* 312 */ \
    X(CheckBox, "CheckBox") /* 313 */ \
    X(ComboBox, "ComboBox") /* 314 */ \
    X(DropListBox, "DropListBox") /* 315 */ \
    X(GroupBox, "GroupBox") /* 316 */ \
    X(ListBox, "ListBox") /* 317 */ \
    X(OKButton, "OKButton") /* 318 */ \
    X(OptionButton, "OptionButton") /* 319 */ \
    X(OptionGroup, "OptionGroup") /* 320 */ \
    X(Picture, "Picture") /* 321 */ \
    X(PushButton, "PushButton") /* 322 */ \
    X(Text, "Text") /* 323 */ \
    X(TextBox, "TextBox") /* 324 */ \
    X(DlgControlId, "DlgControlId") /* 325 */ \
    X(DlgEnable, "DlgEnable") /* 326 */ \
    X(DlgFocus, "DlgFocus") /* 327 */ \
    X(DlgListBoxArray, "DlgListBoxArray") /* 328 */ \
    X(DlgSetPicture, "DlgSetPicture") /* 329 */ \
    X(DlgText, "DlgText") /* 330 */ \
    X(DlgValue, "DlgValue") /* 331 */ \
    X(DlgVisible, "DlgVisible") /* 332 */ \
    X(DlgCount, "DlgCount") /* 333 */ \
    X(DlgEnd, "DlgEnd") /* 334 */ \
    X(DlgName, "DlgName") /* 335 */ \
    X(DlgNumber, "DlgNumber") /* 336 */ \
    X(DlgType, "DlgType") /* 337 */ \
    X(AboutBrannocBasic, "AboutBrannocBasic") /* 338 */ \
    X(CallersLine, "CallersLine") /* 339 */

enum class Token : std::uint16_t {
#define BRANNOC_TOKEN_ENUM(name, text) name,
    BRANNOC_TOKEN_TABLE(BRANNOC_TOKEN_ENUM)
#undef BRANNOC_TOKEN_ENUM
};

inline constexpr int kTokenCount = 340;
inline constexpr int kFirstReservedWord = 31;
inline constexpr int kLastReservedWord = 162;
inline constexpr int kFirstRecognisedName = 164;
inline constexpr int kLastRecognisedName = 339;

static_assert(static_cast<int>(Token::Reserved) == 30);
static_assert(static_cast<int>(Token::Abs) == kFirstReservedWord);
static_assert(static_cast<int>(Token::Xor) == kLastReservedWord);
static_assert(static_cast<int>(Token::Id) == 163);
static_assert(static_cast<int>(Token::Access) == kFirstRecognisedName);
static_assert(static_cast<int>(Token::CallersLine) == kLastRecognisedName);
static_assert(static_cast<int>(Token::Semicolon) == 29);

constexpr int TokenNumber(Token token) { return static_cast<int>(token); }

// A token that may stand where the grammar asks for a name: an identifier or a recognised name.
constexpr bool IsNameToken(Token token) { return TokenNumber(token) >= TokenNumber(Token::Id); }

constexpr bool IsReservedWord(Token token)
{
    return TokenNumber(token) >= kFirstReservedWord && TokenNumber(token) <= kLastReservedWord;
}

// The table text of a token number; empty for 0 and for numbers outside the table.
std::string_view KeywordText(int number);
inline std::string_view KeywordText(Token token) { return KeywordText(TokenNumber(token)); }

// Case-insensitive keyword lookup through the keyword hash; Token::Id when the text is no keyword.
Token LookupKeyword(std::string_view text);
// A word of source text as the lexer reads it: a keyword, or Token::Id. The table's texts for token
// kinds below the reserved words ("operator", "literal-...") name kinds, not words, so a word spelled
// like one of them is an identifier.
Token LookupWord(std::string_view text);

// The keyword hash function: pairs of characters, case folded by the low five bits, 11 bits of result.
unsigned KeywordHash(std::string_view text);

} // namespace brannoc
