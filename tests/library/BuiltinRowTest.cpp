#include "BuiltinRows.h"

namespace brannoc::testing {
namespace {

// The rows of every family (instantiated in the family's test file) run through this test.
TEST_P(BuiltinRowTest, PrintsOrRaises) { CheckBuiltinRow(GetParam()); }

} // namespace
} // namespace brannoc::testing
