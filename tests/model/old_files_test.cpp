#include "model/old_files.h"

#include <gmock/gmock.h>

#include "model/settings_folder.h"

using namespace ombrix;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class OldFiles : public SettingsFolder
{
protected:
    std::vector<std::string> Fields(const std::string &bytes)
    {
        Write("old", bytes);
        return FieldsOfOldFile("old");
    }
};

}  // namespace

TEST_F(OldFiles, HaveFieldsBetweenCommasAndLineEnds)
{
    EXPECT_THAT(Fields("DC,19,3.2\r\nAC , 1A ,31\n"), ElementsAre("DC", "19", "3.2", "AC", "1A", "31"));
    EXPECT_THAT(Fields("a\rb\rc"), ElementsAre("a", "b", "c"));
    EXPECT_THAT(Fields("a,,b"), ElementsAre("a", "", "b"));
}

TEST_F(OldFiles, LoseOnePairOfQuotes)
{
    EXPECT_THAT(Fields("\"DC\",\" a, b \", \"\"x\"\", \""), ElementsAre("DC", "a, b", "\"x\"", "\""));
}

TEST_F(OldFiles, HaveNoFieldsOnEmptyLines)
{
    EXPECT_THAT(Fields("\r\n \r\na\r\n\r\n"), ElementsAre("a"));
    EXPECT_THAT(Fields(""), IsEmpty());
}

TEST_F(OldFiles, GiveNothingWhenMissingOrShort)
{
    EXPECT_THAT(FieldsOfOldFile("none"), IsEmpty());
    EXPECT_EQ(FieldOfOldFile("none", 0), "");
    EXPECT_EQ(FirstLineOfOldFile("none"), "");
    Write("old", "1,2");
    EXPECT_EQ(FieldOfOldFile("old", 1), "2");
    EXPECT_EQ(FieldOfOldFile("old", 2), "");
}

TEST_F(OldFiles, GiveTheirFirstLineWhole)
{
    Write("old", "2,1,1\r\nmore");
    EXPECT_EQ(FirstLineOfOldFile("old"), "2,1,1");
    Write("old", " \"2,1,1\" \r\n");
    EXPECT_EQ(FirstLineOfOldFile("old"), "2,1,1");
    Write("old", "\"\"x\"\"");
    EXPECT_EQ(FirstLineOfOldFile("old"), "\"x\"") << "one pair of quotes alone";
    Write("old", "\nsecond");
    EXPECT_EQ(FirstLineOfOldFile("old"), "");
}

TEST_F(OldFiles, SurviveAnyBytes)
{
    EXPECT_THAT(Fields(std::string("\0\"", 2)), ElementsAre(std::string("\0\"", 2)));
    EXPECT_EQ(Fields(std::string(1'000'000, '"')).size(), 1u);
    EXPECT_EQ(Fields(std::string(100'000, ',')).size(), 100'000u);
}
