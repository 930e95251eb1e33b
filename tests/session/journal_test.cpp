#include "journal_fixture.h"

#include "platform/fault.h"
#include "support/other_process.h"

#include <csignal>
#include <map>
#include <stdexcept>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr const char *kNovember = "2026-11";

using Journal = JournalTest;

}  // namespace

TEST_F(Journal, AnEventIsALineOfTheMonthsFile)
{
    Open();
    clock.Advance(250);
    now += 250;
    Record("round", {{"word", 35}, {"reading", "1.9995"}});
    const auto lines = Lines(kNovember);
    ASSERT_EQ(lines.size(), 2u);
    QJsonObject line = Json(lines[1]);
    EXPECT_EQ(line.take("id").toString().size(), 36);
    EXPECT_EQ(line.take("prev"), Json(lines[1])["prev"]);
    const QJsonObject expected{{"seq", 2},
                               {"utc", "2026-11-22T01:39:00.373Z"},
                               {"monotonicMs", 1'000'250},
                               {"station", "Bench 7"},
                               {"version", "1.2.3"},
                               {"visit", ""},
                               {"kind", "round"},
                               {"body", QJsonObject{{"word", 35}, {"reading", "1.9995"}}}};
    EXPECT_EQ(line, expected) << lines[1].toStdString();
    EXPECT_EQ(Bytes(kNovember).back(), '\n');
    ExpectChain(lines);
}

TEST_F(Journal, EveryEventHasAnIdOfItsOwn)
{
    Open();
    Record("round", {});
    Record("round", {});
    const auto lines = Lines(kNovember);
    EXPECT_NE(Json(lines[1])["id"], Json(lines[2])["id"]);
}

TEST_F(Journal, BeginsWithTheStartAndEndsWithTheEnd)
{
    Open();
    EXPECT_EQ(CloseJournal(), 0u);
    EXPECT_EQ(Kinds(kNovember), "start end ");
    const QJsonObject body = Json(Lines(kNovember)[0])["body"].toObject();
    EXPECT_EQ(body["folder"].toString(), QDir("station").absolutePath());
    EXPECT_EQ(body["pid"].toInt(), getpid());
    Record("late", {});
    EXPECT_EQ(Kinds(kNovember), "start end ") << "closed";
}

TEST_F(Journal, OneThatIsNotOpenRecordsAndTellsNothing)
{
    int told = 0;
    const int number = ListenToJournal([&told](const JournalEvent &) { ++told; });
    Record("round", {});
    OpenVisit({});
    StopListening(number);
    EXPECT_EQ(told, 0);
    EXPECT_FALSE(QDir("station/Journal").exists());
    EXPECT_FALSE(JournalIsBehind());
}

TEST_F(Journal, SwitchedOffItLeavesNoTrace)
{
    UseJournal(false);
    Open();
    Record("round", {});
    EXPECT_EQ(CloseJournal(), 0u);
    EXPECT_FALSE(QDir("station/Journal").exists());
    UseJournal(true);
    Open();
    UseJournal(false);
    Record("round", {});
    UseJournal(true);
    Record("again", {});
    EXPECT_EQ(Kinds(kNovember), "start again ");
}

TEST_F(Journal, CountsAndChainsOverRestarts)
{
    for (int run = 0; run < 3; ++run) {
        Open();
        Record("round", {});
        CloseJournal();
    }
    const auto lines = Lines(kNovember);
    EXPECT_EQ(lines.size(), 9u);
    ExpectChain(lines);
}

TEST_F(Journal, CountsAndChainsOverMonths)
{
    Open();
    now = Moment("2026-11-30T23:59:59.999Z");
    Record("last", {});
    now += 1;
    Record("first", {});
    CloseJournal();
    now = Moment("2027-02-01T00:00:00.000Z");
    Open();
    auto lines = Lines(kNovember);
    for (const char *month : {"2026-12", "2027-02"})
        for (const QByteArray &line : Lines(month))
            lines.push_back(line);
    EXPECT_EQ(Kinds(kNovember), "start last ");
    EXPECT_EQ(Kinds("2026-12"), "first end ");
    EXPECT_EQ(Kinds("2027-02"), "start ");
    ExpectChain(lines);
}

TEST_F(Journal, AClockThatStepsBackBreaksNothing)
{
    now = Moment("2027-01-01T00:00:00.000Z");
    Open();
    now = Moment("2026-11-30T00:00:00.000Z");
    Record("earlier", {});
    CloseJournal();
    EXPECT_EQ(Kinds("2027-01"), "start ");
    Open();
    EXPECT_EQ(Kinds(kNovember), "earlier end start ") << "no word of a missing goodbye";
    auto lines = Lines("2027-01");
    for (const QByteArray &line : Lines(kNovember))
        lines.push_back(line);
    ExpectChain(lines);
}

TEST_F(Journal, AClockFarOffStillGivesAMonth)
{
    Open();
    for (const std::int64_t moment : {std::int64_t{-5}, std::numeric_limits<std::int64_t>::max(), std::int64_t{0}}) {
        now = moment;
        Record("far", {});
    }
    EXPECT_EQ(Kinds("1970-01"), "far far ");
    EXPECT_EQ(Kinds("9999-12"), "far ");
    EXPECT_FALSE(JournalIsBehind());
}

TEST_F(Journal, AVisitIsOpenedForOneMeterAndMarksItsEvents)
{
    Open();
    EXPECT_EQ(CurrentVisit(), "");
    OpenVisit({{"board", "DC"}});
    const std::string first = CurrentVisit();
    Record("round", {});
    OpenVisit({{"board", "DC"}});
    EXPECT_NE(CurrentVisit(), first);
    EXPECT_EQ(first.size(), 36u);
    const auto lines = Lines(kNovember);
    EXPECT_EQ(Kinds(lines), "start visit round visit ");
    EXPECT_EQ(Json(lines[1])["visit"].toString().toStdString(), first);
    EXPECT_EQ(Json(lines[1])["body"].toObject()["board"], "DC");
    EXPECT_EQ(Json(lines[2])["visit"].toString().toStdString(), first);
    EXPECT_EQ(Json(lines[3])["visit"].toString().toStdString(), CurrentVisit());
    Open();
    EXPECT_EQ(CurrentVisit(), "") << "another run";
}

// ---- the run before ----

TEST_F(Journal, TellsWhetherTheRunBeforeSaidGoodbye)
{
    Open();
    EXPECT_FALSE(LastRunEndedWithoutGoodbye()) << "there was none";
    CloseJournal();
    Open();
    EXPECT_FALSE(LastRunEndedWithoutGoodbye());
    EXPECT_EQ(Kinds(kNovember), "start end start ");
    Open();
    EXPECT_TRUE(LastRunEndedWithoutGoodbye());
    const auto lines = Lines(kNovember);
    EXPECT_EQ(Kinds(lines), "start end start start no goodbye ");
    const QJsonObject body = Json(lines.back())["body"].toObject();
    EXPECT_EQ(body["seq"].toInt(), 3);
    EXPECT_EQ(body["kind"], "start");
    EXPECT_EQ(body["utc"], "2026-11-22T01:39:00.123Z");
    CloseJournal();
    Open();
    EXPECT_FALSE(LastRunEndedWithoutGoodbye());
}

TEST_F(Journal, AKilledProgramLeavesAllThatItRecorded)
{
    const pid_t child = fork();
    if (child == 0) {
        Open();
        for (int round = 0; round < 50; ++round)
            Record("round", {{"round", round}});
        kill(getpid(), SIGKILL);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(Lines(kNovember).size(), 51u);
    Open();
    EXPECT_TRUE(LastRunEndedWithoutGoodbye());
    ExpectChain(Lines(kNovember));
}

TEST_F(Journal, ABrokenLastLineIsClosedAndLeftBehind)
{
    Open();
    Record("round", {});
    CloseJournal();
    const std::string whole = Bytes(kNovember);
    const std::size_t last = whole.rfind('\n', whole.size() - 2) + 1;
    for (std::size_t cut = last; cut < whole.size(); cut += 7) {
        Put(Path(kNovember), whole.substr(0, cut));
        Open();
        const auto lines = Lines(kNovember);
        EXPECT_EQ(Kinds(lines), "start round start no goodbye ") << cut;
        EXPECT_EQ(Bytes(kNovember).substr(0, cut), whole.substr(0, cut)) << "what stands stays";
        ExpectChain(lines);
    }
    Put(Path(kNovember), whole.substr(0, whole.size() - 1));  // all but its line end
    Open();
    EXPECT_FALSE(LastRunEndedWithoutGoodbye());
    EXPECT_EQ(Kinds(kNovember), "start round end start ");
    ExpectChain(Lines(kNovember));
}

TEST_F(Journal, GoesOnBehindAMonthThatHoldsNothingWhole)
{
    Open();
    CloseJournal();
    now = Moment("2026-12-01T00:00:00.000Z");
    Put(Path("2026-12"), "{\"seq\":");
    Open();
    const auto lines = Lines(kNovember, "2026-12");
    EXPECT_EQ(Kinds(lines), "start end start ");
    ExpectChain(lines);
}

TEST_F(Journal, AGoodbyeThatIsKnownFromElsewhereCountsWhenItCameLast)
{
    const std::int64_t begun = now;
    Open();
    now += 1000;
    Record("round", {});
    const auto opens = [](std::int64_t goodbyeMs) {
        Open({true, goodbyeMs});
        return !LastRunEndedWithoutGoodbye();
    };
    EXPECT_FALSE(opens(0));
    now += 1000;
    Record("round", {});
    EXPECT_FALSE(opens(begun)) << "of an earlier run";
    now += 1000;
    Record("round", {});
    EXPECT_TRUE(opens(now));
    EXPECT_EQ(Kinds(kNovember), "start round start no goodbye round start no goodbye round start ");
}

// ---- another program in the folder ----

TEST_F(Journal, EachOfTwoProgramsGoesOnBehindTheOther)
{
    Open();
    Record("a", {});
    InAnotherProcess([] {
        Open({false, 0});
        EXPECT_FALSE(LastRunEndedWithoutGoodbye()) << "the run of the other goes on";
        Record("b", {});
    });
    Record("c", {});
    Record("d", {});
    InAnotherProcess([] {
        Open({false, 0});
        CloseJournal();
    });
    Record("e", {});
    EXPECT_EQ(Kinds(kNovember), "start a start b c d start end e ");
    ExpectChain(Lines(kNovember));
}

TEST_F(Journal, AMonthThatIsNewJoinsWhatTheOtherWroteIntoTheOldOne)
{
    Open();
    InAnotherProcess([] {
        Open();
        Record("b", {});
    });
    now = Moment("2026-12-01T00:00:00.000Z");
    Record("new", {});
    const auto lines = Lines(kNovember, "2026-12");
    EXPECT_EQ(Kinds(lines), "start start no goodbye b new ");
    ExpectChain(lines);
}

TEST_F(Journal, OfTwoProgramsThatRecordAtOnceNoneTakesTheOthersNumber)
{
    constexpr int kEach = 2000;
    Open();
    const auto records = [] {
        for (int number = 0; number < kEach; ++number)
            Record("event", {{"number", number}});
        while (JournalIsBehind())
            Record("more", {});
    };
    const pid_t child = fork();
    if (child == 0) {
        Open({false, 0});
        records();
        _exit(0);
    }
    records();
    waitpid(child, nullptr, 0);
    const auto lines = Lines(kNovember);
    std::map<std::string, int> times;
    for (const QByteArray &line : lines)
        ++times[Json(line)["kind"].toString().toStdString()];
    EXPECT_EQ(times["event"], 2 * kEach);
    ExpectChain(lines);
}

// ---- listeners ----

TEST_F(Journal, AllListenersHearOfWhatIsOnFile)
{
    std::string heard;
    const auto listen = [&heard](const char *who) {
        return ListenToJournal([&heard, who](const JournalEvent &event) {
            EXPECT_EQ(Json(Lines(kNovember).back())["id"].toString().toStdString(), event.id) << "it is there";
            heard += who + event.kind + " ";
        });
    };
    const int a = listen("a:");
    const int b = listen("b:");
    Open();
    Record("round", {});
    StopListening(a);
    Record("more", {});
    StopListening(b);
    Record("silent", {});
    EXPECT_EQ(heard, "a:start b:start a:round b:round b:more ");
}

TEST_F(Journal, AListenerHearsTheWholeEvent)
{
    std::vector<JournalEvent> heard;
    const int number = ListenToJournal([&heard](const JournalEvent &event) { heard.push_back(event); });
    Open();
    OpenVisit({{"board", "DC"}, {"simulated", false}});
    StopListening(number);
    ASSERT_EQ(heard.size(), 2u);
    EXPECT_EQ(heard[1].seq, 2);
    EXPECT_EQ(heard[1].visit, CurrentVisit());
    EXPECT_EQ(heard[1].body, (JournalFields{{"board", "DC"}, {"simulated", false}}));
    const QByteArray line = Lines(kNovember).back();
    EXPECT_EQ(heard[1].prev, Json(line)["prev"].toString().toStdString());
    EXPECT_EQ(heard[1].hash, QCryptographicHash::hash(line, QCryptographicHash::Sha256).toHex().toStdString());
}

TEST_F(Journal, AListenerMayRecordAndLeave)
{
    std::string heard;
    int first = 0;
    first = ListenToJournal([&](const JournalEvent &event) {
        heard += "1:" + event.kind + " ";
        if (event.kind == "round") {
            Record("answer", {});
            EXPECT_FALSE(JournalIsBehind());
            StopListening(first);
        }
    });
    const int second = ListenToJournal([&](const JournalEvent &event) { heard += "2:" + event.kind + " "; });
    Open();
    Record("round", {});
    StopListening(second);
    EXPECT_EQ(heard, "1:start 2:start 1:round 2:round 2:answer ");
    EXPECT_EQ(Kinds(kNovember), "start round answer ");
    EXPECT_TRUE(remarks.empty());
    ExpectChain(Lines(kNovember));
}

TEST_F(Journal, AListenerThatAnotherSentAwayHearsNothingMore)
{
    std::string heard;
    int second = 0;
    const int first = ListenToJournal([&](const JournalEvent &event) {
        heard += "1:" + event.kind + " ";
        StopListening(second);
    });
    second = ListenToJournal([&](const JournalEvent &event) { heard += "2:" + event.kind + " "; });
    Open();
    Record("round", {});
    StopListening(first);
    EXPECT_EQ(heard, "1:start 1:round ");
}

TEST_F(Journal, AFaultInAListenerIsToldLaterAndHoldsUpNothing)
{
    std::string told;
    FaultOutlet = [&told](const std::string &words) { told = words; };
    const int faulty = ListenToJournal([](const JournalEvent &) { throw std::runtime_error("no label"); });
    const int leaving = ListenToJournal([](const JournalEvent &) { throw Shutdown(); });
    int heard = 0;
    const int other = ListenToJournal([&heard](const JournalEvent &) { ++heard; });
    Open();
    Record("round", {});
    for (const int number : {faulty, leaving, other})
        StopListening(number);
    EXPECT_EQ(heard, 2);
    EXPECT_EQ(Kinds(kNovember), "start round ");
    EXPECT_EQ(told, "") << "not inside of Record: the outlet may wait";
    PumpEvents(1);
    EXPECT_EQ(told, "no label");
    FaultOutlet = [](const std::string &) {};
}
