#include "model/nominals.h"

#include <array>
#include <cmath>

#include "model/nominal_tables.h"
#include "model/nvm_map.h"
#include "session/state.h"

namespace ombrix {

bool SlopesDirty = false;
bool NominalDirty = false;

struct NominalTables {
    std::array<std::array<float, kBoards>, kNominalRows> slopes{};
    std::array<std::array<std::string, kBoards>, kNominalRows> words;
    std::array<std::string, kVfGroups> vfGroups;
    bool slopesDirty = false;
    bool wordsDirty = false;
};

namespace {

NominalTables inForce;

bool IsCell(int board, int word)
{
    return board >= 0 && board < kBoards && IsNominalWord(word);
}

std::size_t RowOf(int word)
{
    return static_cast<std::size_t>(word - kFirstNominalWord);
}

// The text behind a board's word, nullptr when it has none.
std::string *NominalText(int board, int word)
{
    if (board == kVf) {
        const int index = VfGroupOfWord(word);
        return index < 0 ? nullptr : &inForce.vfGroups[static_cast<std::size_t>(index)];
    }
    return IsCell(board, word) ? &inForce.words[RowOf(word)][static_cast<std::size_t>(board)] : nullptr;
}

}  // namespace

void InitNominalSlopes()
{
    for (int word = kFirstNominalWord; word <= kLastNominalWord; ++word)
        for (int board = 0; board < kBoards; ++board)
            inForce.slopes[RowOf(word)][static_cast<std::size_t>(board)] = DefaultSlopeOf(board, word);
    SlopesDirty = false;
}

void InitNominalWords()
{
    for (int word = kFirstNominalWord; word <= kLastNominalWord; ++word)
        for (int board = 0; board < kBoards; ++board)
            inForce.words[RowOf(word)][static_cast<std::size_t>(board)] = DefaultNominalWordOf(board, word);
    for (int i = 0; i < kVfGroups; ++i)
        inForce.vfGroups[static_cast<std::size_t>(i)] = FirstCyclePattern(i);
    NominalDirty = false;
}

void InitNominals()
{
    InitNominalSlopes();
    InitNominalWords();
}

std::shared_ptr<const NominalTables> CopyNominals()
{
    auto copy = std::make_shared<NominalTables>(inForce);
    copy->slopesDirty = SlopesDirty;
    copy->wordsDirty = NominalDirty;
    return copy;
}

void RestoreNominals(const NominalTables &nominals)
{
    inForce = nominals;
    SlopesDirty = nominals.slopesDirty;
    NominalDirty = nominals.wordsDirty;
}

float GetNominalSlope(int word)
{
    return NominalSlopeOf(SCType, word);
}

void SetNominalSlope(int word, float value)
{
    SetNominalSlopeOf(SCType, word, value);
}

float NominalSlopeOf(int board, int word)
{
    return IsCell(board, word) ? inForce.slopes[RowOf(word)][static_cast<std::size_t>(board)] : 0.0f;
}

void SetNominalSlopeOf(int board, int word, float value)
{
    if (!IsCell(board, word) || !std::isfinite(value))
        return;
    float &slope = inForce.slopes[RowOf(word)][static_cast<std::size_t>(board)];
    if (slope == value)
        return;
    slope = value;
    SlopesDirty = true;
}

std::string GetNominalWord(int word)
{
    return NominalWordOf(SCType, word);
}

void SetNominalWord(int word, const std::string &hex)
{
    SetNominalWordOf(SCType, word, hex);
}

std::string NominalWordOf(int board, int word)
{
    const std::string *text = NominalText(board, word);
    if (text)
        return *text;
    return board == kVf ? kNoVfGroup : kNoNominalWord;
}

void SetNominalWordOf(int board, int word, const std::string &hex)
{
    std::string *text = NominalText(board, word);
    // A word of another length would shift every word behind it in the board's image.
    if (!text || !IsWordText(hex, board == kVf ? 12 : 4) || *text == hex)
        return;
    *text = hex;
    NominalDirty = true;
}

}  // namespace ombrix
