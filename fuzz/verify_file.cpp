// Fuzzes: src/model/verify_file.cpp
//
// The file of a verified meter's readings: any bytes can be shown and printed, and a reading that is put into its place
// is read from there.

#include "model/verify_file.h"
#include "fuzz/support/case.h"
#include "platform/text.h"
#include "session/state.h"

#include <algorithm>

using namespace ombrix;
using namespace ombrix::fuzz;

namespace {

void RequireShown(const std::string &file, int board)
{
    for (const std::string &text : VerifyReadings(file, board))
        Require(text.size() == 6 && IsPrintable(text), "a reading is six characters that can be shown");
    const int range = FirstEmptyRange(file, board);
    Require(range >= 0 && range <= VerifyLastButton(board), "the range to go on with is one of the board's");
    const auto lines = VerifyTable(file, board, "", "");
    Require(lines.size() <= 8, "the table has its lines");
    for (const PrintedLine &line : lines)
        Require(IsPrintable(line.text), "the table can be printed");
}

// As a page does it: the record is made of the reading and put into its place.
std::string WithReading(std::string file, int board, int slot, const std::string &reading)
{
    const std::string record = VerifyRecordText(reading);
    Require(record.size() == 6, "a record has its length");
    const std::size_t place = VerifyPlaceOf(VerifyRecordOf(board, slot));
    Require(place + record.size() <= kVerifyFileSize, "a record lies in the file");
    file.resize(std::max(file.size(), kVerifyFileSize), ' ');
    return file.replace(place, record.size(), record);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Case input(bytes, size);
    const int board = input.Below(kBoards);
    const int range = input.Below(VerifyLastButton(board) + 1);
    const int slot = 2 * range + (VerifyTwoPolarity(board) ? input.Below(2) : 0);
    std::string reading = input.Bytes(static_cast<std::size_t>(input.Below(9)));
    const std::string file = input.Rest();
    RequireShown(file, board);

    const auto before = VerifyReadings(file, board);
    const std::string changed = WithReading(file, board, slot, reading);
    const auto after = VerifyReadings(changed, board);
    for (int other = 0; other < kVerifySlots; ++other) {
        const auto place = static_cast<std::size_t>(other);
        if (other != slot)
            Require(after[place] == before[place], "a reading changes no other");
        else if (IsPrintable(reading))
            Require(after[place] == VerifyRecordText(reading), "a reading is read as it was taken");
    }
    if (LooksLikeVerifyFile(file) && reading.find_first_not_of("+-0123456789 ") == std::string::npos)
        Require(LooksLikeVerifyFile(changed), "a reading keeps the file one of its kind");
    return 0;
}
