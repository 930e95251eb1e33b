#include "model/connection_tables.h"

#include <gtest/gtest.h>

#include <map>

#include "model/step_ids.h"
#include "session/state.h"

using namespace ombrix;

namespace {

using Labels = std::vector<std::string>;

struct JumperRow {
    std::string caption;
    Labels letters;
};

class ConnectionTables : public testing::Test
{
protected:
    void SetUp() override { InitSessionState(); }
    void TearDown() override { InitSessionState(); }

    static void ExpectRows(int board, const std::vector<JumperRow> &rows)
    {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            EXPECT_EQ(RangeCaption(board, static_cast<int>(i)), rows[i].caption) << board << " row " << i;
            EXPECT_EQ(JumperLetters(board, static_cast<int>(i)), rows[i].letters) << board << " row " << i;
        }
        for (int row : {-1, static_cast<int>(rows.size())}) {
            EXPECT_EQ(RangeCaption(board, row), "") << board << " row " << row;
            EXPECT_TRUE(JumperLetters(board, row).empty()) << board << " row " << row;
        }
    }
};

}  // namespace

TEST_F(ConnectionTables, HaveTheJumpersOfDc)
{
    ExpectRows(kDc, {{"200 mV DC", {"A", "f", "b"}},
                     {"2 V DC", {"A", "f", "a"}},
                     {"20 V DC", {"B", "h", "b"}},
                     {"200 V DC", {"B", "h", "a"}},
                     {"660 V DC", {"B", "g", "a"}},
                     {"2 mA DC", {"A", "e,g", "b"}},
                     {"20 mA DC", {"A", "d,g", "b"}},
                     {"200 mA DC", {"A", "c,g", "b"}},
                     {"5 A DC", {"A", "a,b,g", "b"}},
                     {"600 V DC", {}},
                     {"200 mV DC", {}}});
}

TEST_F(ConnectionTables, HaveTheJumpersOfAcAndAc2)
{
    for (int board : {kAc, kAc2})
        ExpectRows(board, {{"200 mV AC", {"g", "k"}},
                           {"2 V AC", {"g", "j"}},
                           {"20 V AC", {"h", "k"}},
                           {"200 V AC", {"h", "j"}},
                           {"660 V AC", {"f", "j"}},
                           {"2 mA AC", {"e,f", "k"}},
                           {"20 mA AC", {"d,f", "k"}},
                           {"200 mA AC", {"c,f", "k"}},
                           {"5 A AC", {"a,b,f", "m"}},
                           {"600 V AC", {"f", "j"}},
                           {"200 mV AC", {}}});
}

TEST_F(ConnectionTables, HaveTheJumpersOfAc3)
{
    ExpectRows(kAc3, {{"200 mV AC", {"j", ""}},
                      {"2 V AC", {"g,h", "c"}},
                      {"20 V AC", {"i", "c"}},
                      {"200 V AC", {"k", "c"}},
                      {"660 V AC", {}},
                      {"2 mA AC", {"l,k", ""}},
                      {"20 mA AC", {"m", "b"}},
                      {"200 mA AC", {"m", "a"}},
                      {"5 A AC", {"m", "c,d,e"}},
                      {"600 V AC", {"m", "c"}},
                      {"200 mV AC", {"j", "f"}}});
}

TEST_F(ConnectionTables, HaveTheJumpersOfLc)
{
    ExpectRows(kLc, {{"20 mV", {"e"}}, {"50 mV", {"a"}}, {"100 mV", {"b"}}, {"250 mV", {"c"}}, {"500 mV", {"d"}}});
}

TEST_F(ConnectionTables, HaveTheJumpersOfTemp)
{
    ExpectRows(kTemp, {{"J,K,E,N", {"e", "", ""}},
                       {"T,R,S", {"f", "", ""}},
                       {"J,K,E,N °F", {"e", "", ""}},
                       {"J,K,E,N °C", {"e", "", ""}},
                       {"T,R,S °F", {"f", "", ""}},
                       {"T,R,S °C", {"f", "", ""}},
                       {"Upscale", {"", "c", ""}},
                       {"Downscale", {"", "d", ""}},
                       {"4-wire", {"", "", "b,e"}},
                       {"3-wire", {"", "", "a,e"}}});
}

TEST_F(ConnectionTables, HaveTheJumperOfTc)
{
    ExpectRows(kTc, {{"J,K,E,N", {""}},
                     {"T,R,S", {"j"}},
                     {"J,K,E,N °F", {""}},
                     {"J,K,E,N °C", {""}},
                     {"T,R,S °F", {"j"}},
                     {"T,R,S °C", {"j"}},
                     {"Upscale", {""}},
                     {"Downscale", {""}},
                     {"4-wire", {""}},
                     {"3-wire", {""}}});
}

TEST_F(ConnectionTables, HaveTheJumpersOfRtd)
{
    ExpectRows(kRtd, {{"4-Wire", {""}},
                      {"DIN385 °F", {"a"}},
                      {"DIN385 °C", {"a"}},
                      {"ANSI3902 °F", {"a"}},
                      {"ANSI3902 °C", {"a"}},
                      {"Ni120 °F", {"a"}},
                      {"Ni120 °C", {"a"}},
                      {"Cu10 °F", {"b"}},
                      {"Cu10 °C", {"b"}},
                      {"20 Ohms", {"b"}},
                      {"200 Ohms", {"c"}},
                      {"2 kOhms", {"d"}},
                      {"20 kOhms", {"e"}},
                      {"200 kOhms", {"f"}}});
}

TEST_F(ConnectionTables, HaveTheJumpersOfVfAndOfTheAnalogBoard)
{
    ExpectRows(kVf, {{"VF 4-20 mA", {"b"}}, {"VF 0-1 mA", {"a"}}, {"VF 0-10 V", {""}}});
    ExpectRows(kAn, {{"UniPolar", {"a"}}, {"BiPolar", {"b"}}});
}

TEST_F(ConnectionTables, HaveNothingForAnUnknownBoard)
{
    for (int board : {-1, 10}) {
        EXPECT_EQ(RangeCaption(board, 0), "");
        EXPECT_TRUE(JumperLetters(board, 0).empty());
        EXPECT_EQ(JumperBlockOfBoard(board), -1);
    }
}

TEST_F(ConnectionTables, ShareOneJumperBlockBetweenAcAndAc2)
{
    const int blocks[] = {0, 1, 2, 3, 4, 1, 6, 7, 8, 5};
    for (int board = 0; board < 10; ++board)
        EXPECT_EQ(JumperBlockOfBoard(board), blocks[board]) << board;
}

TEST_F(ConnectionTables, NameTheThermocoupleInputs)
{
    const char *const names[] = {"J,K,E,N",  "T,R,S",   "J,K,E,N °F", "J,K,E,N °C", "T,R,S °F",
                                 "T,R,S °C", "Upscale", "Downscale",  "4-wire",     "3-wire"};
    const char *const values[] = {"200 mV", "200 mV", "32 FAR", "0 CEL", "32 FAR", "0 CEL"};
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(ThermocoupleName(i), names[i]);
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(ThermocoupleValue(i), values[i]);
    EXPECT_EQ(ThermocoupleName(-1), "");
    EXPECT_EQ(ThermocoupleName(10), "");
    EXPECT_EQ(ThermocoupleValue(-1), "");
    EXPECT_EQ(ThermocoupleValue(6), "");
}

TEST_F(ConnectionTables, PickTheDrawingByBoardAndRow)
{
    const std::map<int, std::vector<int>> kinds = {{kDc, {2, 2, 2, 2, 2, 3, 3, 3, 3, 3, 3}},
                                                   {kAc, {6, 6, 5, 5, 5, 7, 7, 7, 7, 5, 6}},
                                                   {kAc2, {6, 6, 5, 5, 5, 7, 7, 7, 7, 5, 6}},
                                                   {kAc3, {6, 5, 5, 5, 5, 7, 7, 7, 7, 5, 6}},
                                                   {kLc, {8, 8, 8, 8, 8}},
                                                   {kTc, {2, 2, 2, 2, 2, 2, 2, 2, 2, 2}},
                                                   {kVf, {3, 3, 2}},
                                                   {kTemp, {2, 2, 2, 2, 2, 2, 2, 2, 2, 2}},
                                                   {kRtd, {10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10}}};
    for (const auto &[board, rows] : kinds) {
        SCType = board;
        CalibTab = board == kAc2 || board == kAc3 ? kTabAc : board == kTemp || board == kRtd ? kTabTc : board;
        for (std::size_t row = 0; row < rows.size(); ++row)
            EXPECT_EQ(DiagramKind(static_cast<int>(row)), rows[row]) << board << " row " << row;
    }
}

TEST_F(ConnectionTables, PickTheDrawingOfTheRatioAndOfTheRtdCurrentByTheStep)
{
    CurrentStepId = Step::Ratio;
    SCType = kDc;
    for (int row : {0, 4, 5, 8})
        EXPECT_EQ(DiagramKind(row), 4);
    SCType = kLc;
    EXPECT_EQ(DiagramKind(0), 9);
    SCType = kTemp;
    EXPECT_EQ(DiagramKind(0), 2);
    CurrentStepId = Step::RtdCurrent;
    EXPECT_EQ(DiagramKind(0), 10);
    SCType = kTc;
    EXPECT_EQ(DiagramKind(0), 2);
    SCType = kDc;
    EXPECT_EQ(DiagramKind(0), 2);
}

TEST_F(ConnectionTables, DrawNoConnectorBelowRowZero)
{
    for (int tab = kTabDc; tab <= kTabAnaCal; ++tab) {
        CalibTab = tab;
        for (int board = -1; board <= kAn; ++board) {
            SCType = board;
            EXPECT_EQ(DiagramKind(-1), tab == kTabLc ? 1 : 0);
        }
    }
    SCType = kAn;
    EXPECT_EQ(DiagramKind(0), 0);
    SCType = -1;
    EXPECT_EQ(DiagramKind(0), 0);
}

TEST_F(ConnectionTables, LabelThePinsOfEachDrawing)
{
    const std::map<int, std::map<int, std::string>> labels = {
        {2, {{2, "3 - SIG"}, {3, "4 + SIG"}}},
        {3, {{2, "3 - SIG"}, {3, "4 + SIG"}}},
        {8, {{2, "3 - SIG"}, {3, "4 + SIG"}}},
        {5, {{0, "1 SIG HI"}, {2, "3 SIG LO"}}},
        {6, {{2, "3 SIG LO"}, {3, "4 SIG HI"}}},
        {7, {{2, "3 SIG LO"}, {3, "4 SIG HI"}}},
        {4, {{0, "1 - EXC"}, {2, "3 - SIG"}, {3, "4 + SIG"}}},
        {9, {{0, "1 - EXC"}, {1, "2 -SENS"}, {2, "3 - SIG"}, {3, "4 + SIG"}, {4, "5 + EXC"}, {5, "6 +SENS"}}},
        {10, {{0, "1 - EXC"}, {1, "2 + EXC"}, {2, "3 - SIG"}, {3, "4 + SIG"}}},
    };
    for (int kind = -1; kind <= 11; ++kind)
        for (int place = -1; place <= 6; ++place) {
            std::string expected;
            if (labels.contains(kind) && labels.at(kind).contains(place))
                expected = labels.at(kind).at(place);
            EXPECT_EQ(PinLabel(kind, place), expected) << kind << " " << place;
        }
}

TEST_F(ConnectionTables, NameTheCableOfEachAc3Row)
{
    const Cable two = {"2", "Voltage"};
    const Cable four = {"4", "Voltage"};
    const Cable current = {"2", "Current"};
    const Cable cables[] = {two, four, four, four, {}, current, current, current, current, four, {}};
    for (int row = 0; row < 11; ++row)
        EXPECT_EQ(Ac3Cable(row), cables[row]) << row;
    EXPECT_EQ(Ac3Cable(-1), Cable{});
    EXPECT_EQ(Ac3Cable(11), Cable{});
}
