#include "model/nvm_fields.h"

#include "model/nvm_map.h"
#include "platform/text.h"
#include "session/state.h"

#include <algorithm>
#include <array>

namespace ombrix {
namespace {

constexpr std::size_t kWordDigits = 4;
constexpr int kWord = 4;  // widths, in digits
constexpr int kByte = 2;
constexpr int kLongestRun = 35;  // words that one frame can carry

struct VfField {
    const char *name;
    const char *address;
    int width;
};

constexpr std::array<VfField, kNvmFields - kFirstVfField> kVfFields = {{
    // clang-format off
    {"LOWIN1",    "01L", 6}, {"LOWRD1",    "02H", 6}, {"HI_IN1",    "04L", 6}, {"HI_RD1",    "05H", 6},
    {"LOWIN2",    "07L", 6}, {"LOWRD2",    "08H", 6}, {"HI_IN2",    "0AL", 6}, {"HI_RD2",    "0BH", 6},
    {"SETPT1",    "0DL", 6}, {"SETPT2",    "0EH", 6}, {"SCALE1",    "10L", 6}, {"OFFST1",    "11H", 6},
    {"SCALE2",    "13L", 6}, {"OFFST2",    "14H", 6}, {"DEVTN1",    "16L", 6}, {"DEVTN2",    "17H", 6},
    {"ANLOW",     "19L", 6}, {"ANHIGH",    "1AH", 6}, {"ALCNF",     "1B",  4}, {"INPTYPE",   "1CL", 2},
    {"SETUP",     "1CH", 2}, {"FILTER",    "1DL", 2}, {"OPTIONS",   "1DH", 2}, {"SERCNF1",   "1EL", 2},
    {"SERCNF2",   "1EH", 2}, {"SERCNF3",   "1FL", 2}, {"CONFIG",    "1FH", 2}, {"LOCKOUT",   "20",  4},
    {"GATETIM",   "21",  4}, {"TIMEOUT",   "22",  4}, {"BATCH",     "23L", 2}, {"SOURCE",    "23H", 2},
    {"ANASET",    "24L", 2}, {"SCALEMUL",  "24H", 2}, {"PULSES",    "25",  4}, {"SLOPE",     "26L", 2},
    {"Spare",     "26H", 2}, {"RESOLUTN",  "27L", 2}, {"SECRET",    "27H", 2}, {"SYSDP",     "28L", 2},
    {"RECOGCHR",  "28H", 2}, {"SERNO1",    "29L", 2}, {"SERNO2",    "29H", 2}, {"SERNO3",    "2AL", 2},
    {"SERNO4",    "2AH", 2}, {"CALIB",     "2B",  4}, {"TOTALA1:2", "2C",  4}, {"TOTALA3:4", "2D",  4},
    {"TOTALA5:6", "2E",  4}, {"TOTALB1:2", "2F",  4}, {"TOTALB3:4", "30",  4}, {"TOTALB5:6", "31",  4},
    // clang-format on
}};

// Rows of the calibration block that are no plain words.
enum Row { kLowByte1C = 3, kRow1D = 4, kLowByte2F = 22, kHighByte2F = 23, kFirstBytes = 27, kFirstOverload = 31 };

int WidthOfRow(int row, int calibTab, int board)
{
    const bool ac = calibTab == kTabAc;
    const bool tc = calibTab == kTabTc;
    switch (row) {
    case kLowByte1C:
        return tc ? kWord : kByte;
    case kRow1D:
        return tc ? kWord : kWord + kByte;  // with the high byte of the word before
    case kLowByte2F:
        return ac || tc ? kWord : kByte;
    case kHighByte2F:
        return ac || tc ? 0 : kByte;
    default:
        break;
    }
    if (row >= kFirstOverload)
        return board == kAc2 || board == kAc3 ? kByte : 0;
    return row >= kFirstBytes ? kByte : kWord;
}

int WordOfAddress(std::string_view address)
{
    return static_cast<int>(HexValue(address.substr(0, 2)));
}

std::size_t PlaceOfWord(int topWord, int word)
{
    return static_cast<std::size_t>(topWord - word) * kWordDigits;
}

// One run from the first word of `high` to the last of `low`.
NvmRun Joined(const NvmRun &high, const NvmRun &low)
{
    return {high.start, high.start - low.start + low.count};
}

// The run behind the first of the largest gaps.
std::size_t RunBehindLargestGap(const std::vector<NvmRun> &runs)
{
    std::size_t behind = 1;
    int largest = 0;
    for (std::size_t at = 1; at < runs.size(); ++at) {
        const int gap = runs[at - 1].start - runs[at - 1].count - runs[at].start;
        if (gap > largest) {
            largest = gap;
            behind = at;
        }
    }
    return behind;
}

}  // namespace

NvmField NvmFieldAt(int index, int calibTab, int board)
{
    if (index >= kFirstVfField && index < kNvmFields) {
        const VfField &field = kVfFields[static_cast<std::size_t>(index - kFirstVfField)];
        return {field.name, field.address, field.width};
    }
    const NvmRow row = NvmRowAt(index, calibTab, board);
    if (row.address.empty())
        return {};
    NvmField field{row.name, row.address, WidthOfRow(index, calibTab, board)};
    if (field.width == kWord && field.address.ends_with('L'))
        field.address.pop_back();
    return field;
}

std::size_t NvmFieldPlace(const NvmField &field, int topWord)
{
    return PlaceOfWord(topWord, WordOfAddress(field.address)) + (field.address.ends_with('L') ? kByte : 0);
}

std::string NvmFieldText(std::string_view image, const NvmField &field, int topWord)
{
    const std::size_t place = NvmFieldPlace(field, topWord);
    return place < image.size() ? std::string(image.substr(place, static_cast<std::size_t>(field.width))) : "";
}

std::string PaddedDigits(std::string_view text, std::size_t width)
{
    return Right(std::string(width, '0') + std::string(text), width);
}

std::string WithNvmField(std::string image, const NvmField &field, int topWord, std::string_view digits)
{
    const std::size_t place = NvmFieldPlace(field, topWord);
    // Of a field above the image the place is beyond all bounds: nothing may be added to it.
    if (place < image.size() && digits.size() <= image.size() - place)
        image.replace(place, digits.size(), digits);
    return image;
}

std::vector<NvmRun> ChangedRuns(std::string_view before, std::string_view after, int topWord)
{
    std::vector<NvmRun> runs;
    const std::size_t words = std::min(before.size(), after.size()) / kWordDigits;
    for (std::size_t at = 0; at < words; ++at) {
        if (before.substr(at * kWordDigits, kWordDigits) == after.substr(at * kWordDigits, kWordDigits))
            continue;
        const int word = topWord - static_cast<int>(at);
        if (!runs.empty() && runs.back().start - runs.back().count == word)
            ++runs.back().count;
        else
            runs.push_back({word, 1});
    }
    return runs;
}

std::vector<NvmRun> RunsToWrite(std::string_view before, std::string_view after, int topWord)
{
    std::vector<NvmRun> runs = ChangedRuns(before, after, topWord);
    if (runs.size() < 2)
        return runs;
    const NvmRun all = Joined(runs.front(), runs.back());
    if (all.count <= kLongestRun)
        return {all};
    const std::size_t behind = RunBehindLargestGap(runs);
    const NvmRun high = Joined(runs.front(), runs[behind - 1]);
    const NvmRun low = Joined(runs[behind], runs.back());
    if (high.count > kLongestRun || low.count > kLongestRun)
        return {all};
    return {high, low};
}

std::string DigitsOfRun(std::string_view image, int topWord, const NvmRun &run)
{
    const std::size_t place = PlaceOfWord(topWord, run.start);
    return place < image.size() ? std::string(image.substr(place, static_cast<std::size_t>(run.count) * kWordDigits))
                                : "";
}

std::string WithRun(std::string image, int topWord, int word, std::string_view digits)
{
    const std::size_t place = PlaceOfWord(topWord, word);
    if (word <= topWord && place + digits.size() <= image.size())
        image.replace(place, digits.size(), digits);
    return image;
}

std::vector<std::string> WordsThatDiffer(std::string_view one, std::string_view other, int topWord)
{
    std::vector<std::string> words;
    for (const NvmRun &run : ChangedRuns(one, other, topWord))
        for (int word = run.start; word > run.start - run.count; --word)
            words.push_back(HexText(word, 2));
    return words;
}

}  // namespace ombrix
