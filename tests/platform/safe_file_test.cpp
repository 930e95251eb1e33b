#include "platform/safe_file.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

using namespace ombrix;

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

TEST(SafeFile, AWriteOverAFolderFailsAndSaysSo)
{
    QDir().mkdir("target");
    EXPECT_NE(WriteFile("target", "x"), "");
    EXPECT_TRUE(QDir("target").exists());
}

TEST(SafeFile, OneProgramAtATimeHoldsAFolder)
{
    QDir().mkdir("held");
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
    EXPECT_TRUE(QDir("held").isEmpty());
}

TEST(SafeFile, AFolderThatIsNotThereCountsAsFree)
{
    FolderHold hold;
    EXPECT_TRUE(hold.TakeFolderOf("no-such-folder/a.ini"));
}
