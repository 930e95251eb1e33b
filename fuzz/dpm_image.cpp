// Fuzzes: src/model/dpm_format.cpp src/model/memory_values.cpp src/model/nvm_fields.cpp
//
// A customer's configuration: checked, taken apart into words, shown and edited.

#include "fuzz/support/case.h"
#include "model/dpm_format.h"
#include "model/memory_values.h"
#include "model/nvm_fields.h"
#include "model/range_tables.h"
#include "platform/text.h"
#include "session/state.h"

using namespace ombrix;
using namespace ombrix::fuzz;

namespace {

const std::string kCaption = "the tab";

void RequireRuns(const std::string &image, int board)
{
    for (const WordRun &run : RunsOfDpm(image, board)) {
        const auto words = static_cast<int>(run.text.size() / 4);
        Require(run.text.size() % 4 == 0 && words > 0, "a run is whole words");
        Require(IsHexText(run.text), "a run is hexadecimal");
        Require(run.word - words + 1 >= 0 && run.word <= 255, "a run lies in the memory");
        Require(Holds(image, run.text), "a run stands in its file");
        if (board == kTemp || board == kTc)
            Require(run.word - words + 1 > 29 || run.word < 27, "calibration words of TC and Temp stay");
    }
}

void RequireSendable(const DpmFile &file, int tab)
{
    Require(file.image.size() >= kDpmDigits, "what can be sent is whole");
    // The mark "Z1" in place of the serial number is the one thing that is no hexadecimal digit.
    std::string digits = file.image.substr(0, kDpmDigits);
    if (DigitsAt(digits, 13, 2) == "Z1")
        digits[12] = '0';
    Require(IsHexText(digits), "what can be sent is hexadecimal");
    const int board = BoardOfDpm(file.image);
    Require(board >= 0 && TabOfBoard(board) == tab, "what can be sent is for this tab");
    RequireRuns(file.image, board);
    const DpmFile again = CheckDpmText(file.image + "\r\n", tab, kCaption);
    Require(again.image == file.image && again.error.empty(), "a file written from an image is that image");
}

// Of a file that can't be sent its values are worked out all the same.
void RequireShown(const DpmFile &file, int tab, int board)
{
    for (const ValueLabel &label : DescribeImage(file.image, board, tab))
        Require(!file.error.empty() || IsShown(label.text), "what an image says can be shown");
}

// Fields of a meter's words taken out and put back, and the writes that bring changes of them into the meter.
void RequireFields(const std::string &image, int tab, int board, const std::string &changes)
{
    const int topWord = static_cast<int>(image.size() / 4) - 1;
    std::string changed = image;
    for (const char change : changes) {
        const NvmField field = NvmFieldAt(static_cast<unsigned char>(change) % kNvmFields, tab, board);
        const auto width = static_cast<std::size_t>(field.width);
        const std::string text = NvmFieldText(changed, field, topWord);
        if (text.size() == width)
            Require(WithNvmField(changed, field, topWord, text) == changed, "a field put back changes nothing");
        const std::string digits = PaddedDigits(changes, width);
        Require(digits.size() == width, "a field has its width");
        changed = WithNvmField(changed, field, topWord, digits);
        Require(changed.size() == image.size(), "an image keeps its length");
        if (text.size() == width)
            Require(NvmFieldText(changed, field, topWord) == digits, "a field reads as it was put");
    }

    std::string meter = image;
    const auto runs = RunsToWrite(image, changed, topWord);
    Require(runs.size() <= 2, "two writes are enough");
    constexpr int kLongestRun = 35;  // of one frame
    for (const NvmRun &run : runs)
        Require(runs.size() == 1 || run.count <= kLongestRun, "of two writes each is one frame");
    for (const NvmRun &run : runs)
        meter = WithRun(meter, topWord, run.start, DigitsOfRun(changed, topWord, run));
    Require(meter == changed, "the writes bring every change into the meter");
    Require(runs.empty() == WordsThatDiffer(image, changed, topWord).empty(), "no difference, no write");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Case input(bytes, size);
    const int tab = input.Below(kTabAnaCal + 1);
    const int board = input.Below(kBoards);
    const std::string changes = input.Bytes(4);
    const std::string text = input.Rest();
    const DpmFile file = CheckDpmText(text, tab, kCaption);
    Require(file.image.find_first_of("\r\n,") == std::string::npos, "an image is one field");
    if (file.error.empty())
        RequireSendable(file, tab);
    RequireShown(file, tab, board);
    RequireFields(file.image.substr(0, file.image.size() / 4 * 4), tab, board, changes);
    return 0;
}
