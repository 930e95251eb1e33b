// What the station knows of each board: its steps, their words, values, targets, range codes and filter codes.
//
// All lookups take a position 0..16 or a step id and use the current SCType (and CalibTab 5 for the analog row). For a
// board outside 0..8 they return 0, "" or -1 by their type.
#pragma once

#include <string>

namespace ombrix {

/// "DC", "AC", "LC", "TC", "VF", "AC2", "AC3", "Temp", "RTD", "AN"; "" outside 0..9.
std::string BoardName(int board);
/// Exact compare; -1 when unknown.
int BoardIndex(const std::string &name);
/// The tab of a board: AC2 and AC3 on the AC tab, Temp and RTD on the TC tab.
int TabOfBoard(int board);

/// Title of a step id 0..60, "" otherwise.
std::string StepName(int stepId);
/// Step id at a position, -1 for an unused or unknown one.
int StepIdAtPosition(int position);
/// Last position of the calibration sequence.
int StepButtonCount();

/// Entry of the board's range code list: two hex digits.
std::string RangeCodeText(int index);
int RangeCodeIndexAtPosition(int position);
/// 0: the step trims no word.
int NvmWordAtPosition(int position);
/// What is sent to the calibrator; ", 300 Hz" is added on AC, AC2, AC3.
std::string CalValueAtPosition(int position);
/// The reading that the meter must show, in display counts.
int TargetCountsAtPosition(int position);
/// Value of the display setup words for a step; 4 for every step and board without a rule of its own.
int SampleCountForStep(int stepId);

/// The filter code in force, five characters; "00118" where a position has none.
std::string FilterCodeAtPosition(int position);

/// For the loader of the settings: key ("1A") and default code of a board's position; "" where there is none.
struct FilterDefault {
    std::string key;
    std::string code;
};
FilterDefault DefaultFilterAt(int board, int position);
void SetFilterCode(int board, int position, const std::string &code);
void ClearFilterCodes();

}  // namespace ombrix
