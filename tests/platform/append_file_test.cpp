#include "platform/append_file.h"
#include "platform/safe_file.h"
#include "support/other_process.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <cerrno>
#include <string>
#include <sys/stat.h>

using namespace ombrix;

namespace {

struct AppendFileTest : testing::Test {
    AppendFileTest() { QFile::remove("a.txt"); }
    ~AppendFileTest() override { UseFileFaults(nullptr); }
    static std::string Bytes() { return ReadFile("a.txt").value_or("none"); }
    AppendFile file;
};

}  // namespace

TEST_F(AppendFileTest, IsLockedForOneAtATime)
{
    ASSERT_TRUE(file.Open("a.txt"));
    AppendFile other;
    EXPECT_FALSE(other.Lock()) << "not open";
    ASSERT_TRUE(other.Open("a.txt"));
    EXPECT_TRUE(file.Lock());
    EXPECT_TRUE(file.Lock()) << "it has it already";
    EXPECT_FALSE(other.Lock());
    file.Unlock();
    EXPECT_TRUE(other.Lock());
    EXPECT_FALSE(file.Lock());
    other.Close();
    EXPECT_TRUE(file.Lock()) << "it goes with its file";
}

TEST_F(AppendFileTest, IsMadeAndGrowsAtItsEnd)
{
    ASSERT_TRUE(file.Open("a.txt"));
    EXPECT_TRUE(file.Append("one\n"));
    ASSERT_TRUE(file.Open("a.txt"));
    EXPECT_TRUE(file.Append(std::string("t\0o", 3)));
    EXPECT_EQ(Bytes(), std::string("one\nt\0o", 7));
}

TEST_F(AppendFileTest, GoesOnBehindWhatAnotherOneWrote)
{
    AppendFile other;
    ASSERT_TRUE(file.Open("a.txt"));
    ASSERT_TRUE(other.Open("a.txt"));
    EXPECT_TRUE(file.Append("1") && other.Append("2") && file.Append("3"));
    EXPECT_EQ(Bytes(), "123");
}

TEST_F(AppendFileTest, IsReadAtAnyPlace)
{
    ASSERT_TRUE(file.Open("a.txt"));
    ASSERT_TRUE(file.Append("0123456789"));
    EXPECT_EQ(file.Size(), 10);
    EXPECT_EQ(file.ReadAt(3, 4), "3456");
    EXPECT_EQ(file.ReadAt(8, 100), "89");
    EXPECT_EQ(file.ReadAt(10, 1), "");
    EXPECT_TRUE(file.Append("x"));
    EXPECT_EQ(Bytes(), "0123456789x");
}

TEST_F(AppendFileTest, OpenToReadMakesNothingAndWritesNothing)
{
    EXPECT_FALSE(file.OpenToRead("a.txt"));
    EXPECT_FALSE(QFile::exists("a.txt"));
    ASSERT_EQ(WriteFile("a.txt", "abc"), "");
    ASSERT_TRUE(file.OpenToRead("a.txt"));
    EXPECT_EQ(file.ReadAt(0, 9), "abc");
    EXPECT_FALSE(file.Append("d"));
    EXPECT_EQ(Bytes(), "abc");
}

TEST_F(AppendFileTest, TakesPlainFilesAlone)
{
    QDir().mkdir("a-folder");
    ASSERT_EQ(mkfifo("a-pipe", 0600), 0);
    EXPECT_FALSE(file.Open("a-folder"));
    EXPECT_FALSE(file.OpenToRead("a-folder"));
    EXPECT_FALSE(file.Open("a-pipe")) << "and doesn't wait for a reader";
    EXPECT_FALSE(file.OpenToRead("a-pipe"));
    EXPECT_FALSE(file.Open("/dev/null"));
    EXPECT_FALSE(file.Open("no-such-folder/a.txt"));
    EXPECT_FALSE(file.Append("x"));
    EXPECT_EQ(file.Size(), -1);
    EXPECT_EQ(file.ReadAt(0, 1), "");
}

TEST_F(AppendFileTest, KnowsWhenItsPathNamesItNoMore)
{
    EXPECT_FALSE(file.IsInPlace()) << "not open";
    QDir().mkdir("home");
    ASSERT_TRUE(file.Open("home/a.txt"));
    EXPECT_TRUE(file.IsInPlace());
    ASSERT_TRUE(QDir().rename("home", "away"));
    EXPECT_FALSE(file.IsInPlace());
    QDir().mkdir("home");
    ASSERT_EQ(WriteFile("home/a.txt", "another"), "");
    EXPECT_FALSE(file.IsInPlace());
    ASSERT_TRUE(QDir("home").removeRecursively());
    ASSERT_TRUE(QDir().rename("away", "home"));
    EXPECT_TRUE(file.IsInPlace());
    ASSERT_TRUE(QFile::remove("home/a.txt"));
    EXPECT_FALSE(file.IsInPlace());
}

TEST_F(AppendFileTest, SaysNoWhenOnlyAPartWasTaken)
{
    test::InAnotherProcess([this] {
        ASSERT_TRUE(file.Open("a.txt"));
        test::FilesEndAt(10);
        EXPECT_TRUE(file.Append("1234567"));
        EXPECT_FALSE(file.Append("89ABCDE"));
        EXPECT_EQ(Bytes(), "123456789A");
        EXPECT_FALSE(file.Append("x"));
        EXPECT_EQ(Bytes(), "123456789A");
    });
}

TEST_F(AppendFileTest, AFolderIsMadeInOneThatIsThere)
{
    EXPECT_TRUE(MakeFolder("b-folder"));
    EXPECT_TRUE(MakeFolder("b-folder"));
    EXPECT_TRUE(QDir("b-folder").exists());
    EXPECT_FALSE(MakeFolder("no-such-folder/inner"));
    EXPECT_FALSE(QDir("no-such-folder").exists());
}

TEST_F(AppendFileTest, FailsWhereATestWantsItTo)
{
    FileCall failing = FileCall::MakeFolder;
    UseFileFaults([&failing](FileCall call) { return FileFault{call == failing ? ENOSPC : 0, 0}; });
    EXPECT_FALSE(MakeFolder("c-folder"));
    EXPECT_FALSE(QDir("c-folder").exists());
    failing = FileCall::Open;
    EXPECT_FALSE(file.Open("a.txt"));
    failing = FileCall::Look;
    ASSERT_TRUE(file.Open("a.txt"));
    EXPECT_FALSE(file.IsInPlace());
    failing = FileCall::Size;
    EXPECT_EQ(file.Size(), -1);
    failing = FileCall::Write;
    EXPECT_FALSE(file.Append("abc"));
    EXPECT_EQ(Bytes(), "");
    failing = FileCall::Read;
    EXPECT_TRUE(file.Append("abc"));
    EXPECT_EQ(file.ReadAt(0, 3), "");
    UseFileFaults([](FileCall) { return FileFault{ENOSPC, 2}; });
    EXPECT_FALSE(file.Append("def"));
    EXPECT_EQ(Bytes(), "abcde");
}
