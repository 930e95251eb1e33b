// The rows behind the lookups of range_tables.h: one record for each used position of a board.
#pragma once

#include <cstdint>
#include <span>

namespace ombrix {

struct RangeRecord {
    int position;
    int stepId;
    const char *code;           ///< range code, "" counts as the first of the board's list
    int word;                   ///< word that the step trims, 0 none
    const char *value;          ///< calibrator value without its frequency, "" counts as "0 V"
    std::int32_t target;        ///< display counts
    const char *filterKey;      ///< "" none
    const char *filterDefault;  ///< "" none: the position runs with the default of a bad code
};

extern const std::span<const RangeRecord> kDcRecords;
extern const std::span<const RangeRecord> kAcRecords;
extern const std::span<const RangeRecord> kAc2Records;
extern const std::span<const RangeRecord> kAc3Records;
extern const std::span<const RangeRecord> kLcRecords;
extern const std::span<const RangeRecord> kTcRecords;
extern const std::span<const RangeRecord> kTempRecords;
extern const std::span<const RangeRecord> kRtdRecords;
extern const std::span<const RangeRecord> kVfRecords;

/// The records of a board, none outside 0..8.
std::span<const RangeRecord> RecordsOfBoard(int board);

}  // namespace ombrix
