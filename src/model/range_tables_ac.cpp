// Steps of the AC boards. Every value is given at 300 Hz.
#include "model/range_records.h"
#include "model/step_ids.h"

namespace ombrix {
namespace {

// position, step, code, word, value, target, filter key, filter
// clang-format off
constexpr RangeRecord kAcTable[] = {
    { 0, Step::InitNvm,    "80",  0, "0 V",        0, "",   ""},
    { 1, Step::Gnd,        "81", 26, "100 mV",  4000, "1A", "00108"},
    { 2, Step::Range2V,    "81", 32, "1.8 V",  72000, "20", "00108"},
    { 3, Step::Gnd,        "81", 26, "100 mV",  4000, "1A", "00108"},
    { 4, Step::Range2V,    "81", 32, "1.8 V",  72000, "20", "00108"},
    { 5, Step::Range200mV, "80", 31, "180 mV", 72000, "1F", "00108"},
    { 6, Step::Range20V,   "82", 33, "18 V",   72000, "21", "00108"},
    { 7, Step::Range200V,  "83", 34, "180 V",  72000, "22", "00108"},
    { 8, Step::Range660V,  "84", 35, "660 V",  26400, "23", "00108"},
    { 9, Step::Range2mA,   "90", 37, "1.8 mA", 72000, "25", "00108"},
    {10, Step::Range20mA,  "91", 38, "18 mA",  72000, "26", "00108"},
    {11, Step::Range200mA, "92", 39, "180 mA", 72000, "27", "00108"},
    {12, Step::Range5A,    "93", 40, "3.5 A",  56000, "28", "00108"},
    {13, Step::SendFile,   "",    0, "",           0, "",   ""},
    {14, Step::FirstCycle, "",    0, "",           0, "FC", ""},
    {15, Step::Verify,     "",    0, "",           0, "VE", "00117"},
    {16, Step::ViewNvm,    "",    0, "",           0, "",   ""},
};

constexpr RangeRecord kAc2Table[] = {
    { 0, Step::InitNvm,    "80",  0, "0 V",        0, "",   ""},
    { 1, Step::ZeroAdjust, "80",  0, "0 V",        0, "ZA", "00108"},
    { 2, Step::TrimR13R14, "80",  0, "200 mV",     0, "TR", "00108"},
    { 3, Step::Gnd,        "80", 26, "2 mV",     800, "1A", "00106"},
    { 4, Step::Range200mV, "80", 31, "200 mV", 80000, "1F", "00106"},
    { 5, Step::Range2V,    "81", 32, "2 V",    80000, "20", "00106"},
    { 6, Step::Range20V,   "82", 33, "20 V",   80000, "21", "00106"},
    { 7, Step::Range200V,  "83", 34, "200 V",  80000, "22", "00106"},
    { 8, Step::Range600V,  "84", 35, "600 V",  24000, "23", "00106"},
    { 9, Step::Range2mA,   "90", 37, "2 mA",   80000, "25", "00106"},
    {10, Step::Range20mA,  "91", 38, "20 mA",  80000, "26", "00106"},
    {11, Step::Range200mA, "92", 39, "200 mA", 80000, "27", "00106"},
    {12, Step::Range5A,    "93", 40, "3.5 A",  56000, "28", "00106"},
    {13, Step::SendFile,   "",    0, "",           0, "",   ""},
    {15, Step::Verify,     "",    0, "",           0, "VE", "00117"},
    {16, Step::ViewNvm,    "",    0, "",           0, "",   ""},
};

constexpr RangeRecord kAc3Table[] = {
    { 0, Step::InitNvm,       "80",  0, "0 V",        0, "",   ""},
    { 1, Step::ZeroAdjust,    "80",  0, "0 V",        0, "ZA", "00117"},
    { 2, Step::MinusGainTrim, "80",  0, "200 mV",     0, "NG", "00117"},
    { 3, Step::Gnd,           "80", 26, "2 mV",     800, "1A", "00117"},
    { 4, Step::Range200mV,    "80", 31, "200 mV", 80000, "1F", "00117"},
    { 5, Step::Range2V,       "81", 32, "2 V",    80000, "20", "00117"},
    { 6, Step::TrimR38,       "81",  0, "2 V",    80000, "RT", "00118"},
    { 7, Step::Range20V,      "82", 33, "20 V",   80000, "21", "00117"},
    { 8, Step::Range200V,     "83", 34, "200 V",  80000, "22", "00117"},
    { 9, Step::Range600V,     "84", 35, "600 V",  24000, "23", "00117"},
    {10, Step::Range2mA,      "90", 37, "2 mA",   80000, "25", "00117"},
    {11, Step::Range20mA,     "91", 38, "20 mA",  80000, "26", "00117"},
    {12, Step::Range200mA,    "92", 39, "200 mA", 80000, "27", "00117"},
    {13, Step::Range5A,       "93", 40, "3.5 A",  56000, "28", "00117"},
    {14, Step::SendFile,      "",    0, "",           0, "",   ""},
    {15, Step::Verify,        "",    0, "",           0, "VE", "00117"},
    {16, Step::ViewNvm,       "",    0, "",           0, "",   ""},
};

// clang-format on

}  // namespace

constinit const std::span<const RangeRecord> kAcRecords = kAcTable;
constinit const std::span<const RangeRecord> kAc2Records = kAc2Table;
constinit const std::span<const RangeRecord> kAc3Records = kAc3Table;

}  // namespace ombrix
