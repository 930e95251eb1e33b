// Sections Gains and CalibValues: the slopes and words that the station learns.
#include "model/settings.h"

#include <algorithm>
#include <array>
#include <memory>
#include <set>
#include <vector>

#include "model/analog_settings.h"
#include "model/analog_words.h"
#include "model/ini_store.h"
#include "model/nominal_tables.h"
#include "model/nominals.h"
#include "model/nvm_map.h"
#include "model/old_files.h"
#include "model/range_records.h"
#include "model/range_tables.h"
#include "platform/text.h"
#include "session/state.h"

namespace ombrix {
namespace {

constexpr const char *kGains = "Gains";
constexpr const char *kCalibValues = "CalibValues";

// "DC.1A" as board and rest; board -1 when the key isn't of that form.
struct BoardKey {
    int board = -1;
    std::string rest;
};

BoardKey ReadBoardKey(const std::string &key)
{
    const std::size_t point = key.find('.');
    if (point == std::string::npos || point == 0 || point + 1 == key.size())
        return {};
    return {BoardIndex(key.substr(0, point)), key.substr(point + 1)};
}

std::string KeyOf(int board, const std::string &rest)
{
    return BoardName(board) + "." + rest;
}

// -1 when the text isn't a short hexadecimal number.
int WordOfText(const std::string &text)
{
    const bool number = text.size() <= 4 && text.find_first_not_of("0123456789ABCDEFabcdef") == std::string::npos;
    return number && !text.empty() ? static_cast<int>(HexValue(text)) : -1;
}

// Two words that go under one key. The names are crosswise: QD carries the ratio's words, RA those of the quasi-diode.
struct WordPair {
    const char *rest;
    int first;
    int second;
    bool Carries(int word) const { return word == first || word == second; }
    bool Serves(int board) const { return first == 50 ? board == kDc || board == kLc : board == kTc || board == kTemp; }
};
constexpr WordPair kWordPairs[] = {{"QD", 50, 48}, {"RA", 29, 45}};

bool TakeSlope(int board, int word, const std::string &text)
{
    const auto slope = static_cast<float>(Val(text));
    if (board < 0 || !IsNominalWord(word) || slope <= 0)
        return false;
    SetNominalSlopeOf(board, word, slope);
    return true;
}

void TakeSlopesOfOldFile()
{
    const std::vector<std::string> fields = FieldsOfOldFile("Gains.sss");
    // After a field that begins no triple the next one may.
    for (std::size_t i = 0; i + 2 < fields.size();)
        i += TakeSlope(BoardIndex(fields[i]), WordOfText(fields[i + 1]), fields[i + 2]) ? 3 : 1;
}

void TakeSlopesOfSection()
{
    for (int i = 0; i < IniKeyCount(kGains); ++i) {
        const std::string key = IniKeyAt(kGains, i);
        const BoardKey parts = ReadBoardKey(key);
        TakeSlope(parts.board, WordOfText(parts.rest), IniGet(kGains, key));
    }
}

void TakeAnalogWord(const std::string &name, const std::string &value)
{
    const int index = AnalogWordIndex(name);
    if (index >= 0 && IsWordText(value))
        StoredAnalogWords[static_cast<std::size_t>(index)] = value;
}

void TakeBoardWord(int board, const std::string &rest, const std::string &value)
{
    for (const WordPair &pair : kWordPairs) {
        if (rest != pair.rest)
            continue;
        if (IsWordText(value, 8)) {
            SetNominalWordOf(board, pair.first, value.substr(0, 4));
            SetNominalWordOf(board, pair.second, value.substr(4));
        }
        return;
    }
    SetNominalWordOf(board, WordOfText(rest), value);
}

void TakeWordsOfSection()
{
    for (int i = 0; i < IniKeyCount(kCalibValues); ++i) {
        const std::string key = IniKeyAt(kCalibValues, i);
        const BoardKey parts = ReadBoardKey(key);
        if (parts.board == kAn)
            TakeAnalogWord(parts.rest, IniGet(kCalibValues, key));
        else if (parts.board >= 0)
            TakeBoardWord(parts.board, parts.rest, IniGet(kCalibValues, key));
    }
}

// "" for none. A slope that went to zero or below serves this session alone: what was learned before it stays.
std::string SlopeToSave(const std::string &key, float slope)
{
    for (const std::string &text : {Format(slope, 4), IniGet(kGains, key)})
        if (Val(text) > 0)
            return text;
    return "";
}

bool GoesIntoPair(int word)
{
    return std::any_of(std::begin(kWordPairs), std::end(kWordPairs),
                       [&](const WordPair &pair) { return pair.Carries(word); });
}

// The words that a board's steps trim, and those that differ from its factory image.
std::set<int> WordsToSave(int board)
{
    std::set<int> words;
    for (const RangeRecord &record : RecordsOfBoard(board))
        if (record.word > 0)
            words.insert(record.word);
    for (int word = kFirstNominalWord; word <= kLastNominalWord; ++word)
        if (!GoesIntoPair(word) && NominalWordOf(board, word) != DefaultNominalWordOf(board, word))
            words.insert(word);
    return words;
}

void AddWordsOfBoard(std::vector<IniPair> &pairs, int board)
{
    for (int word : WordsToSave(board))
        pairs.push_back({KeyOf(board, Hex(word)), NominalWordOf(board, word)});
    for (const WordPair &pair : kWordPairs)
        if (pair.Serves(board))
            pairs.push_back(
                {KeyOf(board, pair.rest), NominalWordOf(board, pair.first) + NominalWordOf(board, pair.second)});
}

// What real meters taught, while simulated ones teach.
struct Learned {
    std::shared_ptr<const NominalTables> nominals;
    std::array<std::string, kAnalogWords> analogWords;
};
Learned aside;

}  // namespace

void LoadGains()
{
    InitNominalSlopes();
    const bool empty = IniKeyCount(kGains) == 0;
    if (empty)
        TakeSlopesOfOldFile();
    else
        TakeSlopesOfSection();
    if (empty || SlopesDirty)
        SaveGains();
}

void SaveGains()
{
    if (!HardwareMode)
        return;
    std::vector<IniPair> pairs;
    for (int board = 0; board < kBoards; ++board)
        for (int word = kFirstNominalWord; word <= kLastNominalWord; ++word) {
            const std::string key = KeyOf(board, Hex(word));
            const std::string slope = SlopeToSave(key, NominalSlopeOf(board, word));
            if (!slope.empty())
                pairs.push_back({key, slope});
        }
    IniRefill(kGains, pairs);
    SlopesDirty = false;
    SaveIni();
}

void LoadCalibValues()
{
    InitNominalWords();
    LoadAnaCalWords();
    if (IniKeyCount(kCalibValues) == 0)
        SaveCalibValues();
    else
        TakeWordsOfSection();
    NominalDirty = false;
}

void SaveCalibValues()
{
    if (!HardwareMode)
        return;
    std::vector<IniPair> pairs;
    for (int board = kDc; board <= kRtd; ++board)
        AddWordsOfBoard(pairs, board);
    for (int i = 0; i < kAnalogWords; ++i)
        pairs.push_back({KeyOf(kAn, AnalogWordName(i)), StoredAnalogWords[static_cast<std::size_t>(i)]});
    IniRefill(kCalibValues, pairs);
    NominalDirty = false;
    SaveIni();
}

void SetLearnedAside()
{
    SaveGains();
    SaveCalibValues();
    aside = {CopyNominals(), StoredAnalogWords};
}

void TakeLearnedBack()
{
    if (!aside.nominals)
        return;
    RestoreNominals(*aside.nominals);
    StoredAnalogWords = aside.analogWords;
    aside = {};
}

}  // namespace ombrix
