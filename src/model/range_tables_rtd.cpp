// Steps of the RTD board.
#include "model/range_records.h"
#include "model/step_ids.h"

namespace ombrix {
namespace {

// position, step, code, word, value, target, filter key, filter
// clang-format off
constexpr RangeRecord kRtdTable[] = {
    { 0, Step::InitNvm,       "E0",  0, "",               0, "",   ""},
    { 1, Step::FirstCycle,    "E0",  0, "",               0, "FC", ""},
    { 2, Step::Gnd,           "E0", 26, "0 V",            0, "1A", "00106"},
    { 3, Step::Pt100,         "50", 37, "345.28 OHM", 12920, "25", "00106"},
    { 4, Step::Range20Ohms,   "E0", 31, "20 OHM",     80000, "1F", "00106"},
    { 5, Step::Range200Ohms,  "E1", 32, "200 OHM",    80000, "20", "00106"},
    { 6, Step::Range2kOhms,   "E2", 33, "2 KOHM",     80000, "21", "00106"},
    { 7, Step::Range20kOhms,  "E3", 34, "20 KOHM",    80000, "22", "00106"},
    { 8, Step::Range200kOhms, "E4", 35, "100 KOHM",   40000, "23", "00106"},
    { 9, Step::SendFile,      "",    0, "",               0, "",   ""},
    {15, Step::MeterType,     "",    0, "",               0, "",   ""},
    {16, Step::ViewNvm,       "",    0, "",               0, "",   ""},
};

// clang-format on

}  // namespace

constinit const std::span<const RangeRecord> kRtdRecords = kRtdTable;

}  // namespace ombrix
