// Steps of the load cell board.
#include "model/range_records.h"
#include "model/step_ids.h"

namespace ombrix {
namespace {

// position, step, code, word, value, target, filter key, filter
// clang-format off
constexpr RangeRecord kLcTable[] = {
    { 0, Step::InitNvm,     "D0",  0, "",           0, "",   ""},
    { 1, Step::FirstCycle,  "D0",  0, "",           0, "FC", ""},
    { 2, Step::GndHalfVolt, "D4", 26, "0 V",        0, "1A", "00108"},
    { 3, Step::Off20mV,     "D0", 30, "0 V",        0, "1E", "00108"},
    { 4, Step::Ref20mV,     "D0", 25, "20 mV",  80000, "19", "00108"},
    { 5, Step::Range50mV,   "D1", 32, "40 mV",  80000, "20", "00108"},
    { 6, Step::Range100mV,  "D2", 33, "100 mV", 80000, "21", "00108"},
    { 7, Step::Range250mV,  "D3", 34, "200 mV", 80000, "22", "00108"},
    { 8, Step::Range500mV,  "D4", 35, "400 mV", 80000, "23", "00108"},
    { 9, Step::Ratio,       "D0",  0, "",           0, "RA", ""},
    {10, Step::SendFile,    "D0",  0, "",           0, "",   ""},
    {14, Step::TouchUp,     "D0", 31, "20 mV",  80000, "1F", "00108"},
    {15, Step::Verify,      "",    0, "",           0, "VE", "00117"},
    {16, Step::ViewNvm,     "",    0, "",           0, "",   ""},
};

// clang-format on

}  // namespace

constinit const std::span<const RangeRecord> kLcRecords = kLcTable;

}  // namespace ombrix
