#include "calibration/analog_output.h"

#include "links/meter_operations.h"
#include "links/meter_protocol.h"
#include "model/analog_settings.h"
#include "model/settings.h"
#include "platform/text.h"
#include "session/delays.h"
#include "session/state.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <utility>
#include <vector>

namespace ombrix {

AnalogOutput analog;

namespace {

constexpr int kSettleMs = 700;
constexpr int kOutputByte = 143;
constexpr int kCounterOutputWord = 17;
constexpr std::size_t kWordDigits = 4;
constexpr const char *kFactoryImage = "FA2001E0FD700048FD700048FA2001E0FD700048";

// What differs between a counter and all other meters.
struct Places {
    int rangeWord;
    const char *range;
    int modeWord;
    const char *modes[3];  // by kind
    int dacWord;
};
constexpr Places kMeter = {14, "004E20000000", 20, {"0201", "0001", "0601"}, 240};
constexpr Places kCounter = {26, "0186A0000000", 36, {"5555", "5511", "550D"}, 144};
constexpr const char *kDacTexts[] = {"0000", "525C", "535C", "545C"};

bool IsCounter()
{
    return SessionMeterKind == kCtr;
}

const Places &PlacesOfMeter()
{
    return IsCounter() ? kCounter : kMeter;
}

std::string WordText(std::uint16_t word)
{
    return HexText(word, kWordDigits);
}

std::string OutputText(std::int32_t value)
{
    return HexText(value, 6) + (IsCounter() ? "000000" : "600000");
}

// ---- borrowed words ----

// A run of words, named by its highest.
struct Run {
    int word;
    std::string found;
    std::string latest;               // what should stand there now
    std::set<std::string> written{};  // all that the station has put in its place: a write can get lost
};

struct Borrowed {
    bool counter = false;
    std::vector<Run> runs;
};
Borrowed borrowed;

struct Span {
    int word;
    int count;
};

// Two reads that hold all of them.
std::vector<Span> Spans(bool counter)
{
    return counter ? std::vector<Span>{{36, 22}, {144, 1}} : std::vector<Span>{{20, 9}, {240, 1}};
}

std::vector<Span> Overwritten(bool counter)
{
    return counter ? std::vector<Span>{{26, 3}, {36, 1}, {17, 3}, {144, 1}}
                   : std::vector<Span>{{14, 3}, {20, 1}, {240, 1}};
}

// The part of a text of words from `top` downward; "" when it isn't all in it.
std::string PartOf(const std::string &text, int top, int word, int count)
{
    const int words = static_cast<int>(text.size() / kWordDigits);
    if (word > top || word - count < top - words)
        return "";
    return text.substr(static_cast<std::size_t>(top - word) * kWordDigits,
                       static_cast<std::size_t>(count) * kWordDigits);
}

// What stands in the overwritten words now, in their order; empty when the meter did not answer.
std::vector<std::string> ReadOverwritten(bool counter)
{
    std::vector<std::pair<int, std::string>> read;
    for (const Span &span : Spans(counter)) {
        const std::string words = ReadNvmWords(span.word, span.count, "Z");
        if (words.empty())
            return {};
        read.emplace_back(span.word, words);
    }
    std::vector<std::string> runs;
    for (const Span &run : Overwritten(counter)) {
        for (const auto &[top, words] : read)
            if (const std::string part = PartOf(words, top, run.word, run.count); !part.empty())
                runs.push_back(part);
    }
    return runs;
}

// Puts those words of `text`, from `textTop` downward, that a run from `ownTop` downward has into its own text.
void Overlay(std::string &own, int ownTop, int textTop, std::string_view text)
{
    for (std::size_t at = 0; at < own.size(); at += kWordDigits) {
        const int word = ownTop - static_cast<int>(at / kWordDigits);
        if (const std::string part = PartOf(std::string(text), textTop, word, 1); !part.empty())
            own.replace(at, kWordDigits, part);
    }
}

void NoteWritten(int word, std::string_view text)
{
    for (Run &run : borrowed.runs) {
        Overlay(run.latest, run.word, word, text);
        run.written.insert(run.latest);
    }
}

bool IsOurMeter(const std::vector<std::string> &now)
{
    for (std::size_t i = 0; i < now.size(); ++i)
        if (now[i] != borrowed.runs[i].found && !borrowed.runs[i].written.contains(now[i]))
            return false;
    return true;
}

void WriteFoundWords()
{
    for (const Run &run : borrowed.runs)
        WriteAnalogNvm(run.word, run.found, &run == &borrowed.runs.back() ? "" : "Z");
}

bool AreFoundWords(const std::vector<std::string> &now)
{
    return std::equal(now.begin(), now.end(), borrowed.runs.begin(), borrowed.runs.end(),
                      [](const std::string &word, const Run &run) { return word == run.found; });
}

GivenBack WhyNoAnswer()
{
    return Abort ? GivenBack::Stopped : GivenBack::Silent;
}

// ---- groups ----

std::string GroupText(const std::array<std::uint16_t, kAnalogWords> &words, const AnalogGroup &group)
{
    std::string text;
    for (int i = 0; i < group.count; ++i)
        text += WordText(words[static_cast<std::size_t>(group.point - i)]);
    return text;
}

void TakeGroup(std::array<std::uint16_t, kAnalogWords> &words, const AnalogGroup &group, const std::string &text)
{
    for (int i = 0; i < group.count; ++i)
        words[static_cast<std::size_t>(group.point - i)] =
            static_cast<std::uint16_t>(HexValue(text.substr(static_cast<std::size_t>(i) * kWordDigits, kWordDigits)));
}

int AddressOf(const AnalogGroup &group)
{
    return AnalogWordAddress(group.point, IsCounter());
}

// Where a group stands in the image: its highest word is the first.
std::string GroupOfImage(const AnalogGroup &group)
{
    return analog.image.substr(static_cast<std::size_t>(AnalogWordOffset(group.point) - 1),
                               static_cast<std::size_t>(group.count) * kWordDigits);
}

WordRun RestoreGroup(const AnalogGroup &group, std::string_view suffix)
{
    const std::string text = GroupOfImage(group);
    WriteAnalogPoint(group.point, text, suffix);
    TakeGroup(analog.words, group, GroupText(analog.nominal, group));
    return {AddressOf(group), text};
}

}  // namespace

void InitAnalogOutput()
{
    analog = AnalogOutput();
    borrowed = Borrowed();
}

int AnalogCurrentPoint()
{
    return CurrentOffsetPoint == "4000" ? 4000 : 200;
}

void LoadAnalogNominal()
{
    analog.image = StoredAnalogImage();
    for (const AnalogGroup &group : kAnalogGroups)
        TakeGroup(analog.nominal, group, GroupOfImage(group));
    analog.dacType = static_cast<int>(Val(DacTypeText));
}

void ResetAnalogNominal()
{
    DacTypeText = "1";
    SaveAnaCal();
    analog.image = kFactoryImage;
    StoreAnalogWordsHex(analog.image);
}

bool AnalogGroupDone(const AnalogGroup &group)
{
    return group.point == 3 || (group.point == 5 ? analog.bipolarDone : analog.dualDone);
}

void BlendAnalogNominal()
{
    for (const AnalogGroup &group : kAnalogGroups) {
        if (!AnalogGroupDone(group))
            continue;
        for (int i = 0; i < group.count; ++i) {
            const auto point = static_cast<std::size_t>(group.point - i);
            if (analog.words[point] != analog.nominal[point])
                analog.nominal[point] = BlendAnalogWord(analog.words[point], analog.nominal[point]);
        }
        const std::string text = GroupText(analog.nominal, group);
        analog.image.replace(static_cast<std::size_t>(AnalogWordOffset(group.point) - 1), text.size(), text);
    }
    StoreAnalogWordsHex(analog.image);
}

void WriteAnalogNvm(int word, std::string_view hex, std::string_view suffix)
{
    NoteWritten(word, hex);
    WriteNvmWords(word, hex, IsCounter() ? "" : suffix);
    if (!IsCounter() && suffix.empty())
        DelayMs(kSettleMs);
}

std::string ReadAnalogNvm(int word, int count, std::string_view suffix)
{
    std::string hex = ReadNvmWords(word, count, IsCounter() ? "" : suffix);
    if (!IsCounter() && suffix.empty())
        DelayMs(kSettleMs);
    return hex;
}

void SetAnalogMode(AnalogKind kind)
{
    WriteAnalogNvm(PlacesOfMeter().modeWord, PlacesOfMeter().modes[kind], "");
}

void WriteAnalogPoint(int point, std::string_view hex, std::string_view suffix)
{
    WriteAnalogNvm(AnalogWordAddress(point, IsCounter()), hex, suffix);
}

void PrepareAnalogTest(std::string_view suffix)
{
    WriteAnalogNvm(PlacesOfMeter().rangeWord, PlacesOfMeter().range, "Z");
    WriteAnalogNvm(PlacesOfMeter().dacWord, kDacTexts[analog.dacType], suffix);
}

void OutputAnalogValue(std::int32_t value, std::string_view suffix)
{
    if (IsCounter())
        WriteAnalogNvm(kCounterOutputWord, OutputText(value), suffix);
    else
        WriteRamBytes(kOutputByte, OutputText(value));
}

void OutputAnalogPoint(int point, std::string_view suffix)
{
    OutputAnalogValue(AnalogOutputValue(point, AnalogCurrentPoint(), IsCounter()), suffix);
}

void ZeroAnalogOutput()
{
    if (borrowed.runs.empty())
        return;
    if (borrowed.counter)
        MeterSend('W', kCounterOutputWord, 3, OutputText(0));  // restarts it: nothing is sent behind this
    else
        WriteRamBytes(kOutputByte, OutputText(0));
}

std::vector<WordRun> RestoreAnalogWords()
{
    std::vector<WordRun> runs;
    PrepareAnalogTest("");
    for (const int i : {1, 2, 0})  // the first group restarts the meter with all of it
        if (AnalogGroupDone(kAnalogGroups[i]) && !Abort)
            runs.push_back(RestoreGroup(kAnalogGroups[i], i == 0 ? "" : "Z"));
    return runs;
}

AnalogRestored RestoreAndCheckAnalogWords(bool allOfDac)
{
    const ScopedFlag bipolar(analog.bipolarDone, analog.bipolarDone || (allOfDac && analog.dacType == kDacBipolar));
    const ScopedFlag dual(analog.dualDone, analog.dualDone || (allOfDac && analog.dacType == kDacDual));
    AnalogRestored restored{analog.words, RestoreAnalogWords()};
    if (!Abort)
        restored.held = CheckAnalogWords();
    return restored;
}

bool ReadAnalogWords()
{
    std::array<std::uint16_t, kAnalogWords> words = analog.words;
    for (const AnalogGroup &group : kAnalogGroups) {
        const std::string text = ReadAnalogNvm(AddressOf(group), group.count, "Z");
        if (text.empty())
            return false;
        TakeGroup(words, group, text);
    }
    analog.words = words;
    return true;
}

WordsHeld CheckAnalogWords()
{
    std::array<std::uint16_t, kAnalogWords> held = analog.words;
    for (const AnalogGroup &group : kAnalogGroups) {
        if (!AnalogGroupDone(group))
            continue;
        const std::string text = ReadNvmWords(AddressOf(group), group.count, "Z");
        if (text.empty())
            return WordsHeld::Silent;
        TakeGroup(held, group, text);
    }
    return std::exchange(analog.words, held) == held ? WordsHeld::Yes : WordsHeld::No;
}

WordsHeld CheckAnalogWord(int point)
{
    const std::string text = ReadNvmWords(AnalogWordAddress(point, IsCounter()), 1, "Z");
    if (text.empty())
        return WordsHeld::Silent;
    const auto held = static_cast<std::uint16_t>(HexValue(text));
    return std::exchange(analog.words[static_cast<std::size_t>(point)], held) == held ? WordsHeld::Yes : WordsHeld::No;
}

void TakeOverAnalogWords(int word, std::string_view hex)
{
    for (int point = 0; point < kAnalogWords; ++point)
        if (const auto part = PartOf(std::string(hex), word, AnalogWordAddress(point, IsCounter()), 1); !part.empty())
            analog.words[static_cast<std::size_t>(point)] = static_cast<std::uint16_t>(HexValue(part));
    NoteWritten(word, hex);
    for (Run &run : borrowed.runs)
        Overlay(run.found, run.word, word, hex);
}

bool BorrowAnalogSettings()
{
    if (AnalogSettingsBorrowed())
        return true;
    const bool counter = IsCounter();
    const std::vector<std::string> now = ReadOverwritten(counter);
    const std::vector<Span> runs = Overwritten(counter);
    if (now.size() != runs.size())
        return false;
    borrowed = {counter, {}};
    for (std::size_t i = 0; i < runs.size(); ++i)
        borrowed.runs.push_back({runs[i].word, now[i], now[i]});
    return true;
}

bool AnalogSettingsBorrowed()
{
    return !borrowed.runs.empty();
}

GivenBack GiveBackAnalogSettings()
{
    if (!AnalogSettingsBorrowed())
        return GivenBack::Yes;
    const std::vector<std::string> now = ReadOverwritten(borrowed.counter);
    if (now.empty())
        return WhyNoAnswer();
    if (borrowed.counter != IsCounter() || !IsOurMeter(now)) {
        borrowed = Borrowed();
        return GivenBack::OtherMeter;
    }
    OutputAnalogValue(0, "");
    WriteFoundWords();
    const std::vector<std::string> after = ReadOverwritten(borrowed.counter);
    if (!AreFoundWords(after))
        return after.empty() ? WhyNoAnswer() : GivenBack::NotTaken;
    borrowed = Borrowed();
    return GivenBack::Yes;
}

std::string AnalogSettingsNames()
{
    const bool counter = AnalogSettingsBorrowed() ? borrowed.counter : IsCounter();
    return counter ? "26 to 24, 36, 17 to 15, 144" : "14 to 12, 20, 240";
}

std::vector<std::string> AnalogSettingsFound()
{
    std::vector<std::string> found;
    for (const Run &run : borrowed.runs)
        found.push_back(run.found);
    return found;
}

std::string WhyNotGivenBack(GivenBack given, const std::string &names)
{
    switch (given) {
    case GivenBack::Silent:
        return "The meter did not answer: its words " + names +
               " still hold what the analog output's calibration needs.\r\n"
               "Check its line, open the AnaCal tab and click \"Done\".";
    case GivenBack::Stopped:
        return "Stopped before the meter's words " + names +
               " were read back: whether they are as they were isn't known.\r\n"
               "Open the AnaCal tab and click \"Done\".";
    case GivenBack::NotTaken:
        return "The meter's words " + names +
               " don't read back as they were before.\r\nOpen the AnaCal tab and click \"Done\" once more.";
    case GivenBack::OtherMeter:
        return "This is another meter than the one whose analog output was calibrated.\r\nNothing was written into it; "
               "the words " +
               names + " of the first one still hold what the calibration needs.";
    case GivenBack::Yes:
        break;
    }
    return "";
}

}  // namespace ombrix
