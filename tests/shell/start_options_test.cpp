#include "shell/start_options.h"

#include "platform/fault.h"
#include "platform/safe_file.h"
#include "session/state.h"
#include "support/station.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>

#include <string>

using namespace ombrix;
using testing::HasSubstr;

namespace {

StartOptions Read(const QStringList &options)
{
    return ReadStartOptions(QStringList("ombrix") + options);
}

}  // namespace

TEST(StartOptions, AreNoneWhenNoneAreGiven)
{
    const StartOptions options = Read({});
    EXPECT_FALSE(options.help || options.version || options.simulate);
    EXPECT_EQ(options.station + options.trace + options.trouble, "");
}

TEST(StartOptions, AreTakenInAnyOrderAndTheirPathsFromTheCurrentFolder)
{
    const std::string here = QDir::currentPath().toStdString();
    QDir().mkpath("bench 1");
    const StartOptions options = Read({"--trace", "said.txt", "--simulate", "--station=bench 1"});
    EXPECT_EQ(options.trouble, "");
    EXPECT_TRUE(options.simulate);
    EXPECT_EQ(options.station, here + "/bench 1");
    EXPECT_EQ(options.trace, here + "/said.txt");
    EXPECT_EQ(Read({"--station", "bench 1/"}).station, here + "/bench 1");
    EXPECT_TRUE(Read({"-h"}).help);
    EXPECT_TRUE(Read({"--help"}).help);
    EXPECT_TRUE(Read({"-v"}).version);
    EXPECT_TRUE(Read({"--version"}).version);
}

TEST(StartOptions, TellWhatIsWrongWithThem)
{
    ASSERT_EQ(WriteFile("a file", ""), "");
    const std::pair<QStringList, std::string> rows[] = {
        {{"--simulator"}, "Unknown option 'simulator'. ombrix --help lists the options."},
        {{"--simulate=yes"}, "Unexpected value after '--simulate'. ombrix --help lists the options."},
        {{"--station"}, "Missing value after '--station'. ombrix --help lists the options."},
        {{"DC"}, "'DC' is too much. ombrix --help lists the options."},
        {{"--station", "gone"}, "the station can't work in 'gone': there is no such folder"},
        {{"--station", "a file"}, "the station can't work in 'a file': it is no folder"},
        {{"--station", ""}, "the station can't work in '': no folder is named"},
        {{"--trace", ""}, "no file is named for the trace"},
        {{"--trace", "here/Ombrix.trace"}, "Ombrix.trace is the station's own: name another file for the trace"},
        {{"--trace", "Ombrix.trace.old"}, "Ombrix.trace.old is the station's own: name another file for the trace"},
    };
    for (const auto &[options, trouble] : rows)
        EXPECT_EQ(Read(options).trouble, trouble);
}

TEST(StartOptions, BeginInTheSimulatorWhereADoubleClickLeadsToTheLinesAgain)
{
    test::Station station;
    BeginAsTold({});
    EXPECT_TRUE(HardwareMode);
    BeginAsTold(Read({"--simulate"}));
    EXPECT_FALSE(HardwareMode);
    EXPECT_TRUE(test::ScriptedOperator::Sees("lblSim"));
    station.person.DoubleClicks("lblCalOut");
    ASSERT_TRUE(station.person.Runs());
    EXPECT_TRUE(HardwareMode);
}

TEST(StartOptions, BeginInNoSimulatorBehindTheEndOfTheProgram)
{
    const test::Station station;
    CloseHandlers();
    BeginAsTold(Read({"--simulate"}));
    EXPECT_TRUE(HardwareMode);
    CloseHandlers(false);
}

TEST(StartOptions, AreAllInTheHelp)
{
    for (const char *option : {"--simulate", "--station DIR", "--trace FILE", "--version", "--help"})
        EXPECT_THAT(StartUsage(), HasSubstr(option));
}
