' A Const holds what its expression gives when it runs: each operator's result kind, a Date plus a number
' stays a Date, Not keeps a Boolean, a Single or Currency operand keeps its kind, and a text beside a
' number is aligned as for operands of fixed kinds.
Const NextDay = #1/2/2000# + 1, Days = #1/3/2000# - #1/1/2000#
Const BoolSum = True + True, BoolAnd = True And True, BoolNot = Not True
Const SingleSum = 1.5! + 1, Money = 1.5@ * 2, MoneyByDouble = 1.5@ * 1.5
Const Widened = 32767 + 1, LongWidened = 2147483647 + 1, Negated = -(-32768)
Const TextFirst = "5" + 1, NumberFirst = 1 + "5", Ordered = "ab" < "abc"
Const Halves = 7.5 \ 2, HalfRemainder = 6.5 Mod 4, Bits = 6 And 3.4, NotFraction = Not 1.6

Sub Main
    Debug.Print NextDay; TypeName(NextDay); Days; TypeName(Days)
    Debug.Print BoolSum; TypeName(BoolSum); BoolAnd; TypeName(BoolAnd); BoolNot; TypeName(BoolNot)
    Debug.Print SingleSum; TypeName(SingleSum); Money; TypeName(Money); MoneyByDouble; TypeName(MoneyByDouble)
    Debug.Print Widened; TypeName(Widened); LongWidened; TypeName(LongWidened); Negated; TypeName(Negated)
    Debug.Print TextFirst; TypeName(TextFirst); NumberFirst; TypeName(NumberFirst); Ordered
    Debug.Print Halves; HalfRemainder; Bits; TypeName(Bits); NotFraction; TypeName(NotFraction)
    Dim a(NextDay - #1/1/2000# To Widened \ 8192) As Integer
    Debug.Print LBound(a); UBound(a)
    Debug.Print "end"
End Sub
