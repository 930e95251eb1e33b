// Fuzzes: src/calibration/first_cycle_run.cpp src/links/meter_protocol.cpp
// Short: 64
//
// The stream of counts as the station gathers it: whatever a meter sends, it comes to an end, and sound counts are the
// same in any split.

#include "calibration/first_cycle_run.h"
#include "fuzz/support/case.h"
#include "fuzz/support/instruments.h"
#include "links/meter_identity.h"
#include "session/state.h"

using namespace ombrix;
using namespace ombrix::fuzz;

namespace {

constexpr int kPieces = 16;
constexpr std::size_t kLongestStream = 5000;  // three attempts and some noise
constexpr std::int64_t kLongestMs = 120'000;

struct Outcome {
    FirstCycleStatus status = FirstCycleStatus::Waiting;
    std::vector<FirstCycleAverages> averages;
    bool operator==(const Outcome &) const = default;
};

// One point. The stream comes `gapMs` apart in so many pieces, from the moment at which the station lets it in.
Outcome Collected(const std::string &words, const std::string &stream, int pieces, int gapMs)
{
    Instruments instruments;
    MeterKind = kDpm;
    SCType = kDc;
    CalPort = 0;  // the operator applies the signal
    instruments.meter.onWrite = [&](const std::string &frame) {
        if (frame.starts_with("*1X"))
            instruments.meter.Says(words + "\r", 5);
        if (frame != "*1V6\r")
            return;
        const std::size_t length = stream.size() / static_cast<std::size_t>(pieces) + 1;
        for (std::size_t at = 0; at < stream.size(); at += length)
            instruments.meter.Says(stream.substr(at, length), 1 + gapMs * static_cast<int>(at / length));
    };
    Outcome outcome;
    FirstCycleWatch watch;
    watch.averaged = [&](std::size_t, const FirstCycleAverages &averages) { outcome.averages.push_back(averages); };
    outcome.status = CollectFirstCycle("60", std::vector<FirstCyclePoint>{{"0 V", "0 V"}}, watch);
    Require(instruments.clock.Elapsed() < kLongestMs, "a collection comes to its end");
    return outcome;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Case input(bytes, size);
    const int gapMs = input.Below(64);
    const int rounds = input.Byte();
    const std::string words = input.Below(8) == 7 ? input.Bytes(16) : "0001000200030004";
    const std::string once = input.Rest();
    std::string stream;
    for (int round = 0; round <= rounds && stream.size() + once.size() <= kLongestStream; ++round)
        stream += once;
    const Outcome whole = Collected(words, stream, 1, 0);
    Require((whole.status == FirstCycleStatus::Good) == !whole.averages.empty(), "good is what has averages");
    Require(whole.status == FirstCycleStatus::Good || whole.status == FirstCycleStatus::NoData ||
                whole.status == FirstCycleStatus::NoStart || whole.status == FirstCycleStatus::BadData,
            "nobody stopped it");
    const Outcome split = Collected(words, stream, kPieces, gapMs);
    Require((split.status == FirstCycleStatus::Good) == !split.averages.empty(), "good is what has averages");
    // Not the other way round: before a second attempt what has come is dropped, and more may have come at once.
    Require(whole.status != FirstCycleStatus::Good || split == whole, "sound counts are the same in any split");
    return 0;
}
