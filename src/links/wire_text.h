// A trace as text, one row a line, for people and to be read back:
//
//     2026-11-22T10:15:03.123Z  meter       sent      "*1X4142Z\r"  read words 20..17
//
// Control characters stand as \r, \n, \t and \xFF; what means nothing has no last column.
#pragma once

#include "links/wire_meaning.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ombrix {

/// "10:15:03.123" in UTC; with `date` "2026-11-22T10:15:03.123Z".
std::string MomentText(std::int64_t micros, bool date);
std::string_view NameOfLine(TraceLine line);
std::string_view NameOfWay(ByteWay way);
/// Bytes with what can't be seen shown.
std::string ShownBytes(std::string_view bytes);

/// Without a line end.
std::string WireText(const WireRow &row);
/// Nothing for a line that isn't one of these. The moment has milliseconds.
std::optional<WireRow> ParseWireText(std::string_view line);
/// The rows of a whole text; lines of another kind are passed over.
std::vector<WireRow> ParseWireTexts(std::string_view text);

/// From now on each row is written behind what stands in a file, as soon as it is complete. "" or the system's words.
/// When that can't be done later any more, the status line says so once.
std::string WriteTraceTo(const std::string &path);
/// Writes what is unfinished and closes the file.
void EndTraceText();

}  // namespace ombrix
