// The fields in which the meter's words are shown and edited: which part of an image of words each of them is.
//
// An image is a run of words as text, the highest word first. Fields 0 to 34 are the calibration block of a DPM, fields
// 35 to 86 the memory of a counter.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ombrix {

constexpr int kFirstVfField = 35;
constexpr int kNvmFields = 87;

struct NvmField {
    std::string name;     ///< the meter's own name of it
    std::string address;  ///< word number as two hexadecimal digits, "L" behind it for the low byte
    int width = 0;        ///< hexadecimal digits; 0: this board has no such field
};
/// Field 0..86 as the open tab and, for a few, the board show it.
NvmField NvmFieldAt(int index, int calibTab, int board);

/// Where a field begins in the digits of an image whose first word is `topWord`, counted from 0.
std::size_t NvmFieldPlace(const NvmField &field, int topWord);
/// The field's digits; fewer where the image ends.
std::string NvmFieldText(std::string_view image, const NvmField &field, int topWord);
/// What a text in the field means: its last digits, filled with zeros in front.
std::string PaddedDigits(std::string_view text, std::size_t width);
/// The image with the field's digits replaced; unchanged where it ends before them.
std::string WithNvmField(std::string image, const NvmField &field, int topWord, std::string_view digits);

/// A run of words, from `start` downward.
struct NvmRun {
    int start = 0;
    int count = 0;
    bool operator==(const NvmRun &) const = default;
};
/// Changed words that follow each other, the highest first.
std::vector<NvmRun> ChangedRuns(std::string_view before, std::string_view after, int topWord);
/// The fewest writes that bring every changed word into the meter: at most two, cut at the first of the largest gaps. A
/// run may carry unchanged words between changed ones. None when nothing was changed.
std::vector<NvmRun> RunsToWrite(std::string_view before, std::string_view after, int topWord);
/// The digits of a run.
std::string DigitsOfRun(std::string_view image, int topWord, const NvmRun &run);
/// The image with the words from `word` downward replaced; unchanged when they don't all lie in it.
std::string WithRun(std::string image, int topWord, int word, std::string_view digits);
/// The numbers of the words of two images that differ, two hexadecimal digits each, the highest first.
std::vector<std::string> WordsThatDiffer(std::string_view one, std::string_view other, int topWord);

}  // namespace ombrix
