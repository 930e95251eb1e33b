#include "shell/folder_note.h"

#include "platform/folder_hold.h"
#include "shell/station.h"
#include "support/station.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>

#include <memory>
#include <string>

namespace ombrix::test {
namespace {

using testing::MatchesRegex;

class FolderNote : public testing::Test
{
protected:
    ~FolderNote() override { TellStationFolder({}); }

    static bool Sees() { return ScriptedOperator::Sees("lblStationFolder"); }
    static std::string Text() { return ScriptedOperator::Text("lblStationFolder"); }
    static std::string Remark() { return ScriptedOperator::Text("lblRemark"); }
};

TEST_F(FolderNote, IsNotThereForAStationBesideItsProgram)
{
    TellStationFolder({"/opt/station", true, ""});
    const Station station;
    RemarkOnFolder(true);
    EXPECT_FALSE(Sees());
    EXPECT_EQ(Remark(), "");
}

TEST_F(FolderNote, TellsAnyOtherFolderAtEachStartAndTheStatusLineAtTheFirst)
{
    TellStationFolder({"/home/anna/.local/share/ombrix", false, ""});
    const Station station;
    EXPECT_TRUE(Sees());
    EXPECT_EQ(Text(), "Settings and files of this station: /home/anna/.local/share/ombrix");
    RemarkOnFolder(false);
    EXPECT_EQ(Remark(), "");
    RemarkOnFolder(true);
    EXPECT_EQ(Remark(), "Settings and files of this station are in /home/anna/.local/share/ombrix");
}

TEST_F(FolderNote, TellsThatThereIsNoFolderToWriteIn)
{
    TellStationFolder({"/usr/bin", true, "/home/anna/.local/share/ombrix: Permission denied"});
    const Station station;
    EXPECT_TRUE(Sees());
    EXPECT_EQ(Text(),
              "There is no folder for the station's files: /home/anna/.local/share/ombrix: Permission denied. Start "
              "with --station and a folder.");
}

TEST_F(FolderNote, TellsWhoHoldsTheFolderAlsoBesideTheProgram)
{
    const WorkFolder folder;
    FolderHold other;
    ASSERT_TRUE(other.TakeFolderOf("Ombrix.ini"));
    TellStationFolder({QDir::currentPath().toStdString(), true, ""});
    const VirtualClock clock;
    OpenWholeStation(Painted::No);
    EXPECT_TRUE(Sees());
    EXPECT_THAT(Text(), MatchesRegex("Ombrix.ini is in use by another station \\(.+ on .+ since .+, process .+\\)\\. "
                                     "Settings of this session won't be kept\\."));
    CloseStation();
}

}  // namespace
}  // namespace ombrix::test
