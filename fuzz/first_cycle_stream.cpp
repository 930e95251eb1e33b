// Fuzzes: src/calibration/first_cycle.cpp
//
// The meter's stream of counts in any split, and what is computed from it.

#include "calibration/first_cycle.h"
#include "fuzz/support/case.h"
#include "platform/text.h"

#include <algorithm>
#include <cmath>

using namespace ombrix;
using namespace ombrix::fuzz;

namespace {

constexpr std::size_t kRecordBytes = 5;

struct Gathered {
    std::vector<CountWord> words;
    int beforeStart = 0;
    int noise = 0;
    bool operator==(const Gathered &) const = default;
};

Gathered Gather(const std::vector<std::string> &pieces)
{
    Gathered gathered;
    RecordReader reader;
    CountWord word{};
    for (const std::string &piece : pieces) {
        reader.Take(piece);
        for (auto answer = reader.Next(word); answer != RecordAnswer::NeedsMore; answer = reader.Next(word)) {
            if (answer == RecordAnswer::Record)
                gathered.words.push_back(word);
            gathered.beforeStart += answer == RecordAnswer::BeforeStart ? 1 : 0;
            gathered.noise += answer == RecordAnswer::Noise ? 1 : 0;
        }
        Require(reader.Waiting() <= kRecordBytes, "no more waits than one record");
    }
    std::size_t total = reader.Waiting() + static_cast<std::size_t>(gathered.noise);
    total += (gathered.words.size() + static_cast<std::size_t>(gathered.beforeStart)) * kRecordBytes;
    std::size_t given = 0;
    for (const std::string &piece : pieces)
        given += piece.size();
    Require(total == given, "each byte is in a record, is noise, or waits");
    return gathered;
}

// Every record stands in the stream as it was given, in its order.
void RequireInStream(const Gathered &gathered, std::string_view stream)
{
    std::size_t at = 0;
    for (const CountWord &word : gathered.words) {
        std::string record(word.begin(), word.end());
        record += '\xFF';
        at = stream.find(record, at);
        Require(at != std::string_view::npos, "a record is five bytes of the stream");
        at += kRecordBytes;
    }
    Require(gathered.words.empty() || gathered.words.front()[0] == '!', "nothing counts before a start");
}

// As many points as there are counts for, a byte each where there are too few.
std::vector<FirstCycleAverages> PointsOf(const std::vector<CountWord> &words)
{
    constexpr std::size_t kWordsOfPoint = kFirstCycleFrames * kWordsOfFrame;
    std::vector<FirstCycleAverages> points;
    for (std::size_t at = 0; at + kWordsOfPoint <= words.size(); at += kWordsOfPoint) {
        FirstCycleFrames frames;
        for (std::size_t i = 0; i < kWordsOfPoint; ++i)
            frames[i / kWordsOfFrame][i % kWordsOfFrame] = words[at + i];
        const auto averages = AverageOfFrames(frames);
        if (!averages)
            continue;
        for (std::size_t channel = 0; channel < averages->size(); ++channel) {
            const std::int32_t least = channel < 6 ? -5000 : 0;
            const std::int32_t most = channel < 6 ? 5001 : 65536;
            Require((*averages)[channel] >= least && (*averages)[channel] <= most, "an average lies among its counts");
        }
        points.push_back(*averages);
    }
    return points;
}

void RequireResult(const std::vector<FirstCycleAverages> &points)
{
    if (points.size() < 2)
        return;
    const auto result = ComputeFirstCycle(points);
    if (!result)
        return;
    Require(result->word.size() == 4 && IsHexText(result->word), "M and B are one word");
    for (const FirstCycleRow &row : result->rows)
        Require(std::isfinite(row.m) && std::isfinite(row.b), "a slope and a rest are numbers");
    const int m = std::stoi(SignedHexByteText(result->word.substr(0, 2)));
    Require(m >= -128 && m <= 127, "a byte has a sign");
}

// Averages that no stream gives so soon: two bytes each.
std::vector<FirstCycleAverages> AveragesOf(Case &input)
{
    std::vector<FirstCycleAverages> points(static_cast<std::size_t>(3 + 2 * input.Below(2)));
    for (FirstCycleAverages &point : points)
        for (std::size_t channel = 0; channel < point.size(); ++channel) {
            const int number = input.Byte() * 256 + input.Byte();
            point[channel] = channel < 6 ? number % 10001 - 5000 : number;
        }
    return points;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Case input(bytes, size);
    const int seed = input.Byte();
    if (seed == 255) {
        RequireResult(AveragesOf(input));
        return 0;
    }
    const std::string stream = input.Rest();
    const Gathered gathered = Gather({stream});
    Require(Gather(Pieces(stream, seed)) == gathered, "the stream gives the same in any split");
    RequireInStream(gathered, stream);
    // A point takes 1350 bytes: here every record counts, in its order, so that a few give one.
    std::vector<CountWord> many;
    while (!gathered.words.empty() && many.size() < 5 * kFirstCycleFrames * kWordsOfFrame)
        many.push_back(gathered.words[many.size() % gathered.words.size()]);
    RequireResult(PointsOf(many));
    RequireResult(PointsOf(gathered.words));
    return 0;
}
