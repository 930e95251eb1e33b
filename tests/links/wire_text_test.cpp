#include "links/wire_text.h"

#include "platform/file_faults.h"
#include "platform/safe_file.h"
#include "session/kept_remarks.h"
#include "session/outlets.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <cerrno>
#include <string>

using namespace ombrix;

namespace {

constexpr std::int64_t kMoment = 1'795'342'503'123'000;  // 2026-11-22 10:15:03.123

struct WireTextTest : testing::Test {
    WireTextTest()
    {
        QFile::remove("wire.txt");
        InitKeptRemarks();
        outlets = Outlets();
        outlets.keepRemark = [this](const std::string &text) { kept = text; };
        UseTraceClock([] { return kMoment; });
        OpenTrace(".");
    }
    ~WireTextTest() override
    {
        UseFileFaults(nullptr);
        EndTraceText();
        CloseTrace();
        UseTraceClock(nullptr);
        outlets = Outlets();
    }
    static std::string Written() { return ReadFile("wire.txt").value_or("none"); }
    std::string kept;
};

}  // namespace

TEST(WireText, IsOneLineForARow)
{
    EXPECT_EQ(WireText({kMoment, TraceLine::Meter, ByteWay::Sent, "*1X414Z\r", "read words 20..17"}),
              "2026-11-22T10:15:03.123Z  meter       sent      \"*1X414Z\\r\"  read words 20..17");
    EXPECT_EQ(WireText({kMoment, TraceLine::Calibrator, ByteWay::Received, "0,\"No Error\"\r\n", ""}),
              "2026-11-22T10:15:03.123Z  calibrator  received  \"0,\\\"No Error\\\"\\r\\n\"");
    EXPECT_EQ(MomentText(kMoment, false), "10:15:03.123");
}

TEST(WireText, ReadsBackAsItWasWhateverItsBytes)
{
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    for (const ByteWay way : {ByteWay::Sent, ByteWay::Received, ByteWay::Dropped, ByteWay::Mark})
        for (const TraceLine line : {TraceLine::Meter, TraceLine::Calibrator}) {
            const WireRow row{kMoment, line, way, all, "what it means"};
            EXPECT_EQ(ParseWireText(WireText(row)), row);
        }
    const WireRow plain{kMoment, TraceLine::Meter, ByteWay::Sent, "", ""};
    EXPECT_EQ(ParseWireText(WireText(plain)), plain);
}

TEST(WireText, OfAnotherKindIsNoRow)
{
    const std::string good = WireText({kMoment, TraceLine::Meter, ByteWay::Sent, "*1B1\r", "read the display"});
    ASSERT_TRUE(ParseWireText(good));
    EXPECT_TRUE(ParseWireText(good + "\r")) << "an editor's line ends";
    for (std::size_t length = 0; length < good.find("  read"); ++length)
        EXPECT_FALSE(ParseWireText(good.substr(0, length))) << length;
    for (const char *bad : {"2026-13-22T10:15:03.123Z  meter       sent      \"\"",
                            "2026-11-22T10:15:03.12xZ  meter       sent      \"\"",
                            "2026-11-22T10:15:03.123Z  meters      sent      \"\"",
                            "2026-11-22T10:15:03.123Z  meter       went      \"\"",
                            "2026-11-22T10:15:03.123Z  meter       sent      \"\\q\"",
                            "2026-11-22T10:15:03.123Z  meter       sent      \"\\x1\"",
                            "2026-11-22T10:15:03.123Z  meter       sent      \"\"x"})
        EXPECT_FALSE(ParseWireText(bad)) << bad;
    EXPECT_EQ(ParseWireTexts("# from the customer\n" + good + "\n\n" + good).size(), 2u);
}

TEST_F(WireTextTest, WrittenThroughStandsInTheFileWhenItsLineHasCome)
{
    EXPECT_EQ(WriteTraceTo("wire.txt"), "");
    Trace(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    Trace(TraceLine::Meter, ByteWay::Received, "1.");
    EXPECT_EQ(ParseWireTexts(Written()).size(), 1u);
    Trace(TraceLine::Meter, ByteWay::Received, "0\r");
    const auto rows = ParseWireTexts(Written());
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[1].meaning, "display 1.0");
    Trace(TraceLine::Meter, ByteWay::Received, "unfinished");
    EndTraceText();
    EXPECT_EQ(ParseWireTexts(Written()).back().bytes, "unfinished");
    Trace(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    EXPECT_EQ(ParseWireTexts(Written()).size(), 3u) << "closed";
}

TEST_F(WireTextTest, GoesOnBehindWhatStoodInTheFile)
{
    ASSERT_EQ(WriteFile("wire.txt", "the run before\n"), "");
    WriteTraceTo("wire.txt");
    Trace(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    EXPECT_TRUE(Written().starts_with("the run before\n2026-11-22T10:15:03.123Z  meter"));
}

TEST_F(WireTextTest, AFileThatCannotBeOpenedIsTold)
{
    EXPECT_EQ(WriteTraceTo("no-such-folder/wire.txt"), "No such file or directory");
    EXPECT_EQ(WriteTraceTo("."), "Is a directory");
    EXPECT_NE(WriteTraceTo("/dev/null"), "");
}

TEST_F(WireTextTest, ADiskThatFillsIsToldOnceAndTheRingGoesOn)
{
    WriteTraceTo("wire.txt");
    UseFileFaults([](FileCall call) { return FileFault{call == FileCall::Write ? ENOSPC : 0, 0}; });
    Trace(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    EXPECT_EQ(kept, "The trace is no longer written to wire.txt");
    UseFileFaults(nullptr);
    Trace(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    EXPECT_EQ(Written(), "");
    EXPECT_EQ(LastTraceRecords(9).size(), 2u);
}
