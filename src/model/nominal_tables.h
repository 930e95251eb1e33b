// What a good meter needs, before the station has learned anything: default slopes and default words.
#pragma once

namespace ombrix {

constexpr int kFirstNominalWord = 25;
constexpr int kLastNominalWord = 50;
constexpr int kNominalRows = kLastNominalWord - kFirstNominalWord + 1;

constexpr bool IsNominalWord(int word)
{
    return word >= kFirstNominalWord && word <= kLastNominalWord;
}

constexpr int kVfGroups = 3;
constexpr const char *kNoNominalWord = "0000";
constexpr const char *kNoVfGroup = "000000100000";

/// 0..2 for the groups at words 195, 198, 201, otherwise -1.
constexpr int VfGroupOfWord(int word)
{
    return word == 195 || word == 198 || word == 201 ? (word - 195) / 3 : -1;
}

}  // namespace ombrix
