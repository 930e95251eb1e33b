#include "model/ini_store.h"

#include <gmock/gmock.h>

#include <QDir>

#include "model/settings_folder.h"
#include "platform/folder_hold.h"

using namespace ombrix;

namespace {

class IniStore : public SettingsFolder
{
protected:
    void SetUp() override
    {
        SettingsFolder::SetUp();
        LoadIni();
        IniReady = true;
    }

    void Load(const std::string &text)
    {
        Write("Ombrix.ini", text);
        LoadIni();
    }

    static std::string Saved()
    {
        SaveIni();
        return Read("Ombrix.ini");
    }
};

}  // namespace

TEST_F(IniStore, IsEmptyWithoutAFile)
{
    EXPECT_EQ(IniGet("Comms", "CALPort"), "");
    EXPECT_EQ(IniKeyCount("Comms"), 0);
    EXPECT_EQ(IniKeyAt("Comms", 0), "");
    EXPECT_EQ(FindIniSection("Comms"), -1);
    EXPECT_EQ(FindIniKey("Comms", "CALPort"), -1);
    EXPECT_TRUE(remarks.empty());
}

TEST_F(IniStore, ReadsSectionsAndKeysInFileOrder)
{
    Load("[Comms]\nCALPort=2\nDPMPort=1\n[Ratio]\nDCRange=0.2\n");
    EXPECT_EQ(FindIniSection("Comms"), 0);
    EXPECT_EQ(FindIniSection("Ratio"), 1);
    EXPECT_EQ(IniKeyCount("Comms"), 2);
    EXPECT_EQ(IniKeyAt("Comms", 0), "CALPort");
    EXPECT_EQ(IniKeyAt("Comms", 1), "DPMPort");
    EXPECT_EQ(IniKeyAt("Comms", 2), "");
    EXPECT_EQ(IniKeyAt("Comms", -1), "");
    EXPECT_EQ(FindIniKey("Comms", "DPMPort"), 1);
    EXPECT_EQ(FindIniKey("Ratio", "DCRange"), 2) << "keys are counted through all sections";
    EXPECT_EQ(IniGet("Ratio", "DCRange"), "0.2");
    EXPECT_FALSE(IniDirty);
}

TEST_F(IniStore, TakesASectionNameWithBlanksInsideTheBracketsAsTheSameSection)
{
    Load("[ Comms ]\nCALPort=1\n[Comms]\nDPMPort=2\n");
    EXPECT_EQ(IniGet("Comms", "CALPort"), "1");
    EXPECT_EQ(IniGet("Comms", "DPMPort"), "2");
    EXPECT_EQ(IniKeyCount("Comms"), 2);
}

TEST_F(IniStore, DropsALineWithoutAKey)
{
    Load("[Comms]\n=x\n =x\n=xyz\nCALPort=1\n");
    EXPECT_EQ(IniKeyCount("Comms"), 1);
}

TEST_F(IniStore, DropsWhatIsNoPair)
{
    Load("[Comms]\nno equals\n; a comment\nA=\nB= \nC=c\n [D]\n[E\nF]\nx\n\n");
    EXPECT_EQ(IniKeyCount("Comms"), 1);
    EXPECT_EQ(IniGet("Comms", "C"), "c");
}

TEST_F(IniStore, SkipsALineOfTwoCharactersEvenBrackets)
{
    Load("[Comms]\n[]\nCALPort=1\nA=\n");
    EXPECT_EQ(IniGet("Comms", "CALPort"), "1");
    EXPECT_EQ(IniKeyCount("Comms"), 1);
}

TEST_F(IniStore, DropsLinesBeforeTheFirstSection)
{
    Load("CALPort=1\n[Comms]\nDPMPort=1\n");
    EXPECT_EQ(IniGet("Comms", "CALPort"), "");
    EXPECT_EQ(IniKeyCount("Comms"), 1);
}

TEST_F(IniStore, DropsTheKeysOfASectionWithoutAName)
{
    Load("[Comms]\nA=1\n[ ]\nB=2\n");
    EXPECT_EQ(IniKeyCount("Comms"), 1);
    EXPECT_TRUE(remarks.empty());
    Load("[Comms]\nA=1\n[ ]\nB=2\n[Ratio]\nC=3\n");
    EXPECT_EQ(IniKeyCount("Comms"), 1);
    EXPECT_EQ(IniGet("Ratio", "C"), "3");
    EXPECT_EQ(FindIniSection(""), -1);
}

TEST_F(IniStore, SplitsAtTheFirstEqualsSignAndTrims)
{
    Load("[SFNames]\n DC = C:\\a=b\\zsc 1.dpm \t\n");
    EXPECT_EQ(IniGet("SFNames", "DC"), "C:\\a=b\\zsc 1.dpm");
}

TEST_F(IniStore, ComparesNamesExactly)
{
    Load("[Comms]\nCALPort=1\n[COMMS]\nCALPort=2\ncalport=3\n");
    EXPECT_EQ(IniGet("Comms", "CALPort"), "1");
    EXPECT_EQ(IniGet("COMMS", "CALPort"), "2");
    EXPECT_EQ(IniGet("COMMS", "calport"), "3");
    EXPECT_EQ(IniGet("comms", "CALPort"), "");
}

TEST_F(IniStore, LooksUpKeysWithinTheirSection)
{
    Load("[A]\nOne=1\n[B]\nTwo=2\n");
    EXPECT_EQ(IniGet("A", "Two"), "");
    EXPECT_EQ(IniGet("B", "One"), "");
}

TEST_F(IniStore, ContinuesASectionThatComesTwiceAndLetsTheLaterKeyWin)
{
    Load("[A]\nOne=1\nTwo=2\n[B]\nThree=3\n[A]\nFour=4\nOne=5\n");
    EXPECT_EQ(IniGet("A", "One"), "5");
    IniSet("B", "Three", "33");
    EXPECT_EQ(Saved(), "[A]\nOne=5\nTwo=2\nFour=4\n[B]\nThree=33\n");
}

TEST_F(IniStore, ReadsFilesFromWindows)
{
    Load("\xEF\xBB\xBF[Comms]\r\nCALPort=1\r\n\r\nDPMPort=2");
    EXPECT_EQ(IniGet("Comms", "CALPort"), "1");
    EXPECT_EQ(IniGet("Comms", "DPMPort"), "2");
}

TEST_F(IniStore, ReadsLinesThatEndInCarriageReturnsAlone)
{
    Load("[Comms]\rCALPort=1\r\rDPMPort=2\r");
    EXPECT_EQ(IniGet("Comms", "CALPort"), "1");
    EXPECT_EQ(IniGet("Comms", "DPMPort"), "2");
}

TEST_F(IniStore, AddsANewKeyAtTheEndOfItsSectionAndANewSectionAtTheEnd)
{
    Load("[A]\nOne=1\n[B]\nTwo=2\n");
    EXPECT_TRUE(IniSet("A", "Three", "3"));
    EXPECT_TRUE(IniSet("C", "Four", "4"));
    EXPECT_TRUE(IniSet("B", "Five", "5"));
    EXPECT_EQ(FindIniKey("A", "Three"), 1);
    EXPECT_EQ(FindIniKey("B", "Two"), 2) << "moved up by one";
    EXPECT_EQ(FindIniKey("C", "Four"), 4);
    EXPECT_EQ(Saved(), "[A]\nOne=1\nThree=3\n[B]\nTwo=2\nFive=5\n[C]\nFour=4\n");
}

TEST_F(IniStore, SaysWhetherAValueChanged)
{
    EXPECT_TRUE(IniSet("Comms", "CALPort", "1"));
    IniDirty = false;
    EXPECT_FALSE(IniSet("Comms", "CALPort", "1"));
    EXPECT_FALSE(IniDirty);
    EXPECT_TRUE(IniSet("Comms", "CALPort", "2"));
    EXPECT_TRUE(IniDirty);
    EXPECT_FALSE(IniSet("Comms", "CALPort", "2"));
    EXPECT_TRUE(IniDirty) << "or-ed";
}

TEST_F(IniStore, KeepsNothingThatALineCannotHold)
{
    EXPECT_FALSE(IniSet("A", "Key", ""));
    EXPECT_FALSE(IniSet("A", "Key", "  "));
    EXPECT_FALSE(IniSet("A", "", "x"));
    EXPECT_FALSE(IniSet("", "Key", "x"));
    EXPECT_FALSE(IniSet("A", "Key", "two\nlines"));
    EXPECT_FALSE(IniSet("A", "Ke=y", "x"));
    EXPECT_FALSE(IniDirty);
    EXPECT_TRUE(IniSet("A", "Key", " x "));
    EXPECT_EQ(IniGet("A", "Key"), "x");
}

TEST_F(IniStore, ClearsASectionWithAllItsKeys)
{
    Load("[A]\nOne=1\n[B]\nTwo=2\nThree=3\n[C]\nFour=4\n");
    IniClearSection("B");
    EXPECT_TRUE(IniDirty);
    EXPECT_EQ(FindIniSection("B"), -1);
    EXPECT_EQ(IniGet("C", "Four"), "4");
    EXPECT_EQ(Saved(), "[A]\nOne=1\n[C]\nFour=4\n");
    IniClearSection("B");
    EXPECT_FALSE(IniDirty) << "nothing was removed";
}

TEST_F(IniStore, RemovesAKeyAndWithTheLastOneTheSection)
{
    Load("[A]\nOne=1\nTwo=2\n[B]\nThree=3\n");
    IniRemove("A", "One");
    EXPECT_EQ(IniGet("A", "Two"), "2");
    EXPECT_EQ(IniGet("B", "Three"), "3");
    IniRemove("A", "Two");
    EXPECT_EQ(FindIniSection("A"), -1);
    EXPECT_EQ(FindIniKey("B", "Three"), 0);
    EXPECT_TRUE(IniDirty);
    IniDirty = false;
    IniRemove("A", "Two");
    IniRemove("B", "One");
    EXPECT_FALSE(IniDirty);
}

TEST_F(IniStore, RefillsASectionAndIsDirtyOnlyWhenItsPairsChanged)
{
    Load("[A]\nOne=1\nTwo=2\n[B]\nThree=3\n");
    IniRefill("A", {{"Two", "2"}, {"One", "1"}});
    EXPECT_FALSE(IniDirty) << "the same pairs in another order";
    IniRefill("A", {{"Two", "22"}, {"Four", "4"}});
    EXPECT_TRUE(IniDirty);
    EXPECT_EQ(Saved(), "[A]\nTwo=22\nFour=4\n[B]\nThree=3\n");
    IniRefill("A", {});
    EXPECT_EQ(Saved(), "[B]\nThree=3\n");
}

TEST_F(IniStore, WritesTheFileOnceForTwoSavesInARow)
{
    IniSet("A", "One", "1");
    SaveIni();
    EXPECT_FALSE(IniDirty);
    Write("Ombrix.ini", "untouched");
    SaveIni();
    EXPECT_EQ(Read("Ombrix.ini"), "untouched");
}

TEST_F(IniStore, WritesNothingBeforeTheStoreIsReady)
{
    IniReady = false;
    IniSet("A", "One", "1");
    SaveIni();
    EXPECT_FALSE(Exists("Ombrix.ini"));
    EXPECT_TRUE(IniDirty);
    IniReady = true;
    EXPECT_EQ(Saved(), "[A]\nOne=1\n");
}

TEST_F(IniStore, KeepsEightBitBytesAsTheyAre)
{
    const std::string text = "[SFNames]\nDC=Pr\xFC"
                             "fst\xE4nde\\\xC3\xBC.dpm\n";
    Load(text);
    EXPECT_EQ(IniGet("SFNames", "DC"), "Pr\xFC"
                                       "fst\xE4nde\\\xC3\xBC.dpm");
    IniSet("X", "Y", "1");
    EXPECT_EQ(Saved(), text + "[X]\nY=1\n");
}

TEST_F(IniStore, KeepsAKeyThatLooksLikeASectionOnItsLine)
{
    Load("[A]\n [B=1]\nOne=1\n");
    EXPECT_EQ(IniGet("A", "[B"), "1]");
    IniSet("A", "Two", "2");
    const std::string first = Saved();
    LoadIni();
    EXPECT_EQ(IniGet("A", "[B"), "1]");
    EXPECT_EQ(IniGet("A", "One"), "1");
    EXPECT_EQ(first, "[A]\n [B=1]\nOne=1\nTwo=2\n");
}

TEST_F(IniStore, ForgetsEverythingAtANewLoad)
{
    IniSet("A", "One", "1");
    Load("[B]\nTwo=2\n");
    EXPECT_EQ(IniGet("A", "One"), "");
    EXPECT_EQ(IniGet("B", "Two"), "2");
    EXPECT_FALSE(IniDirty);
}

TEST_F(IniStore, NeverOverwritesAFileThatItCouldNotRead)
{
    QDir().mkdir("Ombrix.ini");  // a folder of that name can't be read, not even by root
    Write("Ombrix.ini/inside", "x");
    LoadIni();
    ASSERT_EQ(remarks.size(), 1u);
    EXPECT_NE(remarks[0].find("won't be kept"), std::string::npos);
    EXPECT_EQ(IniKeyCount("Comms"), 0);

    IniSet("A", "One", "1");
    SaveIni();
    EXPECT_TRUE(IniDirty);
    EXPECT_EQ(Read("Ombrix.ini/inside"), "x");
    EXPECT_EQ(remarks.size(), 1u) << "said once, not at every save";
}

TEST_F(IniStore, KeepsAFileOfWhichItUnderstandsNothingBesideTheNewOne)
{
    std::string wide = "\xFF\xFE";  // the same settings, two bytes a character
    for (const char c : std::string("[Gains]\r\nDC.19=3.2961\r\n"))
        wide += {c, '\0'};
    for (const std::string &text : {wide, std::string("%PDF-1.4\nA=1\n"), std::string("=xyz\n")}) {
        Load(text);
        EXPECT_EQ(IniGet("A", "1"), "");
        IniSet("A", "One", "1");
        EXPECT_EQ(Saved(), "[A]\nOne=1\n");
        EXPECT_EQ(kept, "Ombrix.ini held no settings. It is kept as Ombrix.ini.old.") << "also behind a save";
        EXPECT_EQ(Read("Ombrix.ini.old"), text);
        LoadIni();
        EXPECT_EQ(kept, "") << "the next start finds settings";
    }
}

TEST_F(IniStore, OverwritesNoFileThatItCannotKeepBeside)
{
    QDir().mkdir("Ombrix.ini.old");
    Load("nothing that is known\n");
    EXPECT_EQ(kept,
              "Ombrix.ini holds no settings, and Ombrix.ini.old can't be written. Settings of this session won't be "
              "kept.");
    IniSet("A", "One", "1");
    EXPECT_EQ(Saved(), "nothing that is known\n");
}

TEST_F(IniStore, KeepsNothingBesideAFileOfAnotherStation)
{
    Write("Ombrix.ini", "nothing that is known\n");
    LoadIni("elsewhere/Ombrix.ini");
    FolderHold other;
    ASSERT_TRUE(other.TakeFolderOf("Ombrix.ini"));
    LoadIni();
    EXPECT_FALSE(Exists("Ombrix.ini.old"));
}

TEST_F(IniStore, LetsTheFolderGoForAnotherProgram)
{
    Load("[A]\nOne=1\n");
    FolderHold other;
    EXPECT_FALSE(other.TakeFolderOf("Ombrix.ini"));
    ReleaseIni();
    EXPECT_TRUE(other.TakeFolderOf("Ombrix.ini"));
    IniSet("A", "One", "2");
    EXPECT_EQ(Saved(), "[A]\nOne=1\n") << "what is the other's now is not written";
}

TEST_F(IniStore, FillsAnEmptyFileAndOneWithASectionAlone)
{
    for (const std::string text : {"", "\xEF\xBB\xBF", "\r\n  \n", "[A]\n"}) {
        Load(text);
        IniSet("A", "One", "1");
        EXPECT_EQ(Saved(), "[A]\nOne=1\n");
    }
    EXPECT_TRUE(remarks.empty());
}

TEST_F(IniStore, LeavesTheFileToTheStationThatHasItOpen)
{
    Write("Ombrix.ini", "[A]\nOne=1\n");
    LoadIni("elsewhere/Ombrix.ini");
    FolderHold other;
    ASSERT_TRUE(other.TakeFolderOf("Ombrix.ini"));
    LoadIni();
    ASSERT_EQ(remarks.size(), 1u);
    EXPECT_THAT(remarks[0],
                testing::MatchesRegex("Ombrix.ini is in use by another station \\(.+ on .+ since .+, process "
                                      ".+\\)\\. Settings of this session won't be kept\\."));
    EXPECT_EQ(remarks[0], IniObstacle() + " Settings of this session won't be kept.");
    EXPECT_EQ(IniGet("A", "One"), "1") << "reading is free";
    IniSet("A", "One", "2");
    EXPECT_EQ(Saved(), "[A]\nOne=1\n");

    other.Release();
    LoadIni();
    EXPECT_EQ(remarks.size(), 1u);
    EXPECT_EQ(IniObstacle(), "");
    IniSet("A", "One", "2");
    EXPECT_EQ(Saved(), "[A]\nOne=2\n");
    EXPECT_FALSE(other.TakeFolderOf("Ombrix.ini"));
}

TEST_F(IniStore, StaysDirtyAndSaysSoWhenItCannotWrite)
{
    LoadIni("gone/Ombrix.ini");
    IniSet("A", "One", "1");
    SaveIni();
    EXPECT_TRUE(IniDirty);
    ASSERT_EQ(remarks.size(), 1u);
    EXPECT_NE(remarks[0].find("can't be written"), std::string::npos);
    EXPECT_EQ(kept, remarks[0]);

    QDir().mkdir("gone");
    SaveIni();
    EXPECT_FALSE(IniDirty);
    EXPECT_EQ(Read("gone/Ombrix.ini"), "[A]\nOne=1\n");
    EXPECT_EQ(kept, "") << "what is saved by now needs no remark";
}

TEST_F(IniStore, LosesAKeyUnderA17thSectionWithAMessage)
{
    for (int i = 0; i < kIniSections; ++i)
        EXPECT_TRUE(IniSet("S" + std::to_string(i), "Key", "v"));
    EXPECT_TRUE(warnings.empty());
    SaveIni();

    EXPECT_FALSE(IniSet("One more", "Key", "v"));
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_EQ(warnings[0], "Ombrix.ini Problem: Too many INI Sections");
    EXPECT_EQ(FindIniSection("One more"), -1);
    EXPECT_EQ(IniGet("One more", "Key"), "");
    EXPECT_TRUE(IniSet("S0", "Other", "w")) << "sections that exist still take keys";
    const std::string saved = Saved();
    EXPECT_EQ(saved.find("One more"), std::string::npos);
    EXPECT_NE(saved.find("[S0]\nKey=v\nOther=w\n[S1]"), std::string::npos);
}

TEST_F(IniStore, CountsALostKeyAgainstTheCapacity)
{
    for (int i = 0; i < kIniSections; ++i)
        IniSet("S" + std::to_string(i), "Key", "v");
    IniSet("One more", "Key", "v");
    for (int i = kIniSections + 1; i < kIniKeys; ++i)
        EXPECT_TRUE(IniSet("S3", "Key" + std::to_string(i), "v")) << i;
    EXPECT_EQ(warnings.size(), 1u);
    EXPECT_FALSE(IniSet("S3", "too much", "v"));
    EXPECT_EQ(warnings.size(), 2u);
}

TEST_F(IniStore, StoresNothingBeyond512KeysAndSaysSoOnce)
{
    for (int i = 0; i < kIniKeys; ++i)
        EXPECT_TRUE(IniSet("S" + std::to_string(i % 5), "Key" + std::to_string(i), "v"));
    EXPECT_TRUE(warnings.empty());
    const std::string before = Saved();
    IniDirty = false;
    EXPECT_FALSE(IniSet("S0", "One more", "v"));
    EXPECT_FALSE(IniSet("S1", "One more", "v"));
    EXPECT_FALSE(IniDirty);
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_EQ(warnings[0], "Ombrix.ini Problem: Too many INI Keys");
    EXPECT_TRUE(IniSet("S0", "Key0", "w")) << "a held key can still change";
    IniSet("S0", "Key0", "v");
    EXPECT_EQ(Saved(), before);
}

TEST_F(IniStore, ReadsAFileBeyondItsCapacityWithOneMessageOfEachKind)
{
    std::string text;
    for (int section = 0; section < 30; ++section) {
        text += "[S" + std::to_string(section) + "]\n";
        for (int key = 0; key < 20; ++key)
            text += "K" + std::to_string(key) + "=v\n";
    }
    Load(text);
    EXPECT_THAT(warnings, testing::ElementsAre("Ombrix.ini Problem: Too many INI Sections",
                                               "Ombrix.ini Problem: Too many INI Keys"));
    EXPECT_EQ(IniKeyCount("S15"), 20);
    EXPECT_EQ(IniKeyCount("S16"), 0);
}
