// The journal while its file can't be written.

#include "journal_fixture.h"

#include "session/kept_remarks.h"

#include <cerrno>
#include <stdexcept>
#include <unistd.h>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr const char *kNovember = "2026-11";

struct JournalTrouble : JournalTest {
    JournalTrouble()
    {
        number = ListenToJournal([this](const JournalEvent &event) { heard += event.kind + " "; });
    }
    ~JournalTrouble() override { StopListening(number); }

    // Calls `from` up to, not with, `until` of all that ask the system fail; writes take so many bytes first.
    void FailsCalls(int from, int until, std::size_t taken = 0)
    {
        calls = 0;
        UseFileFaults([this, from, until, taken](FileCall) {
            const bool fails = calls >= from && calls < until;
            ++calls;
            return FileFault{fails ? ENOSPC : 0, taken};
        });
    }

    void WritesFail(std::size_t taken = 0)
    {
        UseFileFaults([taken](FileCall call) { return FileFault{call == FileCall::Write ? ENOSPC : 0, taken}; });
    }

    void EverythingWorks() { UseFileFaults(nullptr); }

    int number = 0;
    int calls = 0;
    std::string heard;
};

}  // namespace

TEST_F(JournalTrouble, EventsWaitAndAreWrittenInOrderAtTheNextOne)
{
    Open();
    WritesFail();
    Record("one", {});
    Record("two", {});
    EXPECT_TRUE(JournalIsBehind());
    EXPECT_EQ(remarks, std::vector<std::string>{"not recorded"}) << "said once";
    EXPECT_EQ(heard, "start ") << "nobody hears of what is not on file";
    EverythingWorks();
    Record("three", {});
    EXPECT_FALSE(JournalIsBehind());
    EXPECT_EQ(remarks, (std::vector<std::string>{"not recorded", ""}));
    EXPECT_EQ(heard, "start one two three ");
    EXPECT_EQ(Kinds(kNovember), "start one two three ");
    ExpectChain(Lines(kNovember));
}

TEST_F(JournalTrouble, LeavesTheRemarksOnOtherSubjects)
{
    KeepRemarkOn(Subject::Settings, "not saved");
    Open();
    WritesFail();
    Record("one", {});
    EXPECT_EQ(remarks.back(), "not saved   not recorded");
    EverythingWorks();
    Record("two", {});
    EXPECT_EQ(remarks.back(), "not saved");
    KeepRemarkOn(Subject::Settings, "");
}

TEST_F(JournalTrouble, AnEventKeepsItsOwnTimeAndVisitWhileItWaits)
{
    Open();
    OpenVisit({});
    const std::string visit = CurrentVisit();
    WritesFail();
    Record("one", {});
    EverythingWorks();
    now += 60'000;
    clock.Advance(60'000);
    OpenVisit({});
    const QJsonObject line = Json(Lines(kNovember)[2]);
    EXPECT_EQ(line["utc"], "2026-11-22T01:39:00.123Z");
    EXPECT_EQ(line["monotonicMs"].toInt(), 1'000'000);
    EXPECT_EQ(line["visit"].toString().toStdString(), visit);
}

TEST_F(JournalTrouble, WhateverCallFailsForHoweverLongNothingIsMissingTwiceOrOutOfOrder)
{
    for (const int length : {1, 2, 5, 1000})
        for (int from = 0;; ++from) {
            QDir("station/Journal").removeRecursively();
            heard.clear();
            FailsCalls(from, from + length);
            Open();
            for (const char *kind : {"a", "b", "c", "d", "e"})
                Record(kind, {});
            const bool reached = calls > from;
            EverythingWorks();
            EXPECT_EQ(CloseJournal(), 0u);
            EXPECT_EQ(Kinds(kNovember), "start a b c d e end ") << from;
            EXPECT_EQ(heard, "start a b c d e end ") << from;
            ExpectChain(Lines(kNovember));
            if (!reached)
                break;
        }
    ASSERT_FALSE(remarks.empty());
    EXPECT_EQ(remarks.back(), "");
}

TEST_F(JournalTrouble, WhereverALineIsTornItIsClosedAndWrittenAgain)
{
    Open();
    Record("b", {});
    const std::size_t line = Lines(kNovember)[1].size();
    std::string expected = "start b ";
    for (std::size_t taken = 1; taken <= line + 2; ++taken) {
        heard.clear();
        WritesFail(taken);
        Record("b", {});  // torn
        Record("c", {});  // torn again, behind the line end of the first
        EverythingWorks();
        Record("d", {});
        EXPECT_EQ(heard, "b c d ") << taken;
        EXPECT_FALSE(JournalIsBehind());
        expected += "b c d ";
    }
    EXPECT_EQ(Kinds(kNovember), expected);
    ExpectChain(Lines(kNovember));
}

TEST_F(JournalTrouble, WhatDoesNotFitIntoMemoryIsCountedAndTold)
{
    Open();
    WritesFail();
    const std::string text(100'000, 'x');
    for (int count = 0; count < 50; ++count) {
        now += 1000;
        Record("big", {{"text", text}});
    }
    EXPECT_TRUE(JournalIsBehind());
    EverythingWorks();
    Record("after", {});
    EXPECT_FALSE(JournalIsBehind());
    const auto lines = Lines(kNovember);
    ASSERT_EQ(lines.size(), 1u + 41u + 2u) << Kinds(lines);
    const QJsonObject lost = Json(lines[42]);
    EXPECT_EQ(lost["kind"], "lost");
    EXPECT_EQ(lost["body"].toObject()["count"].toInt(), 9);
    EXPECT_EQ(lost["body"].toObject()["first"], "2026-11-22T01:39:42.123Z");
    EXPECT_EQ(lost["body"].toObject()["last"], "2026-11-22T01:39:50.123Z");
    EXPECT_EQ(Json(lines[43])["kind"], "after");
    ExpectChain(lines);
}

TEST_F(JournalTrouble, ASmallEventNeverOvertakesTheWordOfALostOne)
{
    Open();
    WritesFail();
    Record("huge", {{"text", std::string(kJournalMemory, 'x')}});
    Record("small", {});
    EXPECT_TRUE(JournalIsBehind());
    EverythingWorks();
    Record("after", {});
    EXPECT_EQ(Kinds(kNovember), "start lost small after ");
    EXPECT_EQ(heard, "start lost small after ");
}

TEST_F(JournalTrouble, AnEventLargerThanMemoryIsLostAlsoOnAGoodDay)
{
    Open();
    Record("huge", {{"text", std::string(kJournalMemory, 'x')}});
    EXPECT_TRUE(JournalIsBehind());
    EXPECT_EQ(CloseJournal(), 0u);
    EXPECT_EQ(Kinds(kNovember), "start lost end ");
}

TEST_F(JournalTrouble, WhatCannotBeRecordedAtTheEndIsCounted)
{
    Open();
    WritesFail();
    Record("one", {});
    EXPECT_EQ(CloseJournal(), 2u) << "it and the end";
    EverythingWorks();
    Open();
    EXPECT_TRUE(LastRunEndedWithoutGoodbye());
    EXPECT_EQ(Kinds(kNovember), "start start no goodbye ");
    EXPECT_EQ(remarks.back(), "") << "a new run is not behind";
}

TEST_F(JournalTrouble, AnEventWaitsForAnotherProgramThatStandsStillInItsOwn)
{
    Open();
    AppendFile other;
    ASSERT_TRUE(other.Open(Path(kNovember)));
    ASSERT_TRUE(other.Lock());
    Record("one", {});
    EXPECT_TRUE(JournalIsBehind());
    EXPECT_EQ(Kinds(kNovember), "start ");
    other.Unlock();
    Record("two", {});
    EXPECT_FALSE(JournalIsBehind());
    EXPECT_EQ(Kinds(kNovember), "start one two ");
    ExpectChain(Lines(kNovember));
}

TEST_F(JournalTrouble, AFolderThatGoesAndComesBackGetsWhatWasMissed)
{
    Open();
    ASSERT_TRUE(QDir().rename("station", "away"));
    Record("one", {});
    EXPECT_TRUE(JournalIsBehind());
    EXPECT_FALSE(QDir("station").exists()) << "the folder of a station that is gone is not made up";
    ASSERT_TRUE(QDir().rename("away", "station"));
    Record("two", {});
    EXPECT_FALSE(JournalIsBehind());
    EXPECT_EQ(Kinds(kNovember), "start one two ");
    ExpectChain(Lines(kNovember));
}

TEST_F(JournalTrouble, AJournalThatIsDeletedBeginsAgainAndShowsIt)
{
    Open();
    const QByteArray first = Lines(kNovember)[0];
    ASSERT_TRUE(QDir("station/Journal").removeRecursively());
    Record("one", {});
    const auto lines = Lines(kNovember);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(Json(lines[0])["seq"].toInt(), 2);
    EXPECT_EQ(Json(lines[0])["prev"].toString().toStdString(),
              QCryptographicHash::hash(first, QCryptographicHash::Sha256).toHex().toStdString());
}

TEST_F(JournalTrouble, AFileThatWasNotThereAtTheStartIsJoinedWhereItEnds)
{
    Open();
    Record("before", {});
    CloseJournal();
    ASSERT_TRUE(QDir().rename("station", "away"));
    Open();
    EXPECT_FALSE(LastRunEndedWithoutGoodbye()) << "nobody knows";
    EXPECT_TRUE(JournalIsBehind());
    ASSERT_TRUE(QDir().rename("away", "station"));
    now = Moment("2026-12-01T00:00:00.000Z");
    Record("late", {});
    auto lines = Lines(kNovember);
    EXPECT_EQ(Kinds(lines), "start before end start ");
    for (const QByteArray &line : Lines("2026-12"))
        lines.push_back(line);
    ExpectChain(lines);
}

TEST_F(JournalTrouble, AMonthThatIsNewAfterTheFolderCameBackStillJoinsTheOldOne)
{
    Open();
    CloseJournal();
    ASSERT_TRUE(QDir().rename("station", "away"));
    now = Moment("2026-12-01T00:00:00.000Z");
    Open();
    ASSERT_TRUE(QDir().rename("away", "station"));
    Record("late", {});
    const auto lines = Lines(kNovember, "2026-12");
    EXPECT_EQ(Kinds(lines), "start end start late ");
    ExpectChain(lines);
}

TEST_F(JournalTrouble, AFolderInTheFilesPlaceIsWaitedOut)
{
    Open();
    CloseJournal();
    ASSERT_TRUE(QFile::rename("station/Journal/2026-11.jsonl", "kept.jsonl"));
    ASSERT_TRUE(QDir().mkdir("station/Journal/2026-11.jsonl"));
    Open();
    Record("one", {});
    EXPECT_TRUE(JournalIsBehind());
    ASSERT_TRUE(QDir().rmdir("station/Journal/2026-11.jsonl"));
    ASSERT_TRUE(QFile::rename("kept.jsonl", "station/Journal/2026-11.jsonl"));
    Record("two", {});
    EXPECT_EQ(Kinds(kNovember), "start end start one two ");
    ExpectChain(Lines(kNovember));
}

TEST_F(JournalTrouble, AFileInTheFoldersPlaceIsWaitedOut)
{
    Put("station/Journal", "not a folder");
    Open();
    EXPECT_TRUE(JournalIsBehind());
    ASSERT_TRUE(QFile::remove("station/Journal"));
    Record("one", {});
    EXPECT_EQ(Kinds(kNovember), "start one ");
}

TEST_F(JournalTrouble, ALinkThatLeadsNowhereIsWaitedOut)
{
    ASSERT_TRUE(QDir().mkdir("station/Journal"));
    ASSERT_EQ(symlink("2026-11.jsonl", Path(kNovember).c_str()), 0);  // to itself
    Open();
    EXPECT_TRUE(JournalIsBehind());
    ASSERT_EQ(unlink(Path(kNovember).c_str()), 0);
    Record("one", {});
    EXPECT_EQ(Kinds(kNovember), "start one ");
}

TEST_F(JournalTrouble, AnEventOfLastMonthThatWaitedGoesIntoLastMonthsFile)
{
    Open();
    WritesFail();
    now = Moment("2026-11-30T23:59:59.000Z");
    Record("old", {});
    EverythingWorks();
    now = Moment("2026-12-01T00:00:00.000Z");
    Record("new", {});
    EXPECT_EQ(Kinds(kNovember), "start old ");
    EXPECT_EQ(Kinds("2026-12"), "new ");
}

TEST_F(JournalTrouble, RecordThrowsNothing)
{
    Open();
    UseWallClock([]() -> std::int64_t { throw std::runtime_error("no memory"); });
    EXPECT_NO_THROW(Record("one", {}));
    EXPECT_TRUE(JournalIsBehind());
    UseWallClock([this] { return now; });
    Record("two", {});
    EXPECT_EQ(Kinds(kNovember), "start lost two ");
    EXPECT_FALSE(JournalIsBehind());
}
