// The words of the program as its sources hold them, and those of the guide: what tests of the guide compare.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace ombrix::test {

/// A text in quotes in a source, adjacent ones joined.
struct Literal {
    std::string file;  ///< below the folder that was read
    int line = 0;
    std::string text;                ///< without escapes; a line end or a tab is a blank
    std::vector<std::string> calls;  ///< the names of the calls around it, the outermost first
    bool data = false;               ///< in braces that hold values
    bool red = false;                ///< and one of these values is `true`
};

/// Those of all .h and .cpp below a folder. Comments and includes hold none.
std::vector<Literal> LiteralsBelow(const std::filesystem::path &folder);
/// Those of one source.
std::vector<Literal> LiteralsIn(const std::string &source, const std::string &file);

/// Each run of blanks and line ends is one blank, and none stands at the ends.
std::string Plain(const std::string &text);
/// The fixed parts of a text with values: what stands between "..." (the guide) or %1, %s and the like (the program).
std::vector<std::string> FixedParts(const std::string &text);
/// Two words or more, in small letters: what a person reads, and no name.
bool IsProse(const std::string &text);
/// Made of nothing but whole texts of `pieces`, in any order, blanks between them free.
bool IsMadeOf(const std::string &text, const std::vector<std::string> &pieces);

/// A file as a whole; fails the test when it can't be read.
std::string TextOf(const std::filesystem::path &file);
/// The rows of a page's tables, without their heads: each its cells.
std::vector<std::vector<std::string>> RowsOfTables(const std::string &markdown);
/// What stands in quotes, outside of code.
std::vector<std::string> QuotedIn(const std::string &markdown);

}  // namespace ombrix::test
