#include "platform/folders.h"

#include "platform/safe_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <string>
#include <unistd.h>

using namespace ombrix;
using testing::HasSubstr;

namespace {

// A program in a folder of its own, and a user with a home. Root, who may write everywhere, becomes nobody meanwhile.
class Folders : public testing::Test
{
protected:
    Folders()
    {
        QDir(root.path()).mkpath("app/bin");
        QDir(root.path()).mkpath("home");
        QFile::setPermissions(root.path(), kOpen);
        QFile::setPermissions(root.filePath("app/bin"), kOpen);
        QFile::setPermissions(root.filePath("home"), kOpen);
        EXPECT_EQ(seteuid(user == 0 ? kNobody : user), 0);
    }
    ~Folders() override
    {
        EXPECT_EQ(seteuid(user), 0);
        LookForSamplesIn("");
        for (const char *folder : {"app/bin", "home"})
            QFile::setPermissions(root.filePath(folder), kOpen);
    }

    std::string Path(const char *path) const { return root.filePath(path).toStdString(); }
    void Lock(const char *path) const
    {
        const uid_t now = geteuid();
        ASSERT_EQ(seteuid(user), 0);
        QFile::setPermissions(root.filePath(path), kReadOnly);
        ASSERT_EQ(seteuid(now), 0);
    }
    void Install() const
    {
        const uid_t now = geteuid();
        ASSERT_EQ(seteuid(user), 0);
        QDir(root.path()).mkpath("app/share/ombrix/samples");
        ASSERT_EQ(WriteFile(Path("app/share/ombrix/samples/one.dpm"), "1"), "");
        ASSERT_EQ(seteuid(now), 0);
    }

    static constexpr uid_t kNobody = 65534;
    static constexpr QFile::Permissions kReadOnly = QFile::Permissions(0x5555);
    static constexpr QFile::Permissions kOpen = QFile::Permissions(0x7777);
    const uid_t user = geteuid();
    QTemporaryDir root;
};

}  // namespace

TEST_F(Folders, AStationWorksBesideItsProgram)
{
    const StationFolder folder = FindStationFolder(Path("app/bin"), Path("home"));
    EXPECT_EQ(folder.path, Path("app/bin"));
    EXPECT_TRUE(folder.ofProgram);
    EXPECT_EQ(folder.trouble, "");
    EXPECT_TRUE(QDir(root.filePath("home")).isEmpty());
}

TEST_F(Folders, AStationWhoseProgramTheUserCanNotWriteBesideWorksInHisData)
{
    Lock("app/bin");
    const StationFolder folder = FindStationFolder(Path("app/bin"), Path("home/.local/share"));
    EXPECT_EQ(folder.path, Path("home/.local/share/ombrix"));
    EXPECT_FALSE(folder.ofProgram);
    EXPECT_EQ(folder.trouble, "");
    EXPECT_EQ(FolderTrouble(folder.path), "") << "it was made";
    EXPECT_EQ(FindStationFolder(Path("app/bin"), Path("home/.local/share")).path, folder.path) << "and is found again";
}

TEST_F(Folders, AnInstalledProgramKeepsNothingBesideItEvenForRoot)
{
    Install();
    EXPECT_EQ(FolderTrouble(Path("app/bin")), "");
    EXPECT_EQ(FindStationFolder(Path("app/bin"), Path("home")).path, Path("home/ombrix"));
}

TEST_F(Folders, AStationThatFindsNoFolderSaysWhyAndStaysBesideItsProgram)
{
    Lock("app/bin");
    Lock("home");
    StationFolder folder = FindStationFolder(Path("app/bin"), Path("home"));
    EXPECT_EQ(folder.path, Path("app/bin"));
    EXPECT_TRUE(folder.ofProgram);
    EXPECT_EQ(folder.trouble, Path("home/ombrix") + ": Permission denied");
    folder = FindStationFolder(Path("app/bin"), "");
    EXPECT_EQ(folder.path, Path("app/bin"));
    EXPECT_EQ(folder.trouble, "the user has no home");
}

TEST_F(Folders, TellWhyNobodyCanWorkInThem)
{
    ASSERT_EQ(WriteFile(Path("home/file"), ""), "");
    EXPECT_EQ(FolderTrouble(Path("home")), "");
    EXPECT_EQ(FolderTrouble(Path("gone")), "there is no such folder");
    EXPECT_EQ(FolderTrouble(Path("home/file")), "it is no folder");
    Lock("home");
    EXPECT_EQ(FolderTrouble(Path("home")), "it can't be written: Permission denied");
}

TEST_F(Folders, OfTheUsersDataFollowTheDesktopsRules)
{
    const QByteArray data = qgetenv("XDG_DATA_HOME");
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", "/home/anna");
    qunsetenv("XDG_DATA_HOME");
    EXPECT_EQ(UserDataFolder(), "/home/anna/.local/share");
    qputenv("XDG_DATA_HOME", "/data/anna");
    EXPECT_EQ(UserDataFolder(), "/data/anna");
    qputenv("XDG_DATA_HOME", "data");
    EXPECT_EQ(UserDataFolder(), "/home/anna/.local/share") << "a relative one counts for nothing";
    qunsetenv("HOME");
    qunsetenv("XDG_DATA_HOME");
    EXPECT_EQ(UserDataFolder(), "");
    qputenv("HOME", home);
    if (!data.isNull())
        qputenv("XDG_DATA_HOME", data);
}

TEST_F(Folders, AFileIsTheStationsOwnBeforeItIsAnInstalledOne)
{
    EXPECT_EQ(InstalledSamples(Path("app/bin")), "");
    Install();
    const std::string samples = InstalledSamples(Path("app/bin"));
    EXPECT_EQ(samples, Path("app/share/ombrix/samples"));
    EXPECT_EQ(FindFile("one.dpm"), "one.dpm") << "nobody has told where to look";
    LookForSamplesIn(samples);
    EXPECT_EQ(SampleFolder(), samples);
    EXPECT_EQ(FindFile("one.dpm"), samples + "/one.dpm");
    EXPECT_EQ(FindFile("two.dpm"), "two.dpm");
    EXPECT_EQ(FindFile("./one.dpm"), "./one.dpm");
    EXPECT_EQ(FindFile("/else/one.dpm"), "/else/one.dpm");
    EXPECT_EQ(FindFile(""), "");
    ASSERT_EQ(seteuid(user), 0);  // who may come back to the current folder
    const QString before = QDir::currentPath();
    QDir::setCurrent(root.filePath("home"));
    ASSERT_EQ(WriteFile("one.dpm", "2"), "");
    EXPECT_EQ(FindFile("one.dpm"), "one.dpm");
    QDir::setCurrent(before);
}
