// Steps of the VF board of the counter. Its output has no target counts in the table.
#include "model/range_records.h"
#include "model/step_ids.h"

namespace ombrix {
namespace {

// position, step, code, word, value, target, filter key, filter
// clang-format off
constexpr RangeRecord kVfTable[] = {
    { 0, Step::InitNvm,    "81",   0, "",      0, "",   ""},
    { 1, Step::Nominalize, "81",   0, "",      0, "NM", ""},
    { 2, Step::Vf4To20mA,  "81", 195, "20 mA", 0, "C3", "00108"},
    { 3, Step::Vf0To1mA,   "91", 198, "1 mA",  0, "C6", "00108"},
    { 4, Step::Vf0To10V,   "A1", 201, "10 V",  0, "C9", "00108"},
    {14, Step::GetConfig,  "",     0, "",      0, "",   ""},
    {15, Step::ViewNvm,    "",     0, "",      0, "",   ""},
    {16, Step::RestConfig, "",     0, "",      0, "",   ""},
};

// clang-format on

}  // namespace

constinit const std::span<const RangeRecord> kVfRecords = kVfTable;

}  // namespace ombrix
