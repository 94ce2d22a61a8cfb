#pragma once
// The forms a statement over Variants has been given (RegisterProgram::formsLeft and observed) and the
// choice of the next one when the current form keeps giving up. Loops change the kinds of their
// Variants back and forth (a counter reset to an Integer that grows past the Integer range, a product
// that passes the Long range and comes back): a form made earlier for the kinds the Variants hold again
// is taken up before a new one is made, and once no new form may be made the statement keeps going
// round its forms instead of running as its object from then on.
#include "code/RegisterCode.h"

namespace brannoc {

// Points statement `index` at the form starting at operation `start`: its entry operation jumps there,
// and its marker, while it is a plain marker, goes there itself (one dispatch fewer for each run).
void EnterFormAt(RegisterProgram& program, int index, int start);

// Makes statement `index`'s marker a plain one or one that goes straight to its form, as its entry
// operation stands now; a marker in another role (a replaced statement) is left as it is. The ends of
// forms that go on to the statement follow the marker (copies of it, or jumps to it).
void MatchMarkerToEntry(RegisterProgram& program, int index);

// Notes that statement `index` was given the form starting at operation `start`, the last one made (its
// end, the jump to the next statement, then follows that statement's marker).
void RecordObservedForm(RegisterProgram& program, int index, int start);

// The current form of statement `index` has given up often enough: its entry operation (the one after
// its marker) is pointed at another form made earlier, at a new form (kObserve) or, with neither, at
// the statement object (kGeneral).
void ChooseNextForm(RegisterProgram& program, int index);

} // namespace brannoc
