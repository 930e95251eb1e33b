#include "calibration/ratio_mode.h"

#include "links/meter_identity.h"
#include "links/meter_operations.h"
#include "platform/text.h"
#include "session/state.h"

namespace ombrix {
namespace {

constexpr int kRangeWord = 16;
constexpr int kTopWord = 50;  // of the four that are read
constexpr int kModeWord = 47;
constexpr const char *kRatioMode = "9C";

}  // namespace

std::optional<RatioWords> PutIntoRatioMode()
{
    const std::string range = ReadNvmWords(kRangeWord, 1, "Z");
    const std::string words = ReadNvmWords(kTopWord, 4, "");
    if (range.empty() || words.empty() || Abort)
        return std::nullopt;
    if (!words.ends_with(kRatioMode))
        WriteNvmWords(kModeWord, std::string("00") + kRatioMode, "Z");
    WriteDisplaySetupForward(1);
    return RatioWords{Right(range, 2), words.substr(0, 4), words.substr(8, 4)};
}

void PutOnRatioRange(const std::string &code, std::string &stored)
{
    if (code == stored)
        return;
    WriteBoardCodeByte(code);
    stored = code;
}

}  // namespace ombrix
