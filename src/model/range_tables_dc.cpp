// Steps of the DC board.
#include "model/range_records.h"
#include "model/step_ids.h"

namespace ombrix {
namespace {

// position, step, code, word, value, target, filter key, filter
// clang-format off
constexpr RangeRecord kDcTable[] = {
    { 0, Step::InitNvm,    "60",  0, "",           0, "",   ""},
    { 1, Step::FirstCycle, "60",  0, "",           0, "FC", ""},
    { 2, Step::Gnd,        "60", 26, "0 V",        0, "1A", "00108"},
    { 3, Step::Ref200mV,   "60", 25, "200 mV", 80000, "19", "00108"},
    { 4, Step::Range2V,    "61", 32, "2 V",    80000, "20", "00108"},
    { 5, Step::Range20V,   "62", 33, "20 V",   80000, "21", "00108"},
    { 6, Step::Range200V,  "63", 34, "200 V",  80000, "22", "00108"},
    { 7, Step::Range660V,  "64", 35, "660 V",  26400, "23", "00108"},
    { 8, Step::Range2mA,   "70", 37, "2 mA",   80000, "25", "00108"},
    { 9, Step::Range20mA,  "71", 38, "20 mA",  80000, "26", "00108"},
    {10, Step::Range200mA, "72", 39, "200 mA", 80000, "27", "00108"},
    {11, Step::Range5A,    "73", 40, "5 A",    20000, "28", "00108"},
    {12, Step::Ratio,      "60",  0, "",           0, "RA", ""},
    {13, Step::SendFile,   "60",  0, "",           0, "",   ""},
    {14, Step::Range200mV, "60", 31, "200 mV", 80000, "1F", "00108"},
    {15, Step::Verify,     "",    0, "",           0, "VE", "00117"},
    {16, Step::ViewNvm,    "",    0, "",           0, "",   ""},
};

// clang-format on

}  // namespace

constinit const std::span<const RangeRecord> kDcRecords = kDcTable;

}  // namespace ombrix
