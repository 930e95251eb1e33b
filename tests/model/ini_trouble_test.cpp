// Ombrix.ini while the station is killed, the disk is full, the folder read-only, gone or something else: the file is
// the old one or the new one, and the operator is told for as long as it isn't what he set.

#include "model/settings_folder.h"
#include "platform/file_faults.h"
#include "platform/folder_hold.h"
#include "support/other_process.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

using namespace ombrix;
using namespace ombrix::test;
using testing::AnyOf;
using testing::Eq;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr int kKeys = 60;

class IniTrouble : public SettingsFolder
{
protected:
    void SetUp() override
    {
        SettingsFolder::SetUp();
        LoadIni();
        IniReady = true;
    }
    void TearDown() override
    {
        UseFileFaults(nullptr);
        SettingsFolder::TearDown();
    }

    // All that the station knows at one moment. Each number says itself in another length.
    static void Learns(int number)
    {
        for (int key = 0; key < kKeys; ++key)
            IniSet(key % 2 == 0 ? "Gains" : "Words", "Key" + std::to_string(key), ValueOf(number));
    }
    static std::string ValueOf(int number)
    {
        return std::to_string(number) + std::string(static_cast<std::size_t>(number % 13), 'x');
    }
    static std::string FileOf(int number)
    {
        std::string gains = "[Gains]\n";
        std::string words = "[Words]\n";
        for (int key = 0; key < kKeys; ++key)
            (key % 2 == 0 ? gains : words) += "Key" + std::to_string(key) + "=" + ValueOf(number) + "\n";
        return gains + words;
    }
    static void LearnsAndSaves(int number)
    {
        Learns(number);
        SaveIni();
    }
    // So many of the calls to the system fail, from one on. False when fewer are needed.
    bool SavesWhileCallsFail(int from, int length)
    {
        SCOPED_TRACE("calls " + std::to_string(from) + " and " + std::to_string(length) + " in all fail");
        LearnsAndSaves(1);
        int calls = 0;
        UseFileFaults([&calls, from, length](FileCall) {
            const int call = calls++;
            return FileFault{call >= from && call < from + length ? ENOSPC : 0, 0};
        });
        LearnsAndSaves(2);
        const bool reached = calls > from;
        EXPECT_EQ(File(), FileOf(reached ? 1 : 2));
        EXPECT_EQ(kept,
                  reached ? "Ombrix.ini can't be written: No space left on device. The settings aren't saved." : "");
        UseFileFaults(nullptr);
        SaveIni();
        EXPECT_EQ(File(), FileOf(2));
        EXPECT_EQ(kept, "");
        EXPECT_EQ(Names(), "Ombrix.ini");
        return reached;
    }
    static std::string File() { return Read("Ombrix.ini"); }
    // What lies in the folder beside the lock of the station that holds it.
    static std::string Names()
    {
        QStringList names = QDir().entryList(QDir::Files | QDir::Hidden);
        names.removeOne(kLockFile);
        return names.join(' ').toStdString();
    }

    // What is saved in the trouble isn't, and that is told; what is saved behind it is, and the remark goes.
    void ExpectToldAndMended(const std::string &words, const std::function<void()> &mended)
    {
        LearnsAndSaves(2);
        EXPECT_EQ(kept, "Ombrix.ini can't be written: " + words + ". The settings aren't saved.");
        EXPECT_TRUE(IniDirty);
        mended();
        LearnsAndSaves(3);
        EXPECT_EQ(kept, "");
        EXPECT_FALSE(IniDirty);
        EXPECT_EQ(File(), FileOf(3));
        EXPECT_EQ(Names(), "Ombrix.ini");
    }
};

}  // namespace

TEST_F(IniTrouble, KilledAtAnyMomentOfItsSavesTheStationFindsWholeSettingsAgain)
{
    LearnsAndSaves(0);
    ReleaseIni();
    std::mt19937 random(7);
    int saved = 0;
    for (int n = TimesOfSoak(30, 1000); n > 0 && !HasFailure(); --n) {
        LivesUntilKilled(static_cast<int>(random() % 20'000), [saved] {
            LoadIni();
            for (int number = saved + 1;; ++number)
                LearnsAndSaves(number);
        });
        LoadIni();
        const int found = std::atoi(IniGet("Gains", "Key0").c_str());
        ASSERT_GE(found, saved) << "what was saved once stays";
        ASSERT_EQ(File(), FileOf(found));
        ASSERT_EQ(kept, "") << "the folder is free and the file readable";
        ASSERT_THAT(Names(), AnyOf(Eq("Ombrix.ini"), Eq(".Ombrix.ini.new Ombrix.ini")));
        saved = found;
        ReleaseIni();
    }
    EXPECT_GT(saved, 0) << "each was killed before it had saved anything";
    LoadIni();
    LearnsAndSaves(saved + 1);
    EXPECT_EQ(Names(), "Ombrix.ini");
}

TEST_F(IniTrouble, WhicheverCallFailsForHoweverLongTheFileIsWholeAndTheOperatorToldUntilItIsSaved)
{
    for (const int length : {1, 2, 1000}) {
        int from = 0;
        while (SavesWhileCallsFail(from, length))
            ++from;
        EXPECT_EQ(from, 4) << "opened, written, synced, renamed";
    }
}

TEST_F(IniTrouble, ADiskThatIsFullAtAnyByteLeavesTheOldFile)
{
    LearnsAndSaves(1);
    const auto size = static_cast<unsigned>(FileOf(2).size());
    for (unsigned next = 0; next < size + 64; next += 64) {
        const unsigned room = std::min(next, size);
        SCOPED_TRACE("room for " + std::to_string(room) + " bytes");
        InAnotherProcess([room, size, this] {
            FilesEndAt(room);
            LearnsAndSaves(2);
            EXPECT_EQ(File(), FileOf(room < size ? 1 : 2));
            EXPECT_EQ(kept.empty(), room >= size) << kept;
        });
        EXPECT_EQ(File(), FileOf(room < size ? 1 : 2));
        EXPECT_EQ(Names(), "Ombrix.ini");
        WriteFile("Ombrix.ini", FileOf(1));
    }
}

TEST_F(IniTrouble, AReadOnlyFolderIsToldToAUserWithoutRights)
{
    QDir().mkdir("station");
    LoadIni("station/Ombrix.ini");
    LearnsAndSaves(1);
    ReleaseIni();
    ASSERT_EQ(chmod("station", 0555), 0);
    InAnotherProcess([this] {
        QDir::setCurrent("station");
        BecomesNobody();
        LoadIni();
        EXPECT_EQ(IniGet("Gains", "Key0"), ValueOf(1));
        LearnsAndSaves(2);
        EXPECT_EQ(kept, "Ombrix.ini can't be written: Permission denied. The settings aren't saved.");
        EXPECT_TRUE(IniDirty);
    });
    EXPECT_EQ(Read("station/Ombrix.ini"), FileOf(1));
    ASSERT_EQ(chmod("station", 0755), 0);
}

TEST_F(IniTrouble, AFolderThatIsGoneIsToldAndNotMadeAnew)
{
    QDir().mkdir("station");
    LoadIni("station/Ombrix.ini");
    LearnsAndSaves(1);
    ASSERT_TRUE(QDir().rename("station", "away"));
    LearnsAndSaves(2);
    EXPECT_EQ(kept, "station/Ombrix.ini can't be written: No such file or directory. The settings aren't saved.");
    EXPECT_FALSE(Exists("station"));
    ASSERT_TRUE(QDir().rename("away", "station"));
    EXPECT_EQ(Read("station/Ombrix.ini"), FileOf(1));
    SaveIni();
    EXPECT_EQ(Read("station/Ombrix.ini"), FileOf(2));
    EXPECT_EQ(kept, "");
}

TEST_F(IniTrouble, AFolderInTheFilesPlaceIsToldAndLeftAlone)
{
    LearnsAndSaves(1);
    QFile::remove("Ombrix.ini");
    QDir().mkdir("Ombrix.ini");
    Write("Ombrix.ini/inside", "x");
    ExpectToldAndMended("Is a directory", [] {
        EXPECT_EQ(Read("Ombrix.ini/inside"), "x");
        QDir("Ombrix.ini").removeRecursively();
    });
}

TEST_F(IniTrouble, AFolderInThePlaceOfTheNewFileIsToldAndLeftAlone)
{
    LearnsAndSaves(1);
    QDir().mkdir(".Ombrix.ini.new");
    ExpectToldAndMended("File exists", [] {
        EXPECT_EQ(File(), FileOf(1));
        QDir().rmdir(".Ombrix.ini.new");
    });
}

TEST_F(IniTrouble, AFileThatWasDeletedIsWrittenAnew)
{
    LearnsAndSaves(1);
    QFile::remove("Ombrix.ini");
    LearnsAndSaves(2);
    EXPECT_EQ(File(), FileOf(2));
    EXPECT_EQ(kept, "");
}
