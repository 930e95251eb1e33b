// The small files in which older stations kept their settings. They are read once and never written.
#pragma once

#include <string>
#include <vector>

namespace ombrix {

/// All fields of a file: separated by commas and line ends, without blanks and one pair of double quotes around them.
/// Empty lines have none. Nothing when the file can't be read.
std::vector<std::string> FieldsOfOldFile(const std::string &path);

/// Field `index`, "" when there are fewer.
std::string FieldOfOldFile(const std::string &path, std::size_t index);

/// The first line whole, without blanks and one pair of double quotes around it; "" when there is none.
std::string FirstLineOfOldFile(const std::string &path);

}  // namespace ombrix
