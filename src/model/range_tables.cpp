#include "model/range_tables.h"

#include <algorithm>
#include <array>

#include "model/range_records.h"
#include "model/step_ids.h"
#include "session/state.h"

namespace ombrix {
namespace {

constexpr const char *kStepTitles[Step::kCount] = {
    "Init NVM",    "View NVM",     "GND",           "REF (200 mV)",   "200 mV",       "2 V",          // 0..5
    "20 V",        "200 V",        "660 V",         "2 mA",           "20 mA",        "200 mA",       // 6..11
    "5 A",         "Ratio",        "First Cycle",   "Verify",         "Send File",    "GND (.5 V)",   // 12..17
    "OFF (20 mV)", "REF (20 mV)",  "Touch-Up",      "50 mV",          "100 mV",       "250 mV",       // 18..23
    "500 mV",      "Lo-Gain GND",  "75.6 mV",       "RTD Current",    "Hi-Gain GND",  "23.3 mV",      // 24..29
    "Gain/Offset", "Offset Only",  "Meter Type",    "VF 4-20 mA",     "VF 0-1 mA",    "VF 0-10 V",    // 30..35
    "Nominalize",  "Get Config",   "Rest Config",   "Zero Adjust",    "R13/R14 Trim", "- Gain Trim",  // 36..41
    "Init NVMEM",  "Volt Offset",  "Voltage Gain",  "Current Offset", "Current Gain", "-10 Volts",    // 42..47
    "+10 Volts",   "Re-Calibrate", "Zero InitFile", "R38 Trim",       "600 V",        "56.7 mV",      // 48..53
    "17.475 mV",   "Pt100",        "20 Ohms",       "200 Ohms",       "2 kOhms",      "20 kOhms",     // 54..59
    "200 kOhms",                                                                                      // 60
};

constexpr const char *kDcCodes[] = {"60", "61", "62", "63", "64", "70", "71", "72", "73"};
constexpr const char *kAcCodes[] = {"80", "81", "82", "83", "84", "90", "91", "92", "93", ""};
// The 600 V range stands behind the currents, and its old place is empty.
constexpr const char *kAc2Codes[] = {"80", "81", "82", "83", "", "90", "91", "92", "93", "84", "80"};
constexpr const char *kLcCodes[] = {"D0", "D1", "D2", "D3", "D4"};
constexpr const char *kTcCodes[] = {"60", "65", "40", "41", "48", "49"};
constexpr const char *kVfCodes[] = {"81", "91", "A1"};
constexpr const char *kRtdCodes[] = {"E0", "50", "51", "52", "53", "54", "55",
                                     "56", "57", "E0", "E1", "E2", "E3", "E4"};

// Place of "E0" as the 20 ohm range; the first "E0" is the bare four-wire input.
constexpr int kRtd20OhmsIndex = 9;

constexpr int kAnalogSteps[kPositions] = {Step::InitNvmem,     Step::None,        Step::VoltOffset, Step::VoltageGain,
                                          Step::CurrentOffset, Step::CurrentGain, Step::None,       Step::Minus10Volts,
                                          Step::Plus10Volts,   Step::None,        Step::VoltOffset, Step::VoltageGain,
                                          Step::CurrentOffset, Step::CurrentGain, Step::None,       Step::ReCalibrate,
                                          Step::ZeroInitFile};
constexpr int kAnalogLastPosition = 16;

struct BoardRow {
    const char *name;
    std::span<const char *const> codes;
    std::span<const RangeRecord> records;
    int lastPosition;  ///< of the calibration sequence
};

const BoardRow *BoardRowOf(int board)
{
    static const BoardRow rows[] = {
        {"DC", kDcCodes, kDcRecords, 13},    {"AC", kAcCodes, kAcRecords, 13},    {"LC", kLcCodes, kLcRecords, 10},
        {"TC", kTcCodes, kTcRecords, 7},     {"VF", kVfCodes, kVfRecords, 4},     {"AC2", kAc2Codes, kAc2Records, 13},
        {"AC3", kAc2Codes, kAc3Records, 14}, {"Temp", kTcCodes, kTempRecords, 8}, {"RTD", kRtdCodes, kRtdRecords, 9},
    };
    return board >= kDc && board <= kRtd ? &rows[board] : nullptr;
}

bool IsPosition(int position)
{
    return position >= 0 && position < kPositions;
}

const RangeRecord *RecordAt(int board, int position)
{
    for (const RangeRecord &record : RecordsOfBoard(board))
        if (record.position == position)
            return &record;
    return nullptr;
}

bool IsAcBoard(int board)
{
    return board == kAc || board == kAc2 || board == kAc3;
}

constexpr std::size_t kFilterCodeLength = 5;
constexpr const char *kNoFilterCode = "00118";

std::array<std::array<std::string, kPositions>, kBoards> filterCodes;

}  // namespace

std::span<const RangeRecord> RecordsOfBoard(int board)
{
    const BoardRow *row = BoardRowOf(board);
    return row ? row->records : std::span<const RangeRecord>{};
}

std::string BoardName(int board)
{
    if (board == kAn)
        return "AN";
    const BoardRow *row = BoardRowOf(board);
    return row ? row->name : "";
}

int BoardIndex(const std::string &name)
{
    for (int board = 0; board < kBoards; ++board)
        if (BoardName(board) == name)
            return board;
    return -1;
}

int TabOfBoard(int board)
{
    if (board == kAc2 || board == kAc3)
        return kTabAc;
    if (board == kTemp || board == kRtd)
        return kTabTc;
    return board;
}

std::string StepName(int stepId)
{
    return stepId >= 0 && stepId < Step::kCount ? kStepTitles[stepId] : "";
}

int StepIdAtPosition(int position)
{
    if (!IsPosition(position))
        return Step::None;
    if (CalibTab == kTabAnaCal)
        return kAnalogSteps[position];
    const RangeRecord *record = RecordAt(SCType, position);
    return record ? record->stepId : static_cast<int>(Step::None);
}

int StepButtonCount()
{
    if (CalibTab == kTabAnaCal)
        return kAnalogLastPosition;
    const BoardRow *row = BoardRowOf(SCType);
    return row ? row->lastPosition : 0;
}

std::string RangeCodeText(int index)
{
    const BoardRow *row = BoardRowOf(SCType);
    if (!row || index < 0 || static_cast<std::size_t>(index) >= row->codes.size())
        return "";
    return row->codes[static_cast<std::size_t>(index)];
}

int RangeCodeIndexAtPosition(int position)
{
    const BoardRow *row = BoardRowOf(SCType);
    if (!row || !IsPosition(position))
        return -1;
    const RangeRecord *record = RecordAt(SCType, position);
    if (!record)
        return 0;
    if (record->stepId == Step::Range20Ohms)
        return kRtd20OhmsIndex;
    const std::string code = record->code;
    const auto found = std::find(row->codes.begin(), row->codes.end(), code);
    return code.empty() || found == row->codes.end() ? 0 : static_cast<int>(found - row->codes.begin());
}

int NvmWordAtPosition(int position)
{
    const RangeRecord *record = RecordAt(SCType, position);
    return record ? record->word : 0;
}

std::string CalValueAtPosition(int position)
{
    if (!BoardRowOf(SCType) || !IsPosition(position))
        return "";
    const RangeRecord *record = RecordAt(SCType, position);
    std::string value = record ? record->value : "";
    if (value.empty())
        value = "0 V";
    return IsAcBoard(SCType) ? value + ", 300 Hz" : value;
}

int TargetCountsAtPosition(int position)
{
    const RangeRecord *record = RecordAt(SCType, position);
    return record ? record->target : 0;
}

int SampleCountForStep(int stepId)
{
    switch (stepId) {
    case Step::Gnd:
        return SCType == kDc || SCType == kRtd ? 10 : 4;
    case Step::Range5A:
        return IsAcBoard(SCType) ? 16 : 4;
    case Step::GndHalfVolt:
    case Step::Off20mV:
    case Step::LoGainGnd:
    case Step::HiGainGnd:
        return 10;
    case Step::Range50mV:
    case Step::Range500mV:
        return 2;
    case Step::Range100mV:
        return 8;
    case Step::Pt100:
        return 1;
    default:
        return 4;
    }
}

std::string FilterCodeAtPosition(int position)
{
    if (!IsPosition(position) || SCType < 0 || SCType >= kBoards)
        return kNoFilterCode;
    const std::string &code = filterCodes[static_cast<std::size_t>(SCType)][static_cast<std::size_t>(position)];
    return code.size() == kFilterCodeLength ? code : kNoFilterCode;
}

FilterDefault DefaultFilterAt(int board, int position)
{
    const RangeRecord *record = RecordAt(board, position);
    return record ? FilterDefault{record->filterKey, record->filterDefault} : FilterDefault{};
}

void SetFilterCode(int board, int position, const std::string &code)
{
    if (board >= 0 && board < kBoards && IsPosition(position))
        filterCodes[static_cast<std::size_t>(board)][static_cast<std::size_t>(position)] = code;
}

void ClearFilterCodes()
{
    for (auto &row : filterCodes)
        row.fill("");
}

}  // namespace ombrix
