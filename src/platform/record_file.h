// A file of fixed size, written in place: what was written is on the disk when the procedure returns.
//
// Each procedure opens the file, does its work and closes it, so nothing of it is held between two of them, and a file
// that was moved, or whose disk was pulled, is noticed by the next.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ombrix {

/// Makes the file, or empties it, and fills it. "" when all of it is on the disk, otherwise the system's words.
std::string MakeRecordFile(const std::string &path, std::string_view bytes);

/// Puts bytes into a file that is there, at a place counted from 0. A file that ends before the place is filled up with
/// blanks. "" when they are on the disk, otherwise the system's words; what stands at the place then isn't known.
std::string WriteRecord(const std::string &path, std::size_t place, std::string_view bytes);

/// Whether records could be written into a file that is there: "", otherwise the system's words. Changes nothing.
std::string TryRecordFile(const std::string &path);

/// The first `limit` bytes of the file, or all when there are fewer; nothing when it isn't there or can't be read.
std::optional<std::string> ReadRecordFile(const std::string &path, std::size_t limit);

}  // namespace ombrix
