// Traces of whole sessions, played back: the links send what was sent then, and understand what came.

#include "support/trace_play.h"

#include "links/links_fixture.h"

#include <algorithm>

using namespace ombrix;
using namespace ombrix::test;

namespace {

class PlayedTrace : public LinksTest
{
protected:
    void Play(const std::string &name)
    {
        rows = TraceNamed(name);
        Plays(meter, rows, TraceLine::Meter);
        Plays(calibrator, rows, TraceLine::Calibrator);
        UseTraceClock([this] { return rows.front().micros + clock.NowMicros(); });
        OpenTrace(".");
    }

    void TearDown() override
    {
        CloseTrace();
        UseTraceClock(nullptr);
        LinksTest::TearDown();
    }

    // The session of both traces: Establish, a range, an input, a display, four words; then both instruments fall silent.
    void GoThroughTheSession()
    {
        EXPECT_EQ(OpenCalibratorLink(), 0);
        EXPECT_EQ(OpenMeterLink(), 0);
        EXPECT_TRUE(ReadMeterIdentity());
        EXPECT_EQ(MeterKind, 1);
        EXPECT_EQ(MeterRevNumber, 50);
        EXPECT_EQ(BoardCode, "01");
        EXPECT_TRUE(WriteRangeSetup("00116", "12", 4));
        EXPECT_TRUE(ApplyInput("200 mV"));
        EXPECT_EQ(panel, "200.0 mV");
        EXPECT_EQ(ReadDisplay(), "-0.01");
        EXPECT_EQ(ReadNvmWords(20, 4, "Z"), "0503000021D16536");
        EXPECT_EQ(ReadDisplayRaw(), "");
        EXPECT_FALSE(RemoveInput());
    }

    static std::vector<std::string> Lines(const std::vector<WireRow> &all)
    {
        std::vector<std::string> lines;
        for (const WireRow &row : all)
            lines.push_back(std::string(row.way == ByteWay::Sent       ? "> "
                                        : row.way == ByteWay::Received ? "< "
                                                                       : "! ") +
                            row.bytes + " = " + row.meaning);
        return lines;
    }

    std::vector<WireRow> rows;
};

}  // namespace

TEST_F(PlayedTrace, OfADirectSessionLeavesTheSameTraceAgain)
{
    Play("direct.trace");
    GoThroughTheSession();
    EXPECT_EQ(Lines(WireRows(LastTraceRecords(SIZE_MAX))), Lines(rows));
}

TEST_F(PlayedTrace, OfASessionThroughTheCalibratorLeavesTheSameTraceAgain)
{
    MeterPort = 0;
    Play("through-uut.trace");
    GoThroughTheSession();
    EXPECT_EQ(Lines(WireRows(LastTraceRecords(SIZE_MAX))), Lines(rows));
}

TEST_F(PlayedTrace, MarksWhatWasNotAnswered)
{
    Play("direct.trace");
    GoThroughTheSession();
    TellLiveOutput();
    std::vector<std::string> marks;
    for (const TraceRecord &record : LastTraceRecords(SIZE_MAX))
        if (record.way == ByteWay::Mark)
            marks.push_back(record.bytes);
    EXPECT_THAT(marks,
                ::testing::ElementsAre(
                    "The meter did not answer", "The calibrator did not answer ERR?",
                    "The calibrator did not answer OPER?", "The calibrator did not answer OUT?",
                    "Standby not confirmed: 200.0 mV may be on the terminals. Press the calibrator's own STBY key."));
    TellLiveOutput();
    EXPECT_EQ(LastTraceRecords(1).back().bytes, marks.back());
    EXPECT_EQ(std::count(marks.begin(), marks.end(), marks.back()), 1) << "an alert that stands is no new one";
}

TEST_F(PlayedTrace, AStopIsNoSilence)
{
    OpenTrace(".");
    OpenMeterPort();
    AbortsAfter(300);
    ReadMeterLine();
    Abort = false;
    OpenCalibratorPort();
    AbortsAfter(300);
    AskCalibrator(CalibratorQuestion::Operate);
    for (const TraceRecord &record : LastTraceRecords(SIZE_MAX))
        EXPECT_NE(record.way, ByteWay::Mark) << record.bytes;
}

TEST_F(PlayedTrace, AWrongAnswerAndAGoneLineAreMarkedAsThat)
{
    OpenTrace(".");
    OpenMeterPort();
    meter.Says("12", 10);
    ReadMeterLine();
    EXPECT_EQ(LastTraceRecords(1).back().bytes, "The meter did not end its answer");
    meter.HangsUp();
    ReadMeterLine();
    EXPECT_EQ(LastTraceRecords(1).back().bytes, "The meter did not answer: its line has gone");
    OpenCalibratorPort();
    calibrator.Answers("ERR?\n", "what?\r\n", 10);
    AskCalibrator(CalibratorQuestion::Errors);
    EXPECT_EQ(LastTraceRecords(1).back().bytes, "The calibrator answered something else to ERR?");
}
