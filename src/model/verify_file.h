// What a verified meter leaves behind: which ranges are verified, the file of their readings, the table printed from it.
//
// The file holds 27 records of 6 characters, nothing between them: a reading, with blanks in front; 6 blanks where none
// was taken. Records 1 to 18 are those of the DC board, plus and minus of each range, 1 to 10 those of the LC board
// likewise; 19 to 27 are those of the AC boards, one for each range. Boards are counted as SCType counts them.
#pragma once

#include "session/outlets.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ombrix {

constexpr std::size_t kVerifyFileSize = 162;
constexpr int kVerifyRanges = 9;
constexpr int kVerifySlots = 18;  ///< two for each range: plus or only reading, minus reading

// ---- the ranges ----

/// 8, on LC 4.
int VerifyLastButton(int board);
/// DC and LC take a reading at the positive and one at the negative value.
bool VerifyTwoPolarity(int board);
/// Index in the board's list of ranges.
int VerifyRangeIndex(int board, int button);
/// "200 mV"
std::string VerifyRangeName(int board, int button);
/// What the calibrator is given: "200 mV", "200 mV, 300 Hz".
std::string VerifyInput(int board, int button);

// ---- the file ----

/// A new file: no reading taken.
std::string EmptyVerifyFile();
/// Nothing but blanks, digits and signs, and no more of them than such a file has.
bool LooksLikeVerifyFile(std::string_view bytes);
/// 1 to 27, of a slot of the board.
int VerifyRecordOf(int board, int slot);
/// Where a record begins, counted from 0.
std::size_t VerifyPlaceOf(int record);
/// The last six characters of a reading, with blanks in front.
std::string VerifyRecordText(std::string_view reading);
/// The board's readings by slot, six characters each; blanks where the file ends early and where the board has no slot.
std::array<std::string, kVerifySlots> VerifyReadings(std::string_view bytes, int board);
/// The range to go on with: that of the first slot without a reading, of a minus reading at 3, 7, 11 and 15 the next one.
/// 0 when all are taken.
int FirstEmptyRange(std::string_view bytes, int board);

// ---- the table ----

/// The printed page, made from the file alone.
std::vector<PrintedLine> VerifyTable(std::string_view bytes, int board, const std::string &dpmId,
                                     const std::string &fileName);

}  // namespace ombrix
