// A folder in memory for targets that read files by their name.
#pragma once

#include <string>
#include <string_view>

namespace ombrix::fuzz {

/// An empty folder of this process, made once, in memory where the system has such a place; gone at the end.
const std::string &OwnFolder();
/// A file in it with these bytes; its path.
std::string WriteFileOfCase(const std::string &name, std::string_view bytes);
/// Nothing is in it any more.
void EmptyOwnFolder();

}  // namespace ombrix::fuzz
