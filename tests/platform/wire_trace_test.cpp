#include "platform/wire_trace.h"

#include "platform/crash_note.h"
#include "platform/file_faults.h"
#include "platform/safe_file.h"
#include "support/other_process.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <random>
#include <string>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

using namespace ombrix;
using test::InAnotherProcess;

namespace {

struct WireTrace : testing::Test {
    WireTrace()
    {
        for (const char *name : {kTraceFile, kOldTraceFile}) {
            QFile::remove(name);
            QDir().rmdir(name);
        }
        UseTraceClock([this] { return now += 1000; });
    }
    ~WireTrace() override
    {
        UseFileFaults(nullptr);
        UseTraceClock(nullptr);
        CloseTrace();
    }

    static std::string Bytes(const char *file) { return ReadFile(file).value_or("none"); }
    static std::vector<TraceRecord> InFile() { return ReadTraceBytes(Bytes(kTraceFile)); }

    // Another process traces in this folder and dies of kill -9.
    static void AnotherIsKilled(const std::vector<std::string> &said)
    {
        const pid_t child = fork();
        if (child == 0) {
            OpenTrace(".");
            for (const std::string &bytes : said)
                Trace(TraceLine::Meter, ByteWay::Sent, bytes);
            kill(getpid(), SIGKILL);
        }
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status));
    }

    std::int64_t now = 1'000'000;
    std::vector<std::string> troubles;
};

TraceRecord Sent(std::int64_t micros, const std::string &bytes)
{
    return {micros, TraceLine::Meter, ByteWay::Sent, bytes};
}

// Where a file is mapped in this process, nullptr where it isn't.
const char *PlaceOf(const std::string &name)
{
    for (const QByteArray &line : QByteArray::fromStdString(ReadFile("/proc/self/maps").value_or("")).split('\n'))
        if (line.endsWith(QByteArray::fromStdString("/" + name)))
            return reinterpret_cast<const char *>(line.left(line.indexOf('-')).toULongLong(nullptr, 16));
    return nullptr;
}

// What a record says of itself when it is one of a long row: its number, and as many letters as that wants.
std::string Numbered(std::size_t number)
{
    return std::to_string(number) + " " + std::string(number * 7 % 90, static_cast<char>('a' + number % 26));
}

void ExpectARow(const std::vector<TraceRecord> &records, std::size_t last)
{
    for (std::size_t i = 0; i < records.size(); ++i)
        ASSERT_EQ(records[i].bytes, Numbered(last + 1 - records.size() + i));
}

}  // namespace

TEST_F(WireTrace, GivesBackWhatWasSaidInItsOrder)
{
    EXPECT_EQ(OpenTrace(".").trouble, "");
    Trace(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    Trace(TraceLine::Meter, ByteWay::Received, std::string("\0\xFF\r", 3));
    Trace(TraceLine::Calibrator, ByteWay::Dropped, "0,\"No");
    MarkTrace(TraceLine::Calibrator, "did not answer");
    const std::vector<TraceRecord> expected = {
        Sent(1'001'000, "*1B1\r"),
        {1'002'000, TraceLine::Meter, ByteWay::Received, std::string("\0\xFF\r", 3)},
        {1'003'000, TraceLine::Calibrator, ByteWay::Dropped, "0,\"No"},
        {1'004'000, TraceLine::Calibrator, ByteWay::Mark, "did not answer"},
    };
    EXPECT_EQ(LastTraceRecords(100), expected);
    EXPECT_EQ(InFile(), expected) << "the file has it at once";
    EXPECT_EQ(LastTraceRecords(1).front().bytes, "did not answer");
}

TEST_F(WireTrace, IsNothingBeforeItIsOpenedAndAfterItsGoodbye)
{
    Trace(TraceLine::Meter, ByteWay::Sent, "early");
    OpenTrace(".");
    Trace(TraceLine::Meter, ByteWay::Sent, "said");
    CloseTrace();
    Trace(TraceLine::Meter, ByteWay::Sent, "late");
    EXPECT_TRUE(LastTraceRecords(9).empty());
    EXPECT_EQ(InFile(), std::vector{Sent(1'001'000, "said")});
}

TEST_F(WireTrace, HoldsTheLastFourMegabytesAndNoPieceOfARecord)
{
    OpenTrace(".");
    const std::size_t count = 130'000;
    for (std::size_t number = 0; number < count; ++number)
        Trace(TraceLine::Meter, ByteWay::Received, Numbered(number));
    const auto records = LastTraceRecords(SIZE_MAX);
    EXPECT_GT(records.size(), 50'000u);
    EXPECT_LT(records.size(), count);
    ExpectARow(records, count - 1);
    EXPECT_EQ(InFile(), records);
    EXPECT_EQ(Bytes(kTraceFile).size(), kTraceFileBytes);
}

TEST_F(WireTrace, TakesMoreBytesThanOneRecordHolds)
{
    OpenTrace(".");
    const std::string all(10'000, 'x');
    Trace(TraceLine::Meter, ByteWay::Received, all);
    std::string joined;
    for (const TraceRecord &record : LastTraceRecords(99))
        joined += record.bytes;
    EXPECT_EQ(joined, all);
}

TEST_F(WireTrace, OutlivesAKill)
{
    AnotherIsKilled({"*1B1\r", "*1X4142\r"});
    const auto records = InFile();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records.back().bytes, "*1X4142\r");
}

TEST_F(WireTrace, OfARunWithoutGoodbyeIsKeptBesideTheNewOne)
{
    AnotherIsKilled({"last words"});
    EXPECT_TRUE(OpenTrace(".").oldKept);
    EXPECT_EQ(ReadTraceBytes(Bytes(kOldTraceFile)).back().bytes, "last words");
    EXPECT_TRUE(InFile().empty());
    Trace(TraceLine::Meter, ByteWay::Sent, "new");
    CloseTrace();
    EXPECT_FALSE(OpenTrace(".").oldKept) << "that one said goodbye";
    EXPECT_EQ(ReadTraceBytes(Bytes(kOldTraceFile)).back().bytes, "last words");
}

TEST_F(WireTrace, TellsWhenItsRunSaidGoodbye)
{
    EXPECT_EQ(GoodbyeOfTrace("."), 0) << "there is none";
    AnotherIsKilled({"last words"});
    EXPECT_EQ(GoodbyeOfTrace("."), 0);
    OpenTrace(".");
    EXPECT_EQ(GoodbyeOfTrace("."), 0) << "it goes on";
    now = 1'795'311'540'000'000;
    CloseTrace();
    EXPECT_EQ(GoodbyeOfTrace("."), 1'795'311'540'001'000);
    ASSERT_EQ(WriteFile(kTraceFile, std::string(100, 'x')), "");
    EXPECT_EQ(GoodbyeOfTrace("."), 0) << "no trace at all";
}

TEST_F(WireTrace, OfARunThatSaidNothingKeepsNothing)
{
    AnotherIsKilled({});
    EXPECT_FALSE(OpenTrace(".").oldKept);
    EXPECT_FALSE(QFile::exists(kOldTraceFile));
}

TEST_F(WireTrace, IsReadFromAFileThatWasCutAnywhere)
{
    OpenTrace(".");
    for (std::size_t number = 0; number < 40; ++number)
        Trace(TraceLine::Meter, ByteWay::Received, Numbered(number));
    const std::string file = Bytes(kTraceFile);
    const auto whole = ReadTraceBytes(file);
    std::size_t before = 0;
    for (std::size_t length = 0; length < 4000; ++length) {
        const auto records = ReadTraceBytes(std::string_view(file).substr(0, length));
        ASSERT_GE(records.size(), before) << length;
        ASSERT_LE(records.size(), whole.size());
        for (std::size_t i = 0; i < records.size(); ++i)
            ASSERT_EQ(records[i], whole[i]) << length;
        before = records.size();
    }
    EXPECT_EQ(before, 40u);
}

TEST_F(WireTrace, WhereItsWriterDiedBetweenTwoBytesTheRecordsBeforeAreWhole)
{
    OpenTrace(".");
    const std::size_t first = 65'000;  // once around
    for (std::size_t number = 0; number < first; ++number)
        Trace(TraceLine::Meter, ByteWay::Received, Numbered(number));
    const std::string before = Bytes(kTraceFile);
    for (std::size_t number = first; number < first + 2; ++number)
        Trace(TraceLine::Meter, ByteWay::Received, Numbered(number));
    const std::string after = Bytes(kTraceFile);
    const auto newest = ReadTraceBytes(before, 1).back();
    // The oldest position moves first, then come the bytes, the next position last.
    std::string file = before;
    std::size_t steps = 0;
    const auto expectWhole = [&] {
        const auto records = ReadTraceBytes(file, 2);
        ASSERT_EQ(records.size(), 2u);
        EXPECT_EQ(records.back(), newest);
        ++steps;
    };
    file.replace(16, 8, after, 16, 8);
    expectWhole();
    for (std::size_t at = 40; at < file.size() && steps < 60; ++at) {
        if (file[at] == after[at])
            continue;
        file[at] = after[at];
        expectWhole();
    }
    EXPECT_GT(steps, 20u);
}

// The same between any two instructions of one record.
TEST_F(WireTrace, KilledAfterAnyInstructionHoldsWholeRecords)
{
    OpenTrace(".");
    Trace(TraceLine::Meter, ByteWay::Sent, "*1X414Z\r");
    const std::string reply(200, 'x');
    const pid_t child = fork();
    if (child == 0) {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        raise(SIGSTOP);
        Trace(TraceLine::Meter, ByteWay::Received, reply);
        kill(getpid(), SIGKILL);
    }
    int steps = 0;
    std::size_t before = 1;
    int status = 0;
    waitpid(child, &status, 0);
    QFile file(kTraceFile);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    for (; WIFSTOPPED(status) && steps < 100'000; ++steps) {
        ptrace(PTRACE_SINGLESTEP, child, nullptr, nullptr);
        waitpid(child, &status, 0);
        file.seek(0);
        const auto records = ReadTraceBytes(file.read(2048).toStdString());
        ASSERT_GE(records.size(), before);
        ASSERT_EQ(records[0].bytes, "*1X414Z\r");
        if (records.size() > 1) {
            ASSERT_EQ(records[1].bytes, reply) << steps;
        }
        before = records.size();
    }
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_GT(steps, 100);
    EXPECT_EQ(before, 2u);
}

TEST_F(WireTrace, KilledAtAnyMomentHoldsWholeRecordsWithoutAGap)
{
    const char *soak = std::getenv("OMBRIX_SOAK");
    const int kills = soak != nullptr && *soak == '1' ? 1000 : 10;
    std::mt19937 random(1);
    for (int n = 0; n < kills && !HasFailure(); ++n) {
        int begun[2];
        ASSERT_EQ(pipe(begun), 0);
        const pid_t child = fork();
        if (child == 0) {
            OpenTrace(".");
            for (std::size_t number = 0;; ++number) {
                Trace(TraceLine::Meter, ByteWay::Received, Numbered(number));
                if (number == 65'000)  // from here on it overwrites
                    [[maybe_unused]]
                    const auto told = write(begun[1], "!", 1);
            }
        }
        char letter = 0;
        ASSERT_EQ(read(begun[0], &letter, 1), 1);
        usleep(static_cast<useconds_t>(random() % 3000));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        close(begun[0]);
        close(begun[1]);
        const auto records = InFile();
        ASSERT_GT(records.size(), 50'000u);
        ExpectARow(records, static_cast<std::size_t>(std::stoull(records.back().bytes)));
    }
}

TEST_F(WireTrace, APageOfAnOlderRoundThatAPowerCutLeftIsTold)
{
    OpenTrace(".");
    const std::string like = "199.87\r";  // the ring holds a whole number of these: their heads fall together
    const std::size_t round = (kTraceFileBytes - 40) / 24;
    for (std::size_t number = 0; number < round; ++number)
        Trace(TraceLine::Meter, ByteWay::Received, like);
    const std::string older = Bytes(kTraceFile);
    const auto boundary = now;
    for (std::size_t number = 0; number < round; ++number)
        Trace(TraceLine::Meter, ByteWay::Received, like);
    std::string file = Bytes(kTraceFile);
    constexpr std::size_t kPage = 4096;
    file.replace(100 * kPage, kPage, older, 100 * kPage, kPage);
    const auto records = ReadTraceBytes(file);
    EXPECT_GT(records.size(), 9'000u);
    EXPECT_LT(records.size(), round);
    for (const TraceRecord &record : records)
        ASSERT_GE(record.micros, boundary - 1000);
}

TEST_F(WireTrace, WhatAnotherProgramWroteOverIsLostAndTheNextRecordStands)
{
    OpenTrace(".");
    for (std::size_t number = 0; number < 70'000; ++number)
        Trace(TraceLine::Meter, ByteWay::Received, Numbered(number));
    ASSERT_EQ(LastTraceRecords(SIZE_MAX).back().bytes, Numbered(69'999));
    constexpr qint64 kHeader = 40;
    QFile other(kTraceFile);
    ASSERT_TRUE(other.open(QIODevice::ReadWrite) && other.seek(kHeader));
    other.write(QByteArray(static_cast<qsizetype>(kTraceFileBytes) - kHeader, 'x'));
    other.close();
    Trace(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    EXPECT_EQ(LastTraceRecords(SIZE_MAX), std::vector{Sent(now, "*1B1\r")});
    EXPECT_EQ(InFile(), LastTraceRecords(SIZE_MAX));
}

TEST_F(WireTrace, WhatIsNoTraceHasNoRecords)
{
    EXPECT_TRUE(ReadTraceBytes("").empty());
    EXPECT_TRUE(ReadTraceBytes(std::string(5000, '\0')).empty());
    EXPECT_TRUE(ReadTraceBytes(std::string(kTraceFileBytes, 'x')).empty());
    OpenTrace(".");
    Trace(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    std::string file = Bytes(kTraceFile).substr(0, 200);
    for (std::size_t at = 0; at < 40; ++at)  // any byte of its head, wrong in many ways
        for (int wrong = 1; wrong < 256; wrong += 3) {
            const char right = std::exchange(file[at], static_cast<char>(file[at] ^ wrong));
            EXPECT_LE(ReadTraceBytes(file).size(), 1u);
            file[at] = right;
        }
    EXPECT_EQ(ReadTraceBytes(file).size(), 1u);
}

TEST_F(WireTrace, WithoutAFileStandsInMemoryAndSaysWhy)
{
    QDir().mkdir(kTraceFile);  // a folder of that name can't be written, not even by root
    EXPECT_NE(OpenTrace(".").trouble, "");
    Trace(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    EXPECT_EQ(LastTraceRecords(9).size(), 1u);
    CloseTrace();
    QDir().rmdir(kTraceFile);
    UseFileFaults([](FileCall call) { return FileFault{call == FileCall::Write ? ENOSPC : 0, 0}; });
    EXPECT_EQ(OpenTrace(".").trouble, "No space left on device");
    EXPECT_FALSE(QFile::exists(kTraceFile));
    Trace(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    EXPECT_EQ(LastTraceRecords(9).size(), 1u);
    EXPECT_NE(OpenTrace("no-such-folder").trouble, "");
}

TEST_F(WireTrace, WhoseFileIsCutShortByAnotherGoesOnInMemoryAndSaysSo)
{
    for (const int length : {0, 100, 8192}) {
        SCOPED_TRACE("cut to " + std::to_string(length));
        const auto opens = [this, length] {
            OpenTrace(".");
            UseTraceTrouble([this](const std::string &why) { troubles.push_back(why); });
            Trace(TraceLine::Meter, ByteWay::Sent, "before");
            ASSERT_EQ(truncate(kTraceFile, length), 0);
        };
        InAnotherProcess([&] {
            opens();
            Trace(TraceLine::Meter, ByteWay::Sent, "behind");
            Trace(TraceLine::Meter, ByteWay::Sent, "more");
            EXPECT_EQ(LastTraceRecords(9).size(), 2u);
            EXPECT_EQ(LastTraceRecords(9).back().bytes, "more");
            EXPECT_EQ(troubles, std::vector<std::string>{"somebody else has cut it short"});
        });
        InAnotherProcess([&] {
            opens();
            EXPECT_TRUE(LastTraceRecords(9).empty());
        });
        InAnotherProcess([&] {
            opens();
            WriteTraceTail(STDERR_FILENO);
        });
        InAnotherProcess([&] {
            opens();
            CloseTrace();
        });
        EXPECT_FALSE(OpenTrace(".").oldKept) << "it said goodbye";
        CloseTrace();
    }
}

// The system refuses a touch of the ring, as on a full disk whose file system copies what is written.
TEST_F(WireTrace, WhoseFileRefusesATouchGoesOnInMemoryAndSaysSo)
{
    InAnotherProcess([this] {
        WatchCrashes("refused.crash");
        OpenTrace(".");
        UseTraceTrouble([this](const std::string &why) { troubles.push_back(why); });
        Trace(TraceLine::Meter, ByteWay::Sent, "before");
        UseTraceClock([this] {
            QFile::resize(kTraceFile, 0);  // behind the look at its size
            return now += 1000;
        });
        Trace(TraceLine::Meter, ByteWay::Sent, "refused");
        Trace(TraceLine::Meter, ByteWay::Sent, "more");
        EXPECT_EQ(LastTraceRecords(9), (std::vector{Sent(now - 1000, "refused"), Sent(now, "more")}));
        EXPECT_EQ(troubles, std::vector<std::string>{"somebody else has cut it short"});
        CloseTrace();
        OpenTrace(".");
        Trace(TraceLine::Meter, ByteWay::Sent, "anew");
        EXPECT_EQ(LastTraceRecords(9).size(), 1u);
    });
    EXPECT_FALSE(QFile::exists("refused.crash"));
}

TEST_F(WireTrace, WhoseDiskTakesNoMoreOfItSaysThat)
{
    OpenTrace(".");
    UseTraceTrouble([this](const std::string &why) { troubles.push_back(why); });
    const char *place = PlaceOf(kTraceFile);
    ASSERT_NE(place, nullptr);
    EXPECT_FALSE(TakeRefusedTouch(place - 1));
    EXPECT_FALSE(TakeRefusedTouch(place + kTraceFileBytes));
    EXPECT_TRUE(TakeRefusedTouch(place + kTraceFileBytes - 1));
    EXPECT_EQ(PlaceOf(kTraceFile), nullptr);
    Trace(TraceLine::Meter, ByteWay::Sent, "behind");
    EXPECT_EQ(LastTraceRecords(9), std::vector{Sent(now, "behind")});
    EXPECT_EQ(troubles, std::vector<std::string>{"its disk takes no more of it"});
    InAnotherProcess([] { EXPECT_EQ(OpenTrace(".").trouble, "another Ombrix has it") << "of a run that goes on"; });
    CloseTrace();
    EXPECT_EQ(GoodbyeOfTrace("."), now);
    EXPECT_FALSE(OpenTrace(".").oldKept);
    UseTraceTrouble(nullptr);
}

TEST_F(WireTrace, WhoseDiskDoesNotTakeTheGoodbyeEitherIsNoTraceOfABrokenRun)
{
    OpenTrace(".");
    Trace(TraceLine::Meter, ByteWay::Sent, "before");
    ASSERT_TRUE(TakeRefusedTouch(PlaceOf(kTraceFile)));
    UseFileFaults([](FileCall call) { return FileFault{call == FileCall::Write ? ENOSPC : 0, 0}; });
    CloseTrace();
    UseFileFaults(nullptr);
    EXPECT_EQ(GoodbyeOfTrace("."), 0);
    EXPECT_FALSE(OpenTrace(".").oldKept);
}

TEST_F(WireTrace, ARefusedTouchOfAnythingElseIsACrash)
{
    const pid_t child = fork();
    if (child == 0) {
        WatchCrashes("refused.crash");
        OpenTrace(".");
        const int file = open("refused", O_RDWR | O_CREAT, 0600);
        auto *page = static_cast<volatile char *>(mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
        *page = 1;
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGBUS);
    EXPECT_EQ(ReadFile("refused.crash").value_or("none").substr(0, 14), "Died of SIGBUS");
    QFile::remove("refused.crash");
}

TEST_F(WireTrace, OfAProgramThatRunsIsLeftAlone)
{
    int says[2];
    ASSERT_EQ(pipe(says), 0);
    const pid_t child = fork();
    if (child == 0) {
        OpenTrace(".");
        Trace(TraceLine::Meter, ByteWay::Sent, "its own");
        [[maybe_unused]] const auto told = write(says[1], "!", 1);
        pause();
    }
    char letter = 0;
    ASSERT_EQ(read(says[0], &letter, 1), 1);
    EXPECT_NE(OpenTrace(".").trouble, "");
    Trace(TraceLine::Meter, ByteWay::Sent, "mine");
    EXPECT_EQ(InFile().back().bytes, "its own");
    EXPECT_EQ(LastTraceRecords(9).back().bytes, "mine");
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    EXPECT_TRUE(OpenTrace(".").oldKept) << "it holds it no more";
    close(says[0]);
    close(says[1]);
}

TEST_F(WireTrace, TellsEachRecordToAllWhoFollow)
{
    OpenTrace(".");
    std::string told;
    const int one = FollowTrace([&](const TraceRecord &record) { told += "1" + record.bytes; });
    int two = 0;
    two = FollowTrace([&](const TraceRecord &record) {
        told += "2" + record.bytes;
        StopFollowingTrace(two);
    });
    Trace(TraceLine::Meter, ByteWay::Sent, "a");
    Trace(TraceLine::Meter, ByteWay::Sent, "b");
    StopFollowingTrace(one);
    Trace(TraceLine::Meter, ByteWay::Sent, "c");
    EXPECT_EQ(told, "1a2a1b");
}

TEST_F(WireTrace, TheTailOfACrashIsReadable)
{
    OpenTrace(".");
    now = 36'903'123'000 - 1000;  // 10:15:03.123
    for (int i = 0; i < 50; ++i)
        Trace(TraceLine::Meter, ByteWay::Received, std::to_string(i) + "\r\xFF");
    QFile file("tail.txt");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    WriteTraceTail(file.handle());
    file.close();
    const std::string tail = Bytes("tail.txt");
    EXPECT_EQ(tail.substr(0, tail.find('\n')), "10:15:03.133  meter       received  10\\r\\xFF");
    EXPECT_TRUE(tail.ends_with("49\\r\\xFF\n"));
}
