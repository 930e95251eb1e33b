#include "model/verify_file.h"

#include "model/range_tables.h"
#include "platform/text.h"
#include "session/state.h"

#include <algorithm>
#include <iterator>

namespace ombrix {
namespace {

constexpr std::size_t kRecordSize = 6;
constexpr int kFirstAcRecord = 19;
constexpr int k600Volts = 9;  // index of the range that AC2 and AC3 have in place of 660 V
constexpr int k660Volts = 4;
constexpr int kPrintedColumn = 8;    // each entry of the table is as wide
constexpr int kFileNameColumn = 66;  // less the name's length: so the name ends in column 77

constexpr const char *kRanges[] = {"200 mV", "2 V",    "20 V", "200 V", "660 V", "2 mA",
                                   "20 mA",  "200 mA", "5 A",  "600 V", "200 mV"};
constexpr const char *kLcRanges[] = {"20 mV", "50 mV", "100 mV", "250 mV", "500 mV"};

constexpr const char *kHeaders[] = {" 200mV", "  2V  ", "  20V ", " 200V ", " 660V ",
                                    "  2mA ", " 20mA ", " 200mA", "  5A  "};
constexpr const char *kLcHeaders[] = {" 20mV ", " 50mV ", " 100mV", " 250mV", " 500mV"};
constexpr const char *kHeader600Volts = " 600V ";

bool IsAcFamily(int board)
{
    return TabOfBoard(board) == kTabAc;
}

bool Has600Volts(int board)
{
    return board == kAc2 || board == kAc3;
}

int SlotsOf(int board)
{
    return 2 * (VerifyLastButton(board) + 1);
}

// A slot that the board never fills is none.
bool IsSlot(int board, int slot)
{
    return slot < SlotsOf(board) && (VerifyTwoPolarity(board) || slot % 2 == 0);
}

std::string RecordIn(std::string_view bytes, int record)
{
    const std::size_t place = VerifyPlaceOf(record);
    std::string text(place < bytes.size() ? bytes.substr(place, kRecordSize) : "");
    text.resize(kRecordSize, ' ');
    return text;
}

// What can be shown and printed of a byte.
char Readable(char byte)
{
    return byte >= ' ' && byte <= '~' ? byte : '?';
}

// Characters of UTF-8: bytes that don't go on with one.
int LengthOf(std::string_view text)
{
    return static_cast<int>(std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

// A page in the making, with the tabs of a printer: columns count from 1.
class PrintedPage
{
public:
    void Add(const std::string &text) { m_lines.back().text += text; }
    void EndLine() { m_lines.emplace_back(); }
    void Underline() { m_lines.back().underlined = true; }
    /// To a column; when that is passed already, to the same column of the next line.
    void TabTo(int column)
    {
        const int wanted = std::max(column, 1) - 1;
        if (LengthOf(m_lines.back().text) > wanted)
            EndLine();
        std::string &line = m_lines.back().text;
        line.append(static_cast<std::size_t>(wanted - LengthOf(line)), ' ');
    }
    std::vector<PrintedLine> Lines() const { return m_lines; }

private:
    std::vector<PrintedLine> m_lines = {{}};
};

std::vector<std::string> HeadersOf(int board)
{
    std::vector<std::string> texts(std::begin(kHeaders), std::end(kHeaders));
    if (board == kLc)
        texts.assign(std::begin(kLcHeaders), std::end(kLcHeaders));
    if (Has600Volts(board))
        texts[k660Volts] = kHeader600Volts;
    texts.insert(texts.begin(), "INPUT");
    return texts;
}

void PrintHeaders(PrintedPage &page, int board)
{
    page.Underline();
    int column = 0;
    for (const std::string &header : HeadersOf(board)) {
        page.Add(header);
        page.TabTo(column += kPrintedColumn);
    }
    page.EndLine();
}

// The readings of every second slot from `first` on.
std::string RowOf(const std::string &title, std::string_view bytes, int board, int first)
{
    std::string row = title;
    for (int slot = first; slot < SlotsOf(board); slot += 2)
        row += "  " + RecordIn(bytes, VerifyRecordOf(board, slot));
    std::transform(row.begin(), row.end(), row.begin(), Readable);
    return row;
}

}  // namespace

int VerifyLastButton(int board)
{
    return board == kLc ? static_cast<int>(std::size(kLcRanges)) - 1 : kVerifyRanges - 1;
}

bool VerifyTwoPolarity(int board)
{
    return board == kDc || board == kLc;
}

int VerifyRangeIndex(int board, int button)
{
    return button == k660Volts && Has600Volts(board) ? k600Volts : button;
}

std::string VerifyRangeName(int board, int button)
{
    if (button < 0 || button > VerifyLastButton(board))
        return "";
    return board == kLc ? kLcRanges[button] : kRanges[VerifyRangeIndex(board, button)];
}

std::string VerifyInput(int board, int button)
{
    return VerifyRangeName(board, button) + (VerifyTwoPolarity(board) ? "" : ", 300 Hz");
}

std::string EmptyVerifyFile()
{
    return std::string(kVerifyFileSize, ' ');
}

bool LooksLikeVerifyFile(std::string_view bytes)
{
    return bytes.size() <= kVerifyFileSize && bytes.find_first_not_of(" 0123456789+-") == std::string_view::npos;
}

int VerifyRecordOf(int board, int slot)
{
    return IsAcFamily(board) ? kFirstAcRecord + slot / 2 : slot + 1;
}

std::size_t VerifyPlaceOf(int record)
{
    return static_cast<std::size_t>(record - 1) * kRecordSize;
}

std::string VerifyRecordText(std::string_view reading)
{
    return Right(std::string(kRecordSize, ' ') + std::string(reading), kRecordSize);
}

std::array<std::string, kVerifySlots> VerifyReadings(std::string_view bytes, int board)
{
    std::array<std::string, kVerifySlots> readings;
    readings.fill(std::string(kRecordSize, ' '));
    for (int slot = 0; slot < kVerifySlots; ++slot) {
        std::string &text = readings[static_cast<std::size_t>(slot)];
        if (IsSlot(board, slot))
            text = RecordIn(bytes, VerifyRecordOf(board, slot));
        std::transform(text.begin(), text.end(), text.begin(), Readable);
    }
    return readings;
}

int FirstEmptyRange(std::string_view bytes, int board)
{
    for (int slot = 0; slot < SlotsOf(board); ++slot)
        if (IsSlot(board, slot) && RecordIn(bytes, VerifyRecordOf(board, slot)) == std::string(kRecordSize, ' '))
            return RoundHalfEven(slot / 2.0);
    return 0;
}

std::vector<PrintedLine> VerifyTable(std::string_view bytes, int board, const std::string &dpmId,
                                     const std::string &fileName)
{
    PrintedPage page;
    page.EndLine();
    page.EndLine();
    page.Add("DPM ID = " + dpmId);
    page.TabTo(kFileNameColumn - LengthOf(fileName));
    page.Add("File Name = " + fileName);
    page.EndLine();
    page.EndLine();
    PrintHeaders(page, board);
    if (IsAcFamily(board)) {
        page.Add(RowOf("  AC ", bytes, board, 0));
    } else {
        page.Add(RowOf(" +DC ", bytes, board, 0));
        page.EndLine();
        page.Add(RowOf(" -DC ", bytes, board, 1));
    }
    return page.Lines();
}

}  // namespace ombrix
