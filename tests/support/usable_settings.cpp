#include "support/usable_settings.h"

#include "model/analog_words.h"
#include "model/ini_store.h"
#include "model/kept_config.h"
#include "model/nominals.h"
#include "model/range_tables.h"
#include "model/station_settings.h"
#include "platform/text.h"
#include "session/state.h"

#include <algorithm>
#include <cmath>

namespace ombrix::test {
namespace {

constexpr int kDcRatioRanges = 3;
constexpr int kStrainRanges = 5;
constexpr std::size_t kFilterDigits = 5;

bool IsPort(int port)
{
    return port >= 0 && port <= 2;
}

bool IsWord(const std::string &text, std::size_t digits)
{
    return text.size() == digits && IsHexText(text);
}

bool IsRatioReading(float reading)
{
    return reading > 0 && reading < 100000;
}

bool NominalsAreUsable()
{
    for (int board = 0; board < kBoards; ++board)
        for (int word = 25; word <= 50; ++word) {
            const auto slope = static_cast<double>(NominalSlopeOf(board, word));
            if (NominalWordOf(board, word).size() != (board == kVf ? 12 : 4) || !std::isfinite(slope) || slope < 0)
                return false;
        }
    return true;
}

// The code in force is the one in the file, which holds one for each key.
bool FiltersAreUsable()
{
    const int board = SCType;
    bool usable = true;
    for (SCType = 0; SCType < kBoards; ++SCType)
        for (int position = 0; position < kPositions; ++position) {
            const FilterDefault filter = DefaultFilterAt(SCType, position);
            const std::string kept = IniGet("Filter", BoardName(SCType) + "." + filter.key);
            const std::string inForce = FilterCodeAtPosition(position);
            if (!filter.code.empty())
                usable = usable && inForce.size() == kFilterDigits && (kept.empty() || kept == inForce);
        }
    SCType = board;
    return usable;
}

// A counter takes no file.
bool SendFilesAreUsable()
{
    for (std::size_t board = 0; board < SendFileDefaults.size(); ++board) {
        const std::string &name = SendFileDefaults[board];
        if (name.empty() != (board == kVf) || name.find_first_of("\r\n") != std::string::npos)
            return false;
    }
    return true;
}

}  // namespace

std::string UnusableSetting()
{
    if (!IsPort(CalPort) || !IsPort(MeterPort) || CalPort == MeterPort)
        return "the wiring is one that there is";
    if (!NominalsAreUsable())
        return "a nominal word has its length, and a slope can be reckoned with";
    if (!std::all_of(StoredAnalogWords.begin(), StoredAnalogWords.end(),
                     [](const std::string &word) { return IsWord(word, 4); }))
        return "a word of the analog output is a word";
    if (!RestConfigImage.empty() && !IsWord(RestConfigImage, kConfigDigits))
        return "a kept configuration is whole or none";
    if (DcRatioRange < 0 || DcRatioRange >= kDcRatioRanges || StrainRange < 0 || StrainRange >= kStrainRanges)
        return "a range of the ratio page is one that it offers";
    if (!IsRatioReading(DcRatioReading) || !IsRatioReading(StrainReading))
        return "a reading of the ratio page can be reached";
    if (!FiltersAreUsable())
        return "a filter code has five characters and is the one in the file";
    if (!SendFilesAreUsable())
        return "each board but the counter's has the name of a file";
    return "";
}

}  // namespace ombrix::test
