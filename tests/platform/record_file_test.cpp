#include "platform/record_file.h"

#include "platform/file_faults.h"
#include "platform/safe_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <cerrno>
#include <functional>
#include <string>
#include <unistd.h>

using namespace ombrix;

namespace {

struct RecordFileTest : testing::Test {
    RecordFileTest() { QFile::remove("r.txt"); }
    ~RecordFileTest() override { UseFileFaults(nullptr); }
    static std::string Bytes() { return ReadFile("r.txt").value_or("none"); }

    // Lets each call in turn fail, until one run has enough of them: how many there were.
    static int CallsThatFail(const std::function<std::string()> &work)
    {
        for (int failing = 0; failing < 20; ++failing) {
            int calls = 0;
            UseFileFaults([&calls, failing](FileCall) { return FileFault{calls++ == failing ? EIO : 0, 0}; });
            const std::string words = work();
            UseFileFaults(nullptr);
            if (calls <= failing) {
                EXPECT_EQ(words, "");
                return failing;
            }
            EXPECT_EQ(words, "Input/output error") << "call " << failing;
        }
        return -1;
    }
};

}  // namespace

TEST_F(RecordFileTest, IsMadeFilledAndEmptiedAgain)
{
    EXPECT_EQ(MakeRecordFile("r.txt", "   one"), "");
    EXPECT_EQ(Bytes(), "   one");
    EXPECT_EQ(MakeRecordFile("r.txt", "   "), "");
    EXPECT_EQ(Bytes(), "   ");
}

TEST_F(RecordFileTest, IsWrittenInPlace)
{
    MakeRecordFile("r.txt", "111222333");
    EXPECT_EQ(WriteRecord("r.txt", 3, "abc"), "");
    EXPECT_EQ(Bytes(), "111abc333");
}

TEST_F(RecordFileTest, ThatEndsBeforeThePlaceIsFilledUpWithBlanks)
{
    MakeRecordFile("r.txt", "1");
    EXPECT_EQ(WriteRecord("r.txt", 3, "abc"), "");
    EXPECT_EQ(Bytes(), "1  abc");
}

TEST_F(RecordFileTest, ThatIsNotThereIsNeitherMadeNorRead)
{
    EXPECT_EQ(WriteRecord("r.txt", 0, "abc"), "No such file or directory");
    EXPECT_EQ(Bytes(), "none") << "what was in it would be missing without a word";
    EXPECT_EQ(ReadRecordFile("r.txt", 9), std::nullopt);
}

TEST_F(RecordFileTest, SaysBeforehandWhetherItCanBeWritten)
{
    MakeRecordFile("r.txt", "123456");
    EXPECT_EQ(TryRecordFile("r.txt"), "");
    EXPECT_EQ(Bytes(), "123456");
    EXPECT_EQ(TryRecordFile("d.txt"), "No such file or directory");
    EXPECT_EQ(CallsThatFail([] { return TryRecordFile("r.txt"); }), 2) << "open, size";
}

TEST_F(RecordFileTest, IsReadUpToALimit)
{
    MakeRecordFile("r.txt", "123456");
    EXPECT_EQ(ReadRecordFile("r.txt", 4), "1234");
    EXPECT_EQ(ReadRecordFile("r.txt", 99), "123456");
}

TEST_F(RecordFileTest, IsAPlainFile)
{
    QDir().mkdir("d");
    for (const std::string path : {"d", "/dev/null", ""}) {
        EXPECT_NE(MakeRecordFile(path, "x"), "") << path;
        EXPECT_NE(WriteRecord(path, 0, "x"), "") << path;
        EXPECT_NE(TryRecordFile(path), "") << path;
        EXPECT_EQ(ReadRecordFile(path, 9), std::nullopt) << path;
    }
}

TEST_F(RecordFileTest, InAFolderThatIsClosedIsToldInTheSystemsWords)
{
    EXPECT_EQ(MakeRecordFile("/proc/r.txt", "x"), "No such file or directory");
}

TEST_F(RecordFileTest, TellsEachCallThatFails)
{
    EXPECT_EQ(CallsThatFail([] { return MakeRecordFile("r.txt", "123456"); }), 4) << "open, size, write, sync";
    EXPECT_EQ(CallsThatFail([] { return WriteRecord("r.txt", 3, "abc"); }), 4);
    EXPECT_EQ(Bytes(), "123abc");
    EXPECT_EQ(CallsThatFail([] { return ReadRecordFile("r.txt", 9) ? "" : "Input/output error"; }), 3);
}

TEST_F(RecordFileTest, TellsAWriteOfWhichAPartWasTaken)
{
    MakeRecordFile("r.txt", "123456");
    UseFileFaults([](FileCall call) { return FileFault{call == FileCall::Write ? ENOSPC : 0, 2}; });
    EXPECT_EQ(WriteRecord("r.txt", 0, "abc"), "No space left on device");
}
