// Nominal slopes and nominal words: what the station has learned of a good meter. Defaults until the settings overlay
// them.
#pragma once

#include <memory>
#include <string>

namespace ombrix {

extern bool SlopesDirty;
extern bool NominalDirty;

/// Tables back at their defaults, nothing dirty.
void InitNominals();
void InitNominalSlopes();
void InitNominalWords();

/// Word counts for one display count, of the current board; 0 for a word outside 25..50.
float GetNominalSlope(int word);
void SetNominalSlope(int word, float value);
float NominalSlopeOf(int board, int word);
void SetNominalSlopeOf(int board, int word, float value);
float DefaultSlopeOf(int board, int word);

/// Four hex digits, "0000" outside 25..50. On VF the words 195, 198, 201 have twelve; others there give
/// "000000100000". Setting any other word, or a text of another length, does nothing.
std::string GetNominalWord(int word);
void SetNominalWord(int word, const std::string &hex);
std::string NominalWordOf(int board, int word);
void SetNominalWordOf(int board, int word, const std::string &hex);
std::string DefaultNominalWordOf(int board, int word);

/// All slopes and words as they stand, and back to them.
struct NominalTables;
std::shared_ptr<const NominalTables> CopyNominals();
void RestoreNominals(const NominalTables &nominals);

/// The constant 12-digit texts of the VF ranges, index 0..2.
std::string FirstCyclePattern(int index);

}  // namespace ombrix
