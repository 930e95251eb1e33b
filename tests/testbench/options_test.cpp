#include "testbench/program/options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "testbench/boards.h"

namespace ombrix::bench {
namespace {

using testing::HasSubstr;

TEST(Options, HaveDefaults)
{
    const Options options = ParseOptions({});
    EXPECT_EQ(options.trouble, "");
    EXPECT_EQ(options.setup.board, board::kDc);
    EXPECT_EQ(options.setup.kind, kind::kDpm);
    EXPECT_EQ(options.setup.seed, 1u);
    EXPECT_FALSE(options.setup.xmtr);
    EXPECT_FALSE(options.setup.uut);
    EXPECT_TRUE(options.setup.calibrator);
    EXPECT_TRUE(options.setup.outputSwitch);
    EXPECT_FALSE(options.help);
}

TEST(Options, AreTakenInAnyOrder)
{
    const Options options =
        ParseOptions({"--seed", "7", "--uut", "--board", "AC2", "--xmtr", "--kind", "wtmtr", "--fault", "slow-reply",
                      "--fault", "garbage", "--delay", "900", "--station", "/tmp", "--no-switch"});
    EXPECT_EQ(options.trouble, "");
    EXPECT_EQ(options.setup.board, board::kAc2);
    EXPECT_EQ(options.setup.kind, kind::kWtMtr);
    EXPECT_EQ(options.setup.seed, 7u);
    EXPECT_TRUE(options.setup.xmtr);
    EXPECT_TRUE(options.setup.uut);
    EXPECT_FALSE(options.setup.outputSwitch);
    EXPECT_EQ(options.setup.operateDelayMs, 900);
    EXPECT_THAT(options.faults, testing::ElementsAre("slow-reply", "garbage"));
    EXPECT_EQ(options.station, "/tmp");
}

TEST(Options, NameBoardsInAnyCase)
{
    const std::pair<const char *, int> rows[] = {{"dc", board::kDc},   {"AC", board::kAc},     {"lc", board::kLc},
                                                 {"tc", board::kTc},   {"vf", board::kVf},     {"ac2", board::kAc2},
                                                 {"Ac3", board::kAc3}, {"temp", board::kTemp}, {"RTD", board::kRtd}};
    for (const auto &[name, board] : rows)
        EXPECT_EQ(ParseOptions({"--board", name}).setup.board, board) << name;
    EXPECT_EQ(ParseOptions({"--board", "vf"}).setup.kind, kind::kCtr);
    EXPECT_TRUE(ParseOptions({"--board", "an"}).setup.xmtr) << "a meter with an analog output";
    EXPECT_FALSE(ParseOptions({"--manual"}).setup.calibrator);
    EXPECT_TRUE(ParseOptions({"--help"}).help);
    EXPECT_TRUE(ParseOptions({"--version"}).version);
}

TEST(Options, TellWhatIsWrongWithThem)
{
    const std::pair<std::vector<std::string>, const char *> rows[] = {
        {{"--bord", "dc"}, "unknown option '--bord'"},
        {{"dc"}, "unknown option 'dc'"},
        {{"--board"}, "--board needs a value"},
        {{"--board", "xx"}, "'xx' is no value for --board"},
        {{"--kind", "watch"}, "'watch' is no value for --kind"},
        {{"--seed", "seven"}, "'seven' is no value for --seed"},
        {{"--seed", "7x"}, "'7x' is no value for --seed"},
        {{"--seed", "-1"}, "'-1' is no value for --seed"},
        {{"--delay", "-5"}, "'-5' is no value for --delay"},
        {{"--fault", "sulking"}, "'sulking' is no value for --fault"},
        {{"--station", ""}, "'' is no value for --station"},
        {{"--station", "/no/such/folder"}, "there is no such folder"},
        {{"--manual", "--uut"}, "--uut needs a calibrator"},
        {{"--board", "dc", "--kind", "ctr"}, "a ctr has the VF board"},
        {{"--kind", "dpm", "--board", "vf"}, "a ctr has the VF board"},
    };
    for (const auto &[arguments, trouble] : rows)
        EXPECT_THAT(ParseOptions(arguments).trouble, HasSubstr(trouble)) << arguments[0];
}

TEST(Options, AreAllInTheHelp)
{
    for (const char *option : {"--board", "--kind", "--xmtr", "--seed", "--uut", "--manual", "--no-switch", "--delay",
                               "--fault", "--station", "--version", "--help"})
        EXPECT_THAT(UsageText(), HasSubstr(option));
}

}  // namespace
}  // namespace ombrix::bench
