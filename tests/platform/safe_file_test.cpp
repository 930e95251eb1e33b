#include "platform/safe_file.h"

#include "platform/file_faults.h"
#include "support/other_process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <cerrno>
#include <csignal>
#include <random>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace ombrix;
using namespace ombrix::test;
using testing::AnyOf;
using testing::Eq;

namespace {

// One of a row of files: its number in each line, and its own length.
std::string Numbered(int number)
{
    std::string text;
    for (int line = 0; line < 100 + number % 50; ++line)
        text += "line " + std::to_string(line) + " of " + std::to_string(number) + "\n";
    return text;
}

int NumberOf(const std::string &text)
{
    return std::stoi(text.substr(text.find(" of ") + 4));
}

std::string NamesIn(const char *folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden).join(' ').toStdString();
}

// Another process writes and dies of kill -9 before its n-th call to the system. False when it needs fewer.
bool IsKilledBeforeCall(int n, const std::string &path, const std::string &bytes)
{
    const pid_t child = fork();
    if (child == 0) {
        UseFileFaults([n, calls = 0](FileCall) mutable {
            if (calls++ == n)
                kill(getpid(), SIGKILL);
            return FileFault();
        });
        _exit(WriteFile(path, bytes).empty() ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0);
    return WIFSIGNALED(status);
}

}  // namespace

TEST(SafeFile, WritesTheWholeFileOrLeavesTheOldOne)
{
    EXPECT_EQ(WriteFile("a.ini", "one"), "");
    EXPECT_EQ(ReadFile("a.ini").value_or("?"), "one");
    EXPECT_EQ(WriteFile("a.ini", std::string("tw\0o", 4)), "");
    EXPECT_EQ(ReadFile("a.ini")->size(), 4u);
    EXPECT_NE(WriteFile("no-such-folder/a.ini", "x"), "") << "says why";
}

TEST(SafeFile, LeavesNoTemporaryFileBehind)
{
    QDir().mkdir("clean");
    EXPECT_EQ(WriteFile("clean/a.ini", "one"), "");
    EXPECT_EQ(QDir("clean").entryList(QDir::Files).join(' '), "a.ini");
}

TEST(SafeFile, WrittenByOneThatIsKilledBeforeAnyCallIsTheOldOneUntilTheLastOfThem)
{
    QDir().mkdir("called");
    ASSERT_EQ(WriteFile("called/a.ini", "old"), "");
    int calls = 0;
    for (; IsKilledBeforeCall(calls, "called/a.ini", "new"); ++calls) {
        EXPECT_EQ(ReadFile("called/a.ini").value_or("none"), "old") << calls;
        EXPECT_THAT(NamesIn("called"), AnyOf(Eq("a.ini"), Eq(".a.ini.new a.ini"))) << calls;
    }
    EXPECT_GE(calls, 4) << "opened, written, synced, renamed";
    EXPECT_EQ(ReadFile("called/a.ini").value_or("none"), "new");
    EXPECT_EQ(NamesIn("called"), "a.ini") << "what the killed ones left is gone";
}

TEST(SafeFile, WrittenByOneThatIsKilledAtAnyMomentIsOneThatItWroteAndNoOthersPileUp)
{
    QDir().mkdir("killed");
    std::mt19937 random(1);
    ASSERT_EQ(WriteFile("killed/a.ini", Numbered(0)), "");
    int written = 0;
    for (int n = TimesOfSoak(30, 1000); n > 0 && !testing::Test::HasFailure(); --n) {
        LivesUntilKilled(static_cast<int>(random() % 20'000), [written] {
            for (int number = written + 1; WriteFile("killed/a.ini", Numbered(number)).empty();)
                ++number;
        });
        const std::string text = ReadFile("killed/a.ini").value_or("none");
        ASSERT_GE(NumberOf(text), written);
        written = NumberOf(text);
        ASSERT_EQ(text, Numbered(written));
        ASSERT_THAT(NamesIn("killed"), AnyOf(Eq("a.ini"), Eq(".a.ini.new a.ini")));
    }
    EXPECT_GT(written, 0) << "each was killed before it had written anything";
    EXPECT_EQ(WriteFile("killed/a.ini", "whole"), "");
    EXPECT_EQ(NamesIn("killed"), "a.ini");
}

TEST(SafeFile, StaysTheOldOneWhicheverCallFailsAndWhereverTheDiskIsFull)
{
    QDir().mkdir("failing");
    ASSERT_EQ(WriteFile("failing/a.ini", "old"), "");
    int failed = 0;
    for (int failing = 0;; ++failing) {
        UseFileFaults([failing, calls = 0](FileCall) mutable { return FileFault{calls++ == failing ? ENOSPC : 0, 0}; });
        const std::string words = WriteFile("failing/a.ini", "new");
        UseFileFaults(nullptr);
        if (words.empty())
            break;
        ++failed;
        EXPECT_EQ(words, "No space left on device");
        EXPECT_EQ(ReadFile("failing/a.ini").value_or("none"), "old");
        EXPECT_EQ(NamesIn("failing"), "a.ini");
    }
    EXPECT_EQ(failed, 4);
    EXPECT_EQ(ReadFile("failing/a.ini").value_or("none"), "new");
}

TEST(SafeFile, TakesWritesThatTakeOnlyAPart)
{
    UseFileFaults([calls = 0](FileCall call) mutable {
        return FileFault{call == FileCall::Write && calls++ < 3 ? ENOSPC : 0, 2};
    });
    EXPECT_EQ(WriteFile("parts.ini", "123456789"), "");
    UseFileFaults(nullptr);
    EXPECT_EQ(ReadFile("parts.ini").value_or("none"), "123456789");
}

TEST(SafeFile, KeepsTheRightsOfTheOldOneAndStaysBehindItsLink)
{
    QDir().mkdir("share");
    ASSERT_EQ(WriteFile("share/a.ini", "old"), "");
    ASSERT_EQ(chmod("share/a.ini", 0600), 0);
    ASSERT_TRUE(QFile::link("share/a.ini", "to-share.ini"));
    EXPECT_EQ(WriteFile("to-share.ini", "new"), "");
    EXPECT_EQ(ReadFile("share/a.ini").value_or("none"), "new");
    EXPECT_TRUE(QFileInfo("to-share.ini").isSymLink());
    struct stat found {
    };
    ASSERT_EQ(stat("share/a.ini", &found), 0);
    EXPECT_EQ(found.st_mode & 07777, 0600u);
}

TEST(SafeFile, OfWhomTheSystemAllowsNoWriteIsNotReplaced)
{
    QDir().mkdir("rights");
    ASSERT_EQ(WriteFile("rights/a.ini", "old"), "");
    ASSERT_EQ(chmod("rights/a.ini", 0444), 0);
    ASSERT_EQ(chmod("rights", 0777), 0);
    InAnotherProcess([] {
        QDir::setCurrent("rights");
        BecomesNobody();
        EXPECT_EQ(WriteFile("a.ini", "new"), "Permission denied");
        EXPECT_EQ(WriteFile("b.ini", "new"), "");
    });
    EXPECT_EQ(ReadFile("rights/a.ini").value_or("none"), "old");
    EXPECT_EQ(NamesIn("rights"), "a.ini b.ini");
    EXPECT_NE(WriteFile("/dev/full", "x"), "") << "no device gives its name to a file";
}

TEST(SafeFile, TellsMissingFromUnreadable)
{
    EXPECT_EQ(StateOfFile("none"), FileState::Missing);
    QDir().mkdir("folder");
    EXPECT_EQ(StateOfFile("folder"), FileState::Unreadable);
    EXPECT_EQ(WriteFile("b.ini", ""), "");
    EXPECT_EQ(StateOfFile("b.ini"), FileState::Readable);
    ASSERT_TRUE(QFile::link("share/gone.ini", "link.ini"));
    EXPECT_EQ(StateOfFile("link.ini"), FileState::Unreadable);
    EXPECT_FALSE(ReadFile("none").has_value());
    EXPECT_FALSE(ReadFile("folder").has_value());
}

TEST(SafeFile, AFileOfWhichTheSystemRefusesTheBytesIsUnreadable)
{
    constexpr char kRefused[] = "/proc/self/mem";  // opens, and can't be read from its beginning
    EXPECT_FALSE(ReadFile(kRefused).has_value());
    EXPECT_EQ(StateOfFile(kRefused), FileState::Unreadable);
}

TEST(SafeFile, AWriteOverAFolderFailsAndSaysSo)
{
    QDir().mkdir("target");
    EXPECT_NE(WriteFile("target", "x"), "");
    EXPECT_TRUE(QDir("target").exists());
}
