#include "calibration/first_cycle_run.h"

#include "links/calibrator.h"
#include "links/meter_operations.h"
#include "links/meter_protocol.h"
#include "platform/clock.h"
#include "session/delays.h"
#include "session/outlets.h"
#include "session/state.h"

namespace ombrix {
namespace {

constexpr int kWordsRead = 4;
constexpr std::size_t kWordsReadDigits = 16;
constexpr int kStreamMs = 500;    // from the restarted meter to its stream
constexpr int kRecordsMs = 5000;  // for the records of one call, however many
constexpr int kAttempts = 3;
constexpr const char *kNormalRunning = "21D1";

// Words 20 to 17 as they stand; "" when the meter didn't answer.
std::string PutOnStream(const std::string &rangeCode, const FirstCycleWatch &watch)
{
    std::string words = ReadNvmWords(20, kWordsRead, "");
    if (words.size() != kWordsReadDigits || Abort)
        return "";
    watch.found(words);
    const std::string setup = "0150" + words.substr(12) + "00" + rangeCode;
    WriteNvmWords(5, "000000100001", "Z");
    WriteNvmWords(51, "0000", "Z");
    if (SCType == kTc)
        WriteNvmWords(21, "0001" + words.substr(0, 8) + setup, "");
    else
        WriteNvmWords(18, setup, "");
    DelayMs(kStreamMs);
    MeterCommandV6();
    return words;
}

// True when a record may wait in the reader.
bool WaitForBytes(RecordReader &reader, const Deadline &limit)
{
    CountWord none;
    while (reader.Waiting() <= none.size() + 1 && !Abort && !limit.Passed() && !MeterLineIsGone())
        reader.Take(ReceiveMeterChunk());
    return reader.Waiting() > none.size() + 1;
}

// So many records from the stream; the first ones fill `kept`, the rest is read through.
FirstCycleStatus ReadRecords(RecordReader &reader, int count, std::span<CountWord> kept)
{
    const Deadline limit(kRecordsMs);
    FirstCycleStatus failure = FirstCycleStatus::NoData;
    CountWord word;
    for (int taken = 0; taken < count;) {
        switch (reader.Next(word)) {
        case RecordAnswer::NeedsMore:
            if (!WaitForBytes(reader, limit))
                return Abort ? FirstCycleStatus::Stopped : failure;
            break;
        case RecordAnswer::Record:
            if (static_cast<std::size_t>(taken) < kept.size())
                kept[static_cast<std::size_t>(taken)] = word;
            ++taken;
            break;
        case RecordAnswer::BeforeStart:
            failure = FirstCycleStatus::NoStart;
            break;
        case RecordAnswer::Noise:
            break;
        }
    }
    return FirstCycleStatus::Good;
}

FirstCycleStatus ReadFrames(FirstCycleFrames &frames, const std::function<void(std::size_t frames)> &gathered)
{
    if (Simulated()) {
        for (FirstCycleFrame &frame : frames)
            frame.fill({'0', '0', '0', '0'});
        gathered(frames.size());
        return FirstCycleStatus::Good;
    }
    FlushMeterInput();  // what waits there was measured at the input before
    RecordReader reader;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        gathered(i);
        FirstCycleStatus status = ReadRecords(reader, kWordsOfFrame, frames[i]);
        if (status == FirstCycleStatus::Good)
            status = ReadRecords(reader, kRecordsOfFrame - static_cast<int>(kWordsOfFrame), {});
        if (status != FirstCycleStatus::Good)
            return status;
    }
    gathered(frames.size());
    return FirstCycleStatus::Good;
}

FirstCycleStatus CollectPoint(std::size_t point, const FirstCycleWatch &watch)
{
    FirstCycleFrames frames;
    for (int attempt = 1; attempt <= kAttempts; ++attempt) {
        const FirstCycleStatus status =
            ReadFrames(frames, [&](std::size_t gathered) { watch.gathered(point, attempt, gathered); });
        if (status != FirstCycleStatus::Good)
            return status;
        if (const auto averages = AverageOfFrames(frames)) {
            watch.averaged(point, *averages);
            return FirstCycleStatus::Good;
        }
    }
    return FirstCycleStatus::BadData;
}

FirstCycleStatus CollectAt(const std::string &value, std::size_t point, const FirstCycleWatch &watch)
{
    if (Abort || !ApplyInput(value) || Abort)
        return FirstCycleStatus::Stopped;
    return InputStands() ? CollectPoint(point, watch) : FirstCycleStatus::NoInput;
}

}  // namespace

FirstCycleStatus CollectFirstCycle(const std::string &rangeCode, std::span<const FirstCyclePoint> points,
                                   const FirstCycleWatch &watch)
{
    if (PutOnStream(rangeCode, watch).empty())
        return Abort ? FirstCycleStatus::Stopped : FirstCycleStatus::NoData;
    const WaitNote note("Meter: gathering first cycle data");
    FirstCycleStatus status = FirstCycleStatus::Good;
    for (std::size_t point = 0; point < points.size() && status == FirstCycleStatus::Good; ++point)
        status = CollectAt(points[point].value, point, watch);
    return status;
}

void RestoreAfterFirstCycle()
{
    MeterCommandC0();
    MeterCommandA1();
    RemoveInput();
    WriteNvmWords(18, kNormalRunning, "Z");
    WriteDisplaySetupForward(4);
}

}  // namespace ombrix
