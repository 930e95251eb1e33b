#include "model/dpm_format.h"

#include "model/memory_values.h"
#include "model/range_tables.h"
#include "platform/text.h"
#include "session/state.h"

#include <filesystem>
#include <fstream>

namespace ombrix {
namespace {

constexpr std::size_t kMostRead = 4096;  // of a field without an end: far more than is used
constexpr int kLastRtdTemperature = 8;   // row of the RTD ranges; the resistances stand behind it
constexpr const char *kNotOpened = "Unable to open file";
constexpr const char *kNotRead = "Error reading file";
constexpr const char *kBadFormat = "File format error";

std::string FirstField(std::string_view bytes)
{
    return std::string(bytes.substr(0, bytes.find_first_of("\r\n,")));
}

bool CarriesMark(std::string_view image)
{
    return DigitsAt(image, 13, 2) == "Z1";
}

bool IsDpmImage(std::string image)
{
    if (image.size() < kDpmDigits)
        return false;
    if (CarriesMark(image))
        image[12] = '0';
    return IsHexText(image.substr(0, kDpmDigits));
}

int BoardOfPlainCode(char range)
{
    switch (range) {
    case '6':
    case '7':
        return kDc;
    case '4':
    case '5':
        return kTemp;
    case 'E':
        return kRtd;
    default:
        return -1;
    }
}

}  // namespace

int BoardOfDpm(std::string_view image)
{
    const std::string code = DigitsAt(image, 35, 2);
    if (code == "01")
        return BoardOfPlainCode(image.size() < 55 ? ' ' : image[54]);
    constexpr struct {
        const char *code;
        int board;
    } kCodes[] = {{"02", kAc}, {"12", kAc2}, {"22", kAc3}, {"03", kLc}, {"31", kTc}, {"41", kRtd}};
    for (const auto &known : kCodes)
        if (code == known.code)
            return known.board;
    return -1;
}

DpmFile CheckDpmText(std::string_view bytes, int tab, const std::string &caption)
{
    DpmFile file{FirstField(bytes), ""};
    if (!IsDpmImage(file.image)) {
        file.error = kBadFormat;
        return file;
    }
    if (!CarriesMark(file.image))
        file.image.replace(12, 8, "00000000");
    const int board = BoardOfDpm(file.image);
    if (board < 0 || TabOfBoard(board) != tab)
        file.error = "Specified file does not apply to " + caption;
    return file;
}

DpmFile ReadDpmFile(const std::string &path, int tab, const std::string &caption)
{
    namespace fs = std::filesystem;
    std::error_code trouble;
    const fs::file_status status = fs::status(path, trouble);
    if (!fs::is_regular_file(status) && !fs::is_directory(status))
        return {"", kNotOpened};
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return {"", kNotOpened};
    std::string bytes(kMostRead, '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (file.bad())
        return {"", kNotRead};
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return CheckDpmText(bytes, tab, caption);
}

std::vector<WordRun> RunsOfDpm(std::string_view image, int board)
{
    std::vector<WordRun> runs;
    if (board != kTemp && board != kTc)
        runs.push_back({29, DigitsAt(image, 1, 12)});
    runs.push_back({24, DigitsAt(image, 21, 100)});
    runs.push_back({56, DigitsAt(image, 121, 8)});
    runs.push_back({118, DigitsAt(image, 129, 52)});
    return runs;
}

std::string DesiredOfTest(int board, const RangeDescription &range)
{
    if (board == kRtd && range.diagram <= kLastRtdTemperature)
        return RtdSimTemperature(range.diagram);
    const std::size_t blank = range.input.find(' ');
    if (blank == std::string::npos)
        return range.input;
    const std::string number = range.input.substr(0, blank);
    return Holds(number, ".") ? number : number + ".0";
}

}  // namespace ombrix
