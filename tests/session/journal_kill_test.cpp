// The journal of a program that is killed, on a disk that is full and in a folder without rights: what was told as
// recorded is on file, once, and the chain goes on through all runs.

#include "journal_fixture.h"
#include "support/other_process.h"

#include <map>
#include <random>
#include <sys/stat.h>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr const char *kMonth = "2026-11";
constexpr const char *kTold = "told.txt";
constexpr int kRunsAFolder = 25;

struct KilledJournal : JournalTest {
    KilledJournal() { QFile::remove(kTold); }

    // A run that records for ever. Each event that its listeners hear of is noted where a kill can't take it back.
    static void Run()
    {
        AppendFile told;
        told.Open(kTold);
        ListenToJournal([&told](const JournalEvent &event) { told.Append(event.id + "\n"); });
        Open();
        for (int number = 0;; ++number)
            Record("event",
                   {{"number", number}, {"text", std::string(static_cast<std::size_t>(number * 37 % 500), 'x')}});
    }

    // A run that finds room for so many bytes, and later for all.
    void RunsOutOfRoom(unsigned room)
    {
        std::string heard;
        ListenToJournal([&heard](const JournalEvent &event) { heard += event.kind + " "; });
        FilesEndAt(room);
        Open();
        for (const char *kind : {"a", "b", "c", "d"})
            Record(kind, {});
        EXPECT_TRUE(JournalIsBehind());
        EXPECT_EQ(remarks, std::vector<std::string>{"not recorded"});
        EXPECT_EQ(heard, Kinds(kMonth)) << "what is told is on file, and nothing else";
        FilesEndAt(kNoEnd);
        Record("e", {});
        EXPECT_FALSE(JournalIsBehind());
        EXPECT_EQ(remarks.back(), "");
        EXPECT_EQ(heard, "start a b c d e ");
        EXPECT_EQ(Kinds(kMonth), heard);
        ExpectChain(Lines(kMonth));
    }

    // How often each event stands in the file, by its id.
    static std::map<std::string, int> OnFile()
    {
        std::map<std::string, int> times;
        for (const QByteArray &line : Lines(kMonth))
            ++times[Json(line)["id"].toString().toStdString()];
        return times;
    }

    static void ExpectEachToldEventOnce()
    {
        const auto times = OnFile();
        for (const auto &[id, count] : times)
            EXPECT_EQ(count, 1) << id;
        int told = 0;
        for (const QByteArray &id : QByteArray::fromStdString(ReadFile(kTold).value_or("")).split('\n')) {
            if (id.size() != 36)
                continue;  // the note itself was torn
            ASSERT_EQ(times.count(id.toStdString()), 1u) << "told as recorded: " << id.toStdString();
            ++told;
        }
        EXPECT_GT(told, 0);
    }
};

}  // namespace

TEST_F(KilledJournal, HoldsWhatWasToldAsRecordedOnceThroughAllRuns)
{
    std::mt19937 random(3);
    const int runs = TimesOfSoak(30, 1000);
    for (int n = 1; n <= runs && !HasFailure(); ++n) {
        LivesUntilKilled(static_cast<int>(random() % 10'000), Run);
        if (n % kRunsAFolder != 0 && n != runs)
            continue;
        ExpectEachToldEventOnce();
        ExpectChain(Lines(kMonth));
        QDir("station/Journal").removeRecursively();
        QFile::remove(kTold);
    }
}

TEST_F(KilledJournal, OnADiskThatIsFullAtAnyByteGoesOnWhereThereIsRoomAgain)
{
    for (unsigned room = 0; room < 1200; room += 41) {
        QDir("station/Journal").removeRecursively();
        SCOPED_TRACE("room for " + std::to_string(room) + " bytes");
        InAnotherProcess([room, this] { RunsOutOfRoom(room); });
    }
}

TEST_F(KilledJournal, WithoutRightsIsToldAndTheStationGoesOn)
{
    ASSERT_EQ(chmod("station", 0555), 0);
    InAnotherProcess([this] {
        QDir::setCurrent("station");
        BecomesNobody();
        OpenJournal(".", "Bench 7", "1.2.3");
        Record("one", {});
        EXPECT_TRUE(JournalIsBehind());
        EXPECT_EQ(remarks, std::vector<std::string>{"not recorded"});
        EXPECT_EQ(CloseJournal(), 3u) << "it, the start and the end";
    });
    ASSERT_EQ(chmod("station", 0755), 0);
    EXPECT_FALSE(QDir("station/Journal").exists());
}
