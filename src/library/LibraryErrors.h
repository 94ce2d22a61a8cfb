#pragma once
// Run-time error numbers that the built-in functions raise beside those of the value layer
// (values/ValueError.h).

namespace brannoc {

enum LibraryErrorNumber : long {
    kErrorArrayNotDimensioned = 10022,
    kErrorArrayIndexOutOfRange = 10023,
    kErrorStringIndex = 10619,
};

} // namespace brannoc
