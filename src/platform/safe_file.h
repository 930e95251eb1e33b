// Files that are either the complete old one or the complete new one, whatever happens.
#pragma once

#include <optional>
#include <string>

namespace ombrix {

enum class FileState { Missing, Readable, Unreadable };

/// Whether a file is there and can be read. A directory counts as unreadable, and so does a link to nothing: the file
/// behind it may come back.
FileState StateOfFile(const std::string &path);

/// The file's bytes; nothing when it is missing or can't be read.
std::optional<std::string> ReadFile(const std::string &path);

/// Writes a file `.<name>.new` beside it, has it on the disk and renames it. "" on success, otherwise the system's
/// words, and the old file is as it was. A program that was killed may leave the file beside it; the next one that writes
/// takes it away.
std::string WriteFile(const std::string &path, const std::string &bytes);

}  // namespace ombrix
