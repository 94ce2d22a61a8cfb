#pragma once
// The skeleton of a dialog function the editor offers to add for a dialog that names one.
#include <string>
#include <vector>

namespace brannoc::ide {

inline constexpr unsigned kFirstSkeletonString = 522;
inline constexpr unsigned kLastSkeletonString = 533;

// A line feed, then each skeleton line with its own line end; "<NAME>" becomes the function's name and
// the third parameter is declared SuppValue& (a Long).
std::string SkeletonText(const std::string& name, const std::vector<std::string>& lines);
// The skeleton made from the string table's lines.
std::string SkeletonText(const std::string& name);

// Whether the lines declare a Sub or Function of that name (Private, Public and Static allowed before).
bool HasProcedure(const std::vector<std::string>& lines, const std::string& name);

} // namespace brannoc::ide
