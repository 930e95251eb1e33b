#include "records/cable.h"

#include "records/diagrams_fixture.h"

#include <map>
#include <string>

namespace ombrix {
namespace {

std::string MessageFor(const std::string &pins, const std::string &signal)
{
    return "Verify that the " + pins + "-pin cable is connected between\r\nthe Calibrator's " + signal +
           " pins and the AC board.";
}

class CableMessages : public Diagrams
{
protected:
    void SetUp() override
    {
        Diagrams::SetUp();
        SCType = kAc3;
    }

    // A range that is opened in full; what it asked for.
    static std::string Opens(int row)
    {
        std::string message = CableMessage(row);
        CableConnected(row);
        return message;
    }
};

TEST_F(CableMessages, TheFirstAc3RangeAsksForItsCable)
{
    EXPECT_EQ(CableMessage(0), "Verify that the 2-pin cable is connected between\r\n"
                               "the Calibrator's Voltage pins and the AC board.");
}

TEST_F(CableMessages, EachRowNeedsItsCable)
{
    const std::map<int, std::string> messages = {
        {0, MessageFor("2", "Voltage")}, {1, MessageFor("4", "Voltage")}, {2, MessageFor("4", "Voltage")},
        {3, MessageFor("4", "Voltage")}, {5, MessageFor("2", "Current")}, {6, MessageFor("2", "Current")},
        {7, MessageFor("2", "Current")}, {8, MessageFor("2", "Current")}, {9, MessageFor("4", "Voltage")},
    };
    for (const auto &[row, message] : messages)
        EXPECT_EQ(CableMessage(row), message) << row;
}

TEST_F(CableMessages, TwoRangesInARowOnTheSameCableGiveNoSecondCableMessage)
{
    EXPECT_EQ(Opens(1), MessageFor("4", "Voltage"));
    EXPECT_EQ(Opens(2), "");
    EXPECT_EQ(Opens(9), "");
    EXPECT_EQ(Opens(5), MessageFor("2", "Current"));
    EXPECT_EQ(Opens(8), "");
    EXPECT_EQ(Opens(1), MessageFor("4", "Voltage"));
}

TEST_F(CableMessages, ARangeThatWasNotOpenedAsksAgain)
{
    EXPECT_EQ(Opens(0), MessageFor("2", "Voltage"));
    EXPECT_EQ(CableMessage(5), MessageFor("2", "Current"));
    EXPECT_EQ(CableMessage(5), MessageFor("2", "Current"));
    EXPECT_EQ(CableMessage(0), "") << "the cable is still the one of the range that was opened";
}

TEST_F(CableMessages, TheDiagramAsksForNoCable)
{
    Show(kAc3, 5);
    EXPECT_EQ(CableMessage(5), MessageFor("2", "Current"));
    Opens(5);
    Show(kAc3, 0);
    EXPECT_EQ(CableMessage(5), "");
}

TEST_F(CableMessages, RowsOutsideTheListsGiveNoMessage)
{
    for (const int row : {-5, -1, 4, 10, 11, 99})
        EXPECT_EQ(Opens(row), "") << row;
    EXPECT_EQ(Opens(0), MessageFor("2", "Voltage"));
    for (const int row : {-1, 4, 10, 99})
        EXPECT_EQ(Opens(row), "") << row;
    EXPECT_EQ(Opens(0), "");  // still remembered
}

TEST_F(CableMessages, OtherBoardsGiveNoneAndLeaveTheMemoryAlone)
{
    EXPECT_EQ(Opens(0), MessageFor("2", "Voltage"));
    for (const int board : {kDc, kAc, kLc, kTc, kVf, kAc2, kTemp, kRtd}) {
        SCType = board;
        EXPECT_EQ(Opens(1), "") << board;
    }
    SCType = kAc3;
    EXPECT_EQ(Opens(0), "");
}

TEST_F(CableMessages, TheAnalogTabGivesNoneAndLeavesTheMemoryAlone)
{
    CalibTab = kTabAnaCal;
    EXPECT_EQ(Opens(0), "");
    CalibTab = kTabAc;
    EXPECT_NE(Opens(0), "");
}

TEST_F(CableMessages, ANewWindowAsksAnew)
{
    EXPECT_NE(Opens(0), "");
    MakeColumn();
    EXPECT_NE(Opens(0), "");
    EXPECT_EQ(Opens(0), "");
}

}  // namespace
}  // namespace ombrix
