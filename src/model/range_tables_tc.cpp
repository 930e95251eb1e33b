// Steps of the thermocouple boards.
#include "model/range_records.h"
#include "model/step_ids.h"

namespace ombrix {
namespace {

// position, step, code, word, value, target, filter key, filter
// clang-format off
constexpr RangeRecord kTcTable[] = {
    { 0, Step::InitNvm,    "60",  0, "",              0, "",   ""},
    { 1, Step::FirstCycle, "60",  0, "",              0, "FC", ""},
    { 2, Step::LoGainGnd,  "60", 26, "0 V",           0, "1A", "00106"},
    { 3, Step::Range56mV,  "60", 33, "56.7 mV",   60000, "21", "00106"},
    { 4, Step::HiGainGnd,  "65", 47, "0 V",           0, "2F", "00106"},
    { 5, Step::Range17mV,  "65", 36, "17.475 mV", 60000, "24", "00106"},
    { 6, Step::GainOffset, "",    0, "",              0, "QD", ""},
    { 7, Step::SendFile,   "",    0, "",              0, "",   ""},
    {14, Step::OffsetOnly, "",    0, "",              0, "OO", ""},
    {15, Step::MeterType,  "",    0, "",              0, "",   ""},
    {16, Step::ViewNvm,    "",    0, "",              0, "",   ""},
};

constexpr RangeRecord kTempTable[] = {
    { 0, Step::InitNvm,    "60",  0, "",            0, "",   ""},
    { 1, Step::FirstCycle, "60",  0, "",            0, "FC", ""},
    { 2, Step::LoGainGnd,  "60", 26, "0 V",         0, "1A", "00108"},
    { 3, Step::Range75mV,  "60", 33, "75.6 mV", 80000, "21", "00108"},
    { 4, Step::RtdCurrent, "60",  0, "",            0, "RT", "00107"},
    { 5, Step::HiGainGnd,  "65", 47, "0 V",         0, "2F", "00108"},
    { 6, Step::Range23mV,  "65", 36, "23.3 mV", 80000, "24", "00108"},
    { 7, Step::GainOffset, "",    0, "",            0, "QD", ""},
    { 8, Step::SendFile,   "",    0, "",            0, "",   ""},
    {14, Step::OffsetOnly, "",    0, "",            0, "OO", ""},
    {15, Step::MeterType,  "",    0, "",            0, "",   ""},
    {16, Step::ViewNvm,    "",    0, "",            0, "",   ""},
};

// clang-format on

}  // namespace

constinit const std::span<const RangeRecord> kTcRecords = kTcTable;
constinit const std::span<const RangeRecord> kTempRecords = kTempTable;

}  // namespace ombrix
