#include "platform/folder_hold.h"

#include "platform/safe_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSysInfo>
#include <QTemporaryDir>

#include <csignal>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace ombrix;
using testing::HasSubstr;
using testing::MatchesRegex;

namespace {

class Hold : public testing::Test
{
protected:
    Hold() { QDir().mkpath(QString::fromStdString(folder)); }
    ~Hold() override { QDir(QString::fromStdString(folder)).removeRecursively(); }

    std::string Lock() const { return folder + "/" + kLockFile; }
    std::string File() const { return folder + "/a.ini"; }
    void LeavesALock(const std::string &machine, long process) const
    {
        ASSERT_EQ(WriteFile(Lock(), "user=anna\nmachine=" + machine +
                                        "\nsince=2026-11-20 08:15\nprocess=" + std::to_string(process) + "\n"),
                  "");
    }

    const std::string folder = "held";
    const std::string machine = QSysInfo::machineHostName().toStdString();
};

// A process that has ended, so that nobody has its number.
pid_t DeadProcess()
{
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    waitpid(child, nullptr, 0);
    return child;
}

}  // namespace

TEST_F(Hold, IsOneProgramsAtATime)
{
    FolderHold first;
    EXPECT_TRUE(first.TakeFolderOf("held/a.ini"));
    EXPECT_TRUE(first.TakeFolderOf("held/b.ini")) << "its own hold is no obstacle";
    {
        FolderHold second;
        EXPECT_FALSE(second.TakeFolderOf("held/a.ini"));
        EXPECT_TRUE(second.TakeFolderOf("a.ini")) << "another folder";
        first.Release();
        EXPECT_TRUE(second.TakeFolderOf("held/a.ini"));
        EXPECT_FALSE(first.TakeFolderOf("held/a.ini"));
    }
    EXPECT_TRUE(first.TakeFolderOf("held/a.ini")) << "the second is gone";
}

TEST_F(Hold, TellsWhoHoldsTheFolderOnWhichMachineAndSinceWhen)
{
    FolderHold first, second;
    ASSERT_TRUE(first.TakeFolderOf(File()));
    EXPECT_EQ(first.Holder(), "");
    ASSERT_FALSE(second.TakeFolderOf(File()));
    EXPECT_THAT(second.Holder(),
                MatchesRegex(".+ on " + machine + " since 20..-..-.. ..:.., process " + std::to_string(getpid())));
    first.Release();
    EXPECT_TRUE(second.TakeFolderOf(File()));
    EXPECT_EQ(second.Holder(), "");
}

TEST_F(Hold, LeavesNothingBehindAndTakesNobodyElsesLockAway)
{
    {
        FolderHold first, second;
        ASSERT_TRUE(first.TakeFolderOf(File()));
        EXPECT_EQ(QDir("held").entryList(QDir::Files), QStringList({kLockFile}));
        ASSERT_FALSE(second.TakeFolderOf(File()));
        second.Release();
        EXPECT_EQ(StateOfFile(Lock()), FileState::Readable);
    }
    EXPECT_TRUE(QDir("held").isEmpty());
}

// As when somebody looks at the open files of a program that has just let go: its handle is closed when he has looked.
TEST_F(Hold, IsWaitedForWhileNobodyHasSignedTheLock)
{
    static int looked = open(folder.c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(flock(looked, LOCK_EX | LOCK_NB), 0);
    std::signal(SIGALRM, [](int) { close(looked); });
    const itimerval soon = {{0, 0}, {0, 5000}};
    setitimer(ITIMER_REAL, &soon, nullptr);
    FolderHold hold;
    EXPECT_TRUE(hold.TakeFolderOf(File()));
    std::signal(SIGALRM, SIG_DFL);
    EXPECT_TRUE(QFile::exists(QString::fromStdString(Lock())));
}

TEST_F(Hold, OfALockThatNobodySignsIsRefusedInTheEnd)
{
    const int looked = open(folder.c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(flock(looked, LOCK_EX | LOCK_NB), 0);
    FolderHold hold;
    EXPECT_FALSE(hold.TakeFolderOf(File()));
    EXPECT_EQ(hold.Holder(), "");
    close(looked);
}

TEST_F(Hold, KnowsItsFolderWhereverTheProgramGoes)
{
    const QString before = QDir::currentPath();
    FolderHold hold;
    QDir::setCurrent("held");
    ASSERT_TRUE(hold.TakeFolderOf("a.ini"));
    QDir::setCurrent(before);
    EXPECT_EQ(StateOfFile(Lock()), FileState::Readable);
    hold.Release();
    EXPECT_EQ(StateOfFile(Lock()), FileState::Missing);
}

TEST_F(Hold, OfAProgramThatWasKilledIsTakenOver)
{
    int told[2];
    ASSERT_EQ(pipe(told), 0);
    const pid_t child = fork();
    if (child == 0) {
        FolderHold hold;
        const char taken = hold.TakeFolderOf(File()) ? 'y' : 'n';
        if (write(told[1], &taken, 1) == 1)
            pause();
        _exit(0);
    }
    char taken = 0;
    ASSERT_EQ(read(told[0], &taken, 1), 1);
    EXPECT_EQ(taken, 'y');
    FolderHold hold;
    EXPECT_FALSE(hold.TakeFolderOf(File()));
    EXPECT_THAT(hold.Holder(), HasSubstr("process " + std::to_string(child)));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    EXPECT_EQ(StateOfFile(Lock()), FileState::Readable) << "it could not take it away";
    EXPECT_TRUE(hold.TakeFolderOf(File()));
    EXPECT_THAT(ReadFile(Lock()).value_or(""), HasSubstr("process=" + std::to_string(getpid()) + "\n"));
    close(told[0]);
    close(told[1]);
}

TEST_F(Hold, OfALockThatOnlyStoodOnThisDiskIsTakenOver)
{
    FolderHold hold;
    LeavesALock(machine, DeadProcess());
    EXPECT_TRUE(hold.TakeFolderOf(File()));
    hold.Release();
    LeavesALock("bench-4", getpid());  // it came with the folder from another machine
    EXPECT_TRUE(hold.TakeFolderOf(File()));
    hold.Release();
    ASSERT_EQ(WriteFile(Lock(), "what is this?\n"), "");
    EXPECT_TRUE(hold.TakeFolderOf(File()));
}

TEST(HoldSigns, ALockOfThisMachineStandsWithItsProcess)
{
    EXPECT_FALSE(MayStillHold({.granted = true, .ownMachine = true, .processLives = true}))
        << "the number is another program's by now";
    EXPECT_FALSE(MayStillHold({.granted = true, .shared = true, .ownMachine = true, .processLives = true}));
    EXPECT_TRUE(MayStillHold({.granted = false, .ownMachine = true, .processLives = true}));
    EXPECT_FALSE(MayStillHold({.granted = false, .ownMachine = true, .processLives = false}));
}

TEST(HoldSigns, ALockOfAnotherMachineIsBelievedWhereThatMachineCanBeInTheFolder)
{
    EXPECT_TRUE(MayStillHold({.granted = true, .shared = true, .ownMachine = false}));
    EXPECT_TRUE(MayStillHold({.granted = false, .shared = false, .ownMachine = false}));
    EXPECT_FALSE(MayStillHold({.granted = true, .shared = false, .ownMachine = false}));
}

TEST(LockFile, IsReadBackAndToldInOneLine)
{
    const auto holder = ReadHolder("user=anna\nmachine=bench-3\nsince=2026-11-22 13:05\nprocess=4711\n");
    ASSERT_TRUE(holder);
    EXPECT_EQ(HolderWords(*holder), "anna on bench-3 since 2026-11-22 13:05, process 4711");
    for (const char *text : {"", "user=anna\n", "machine=bench-3\n", "machine=bench-3\nprocess=x\n", "\0=\n=="})
        EXPECT_FALSE(ReadHolder(text)) << text;
}

TEST(FolderHold, OfAFolderThatIsNotThereIsFree)
{
    FolderHold hold;
    EXPECT_TRUE(hold.TakeFolderOf("no-such-folder/a.ini"));
}

TEST(FolderHold, OfAFolderThatCanNotBeWrittenNeedsNoLockFile)
{
    const QTemporaryDir folder;
    const std::string file = folder.filePath("a.ini").toStdString();
    QFile::setPermissions(folder.path(), QFile::Permissions(0x5555));
    const uid_t user = geteuid();
    ASSERT_EQ(seteuid(user == 0 ? 65534 : user), 0);
    FolderHold first, second;
    EXPECT_TRUE(first.TakeFolderOf(file));
    EXPECT_FALSE(second.TakeFolderOf(file));
    EXPECT_EQ(second.Holder(), "");
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
    ASSERT_EQ(seteuid(user), 0);
    QFile::setPermissions(folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}
