#include "shell/setup_options.h"

#include "model/ini_store.h"
#include "platform/safe_file.h"
#include "shell/main_window.h"
#include "shell/setup_page.h"
#include "shell/shell_fixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMainWindow>

#include <algorithm>
#include <iterator>
#include <random>
#include <set>

using namespace ombrix;
using namespace ombrix::test;

namespace {

const std::vector<std::string> kPortOptions = {"optAutomatic", "optManual",   "optCAL_COM1", "optCAL_COM2",
                                               "optDPM_COM1",  "optDPM_COM2", "optDPM_CAL"};

class SetupOptions : public ShellTest
{
protected:
    void Choose(const std::string &option) { qobject_cast<QAbstractButton *>(ScriptedOperator::Find(option))->click(); }

    // Puts the page on a wiring, as the settings would.
    void Wire(int calPort, int meterPort)
    {
        CalPort = calPort;
        MeterPort = meterPort;
        Automatic = calPort != 0;
        OpenSetup();
    }

    static std::string PortShown(const std::vector<std::string> &options)
    {
        std::string on;
        for (const std::string &option : options)
            on += IsOn(option) ? option + " " : "";
        return on;
    }

    // What the options show is what the session holds.
    static void ExpectOptionsFitSession()
    {
        EXPECT_EQ(PortShown({"optAutomatic", "optManual"}), Automatic ? "optAutomatic " : "optManual ");
        const std::string cal = CalPort == 0 ? "" : "optCAL_COM" + std::to_string(CalPort) + " ";
        EXPECT_EQ(PortShown({"optCAL_COM1", "optCAL_COM2"}), cal);
        const std::string meter = MeterPort == 0 ? "optDPM_CAL " : "optDPM_COM" + std::to_string(MeterPort) + " ";
        EXPECT_EQ(PortShown({"optDPM_COM1", "optDPM_COM2", "optDPM_CAL"}), meter);
    }
};

using Pair = std::pair<int, int>;
const std::set<Pair> kValidPairs = {{0, 1}, {0, 2}, {1, 0}, {1, 2}, {2, 0}, {2, 1}};

}  // namespace

TEST_F(SetupOptions, OptionsReachTheSixValidPairsAndNoOther)
{
    std::set<Pair> reached;
    for (const Pair &start : kValidPairs) {
        for (const std::string &option : kPortOptions) {
            Wire(start.first, start.second);
            ExpectOptionsFitSession();
            Choose(option);
            SCOPED_TRACE(option + " from " + std::to_string(start.first) + ", " + std::to_string(start.second));
            EXPECT_TRUE(kValidPairs.contains({CalPort, MeterPort})) << CalPort << ", " << MeterPort;
            EXPECT_EQ(Automatic, CalPort != 0);
            ExpectOptionsFitSession();
            reached.insert({CalPort, MeterPort});
        }
    }
    EXPECT_EQ(reached, kValidPairs);
}

TEST_F(SetupOptions, EachPairIsReachedFromTheFirstSightByClicksAlone)
{
    std::set<Pair> reached;
    std::mt19937 random(7);
    for (int click = 0; click < 200; click++) {
        Choose(kPortOptions[random() % kPortOptions.size()]);
        reached.insert({CalPort, MeterPort});
    }
    EXPECT_EQ(reached, kValidPairs);
}

struct Fit {
    Pair before;
    const char *click;
    Pair after;
};

class OptionTable : public SetupOptions, public testing::WithParamInterface<Fit>
{
};

TEST_P(OptionTable, MakesTheOthersFit)
{
    Wire(GetParam().before.first, GetParam().before.second);
    Choose(GetParam().click);
    EXPECT_EQ(Pair(CalPort, MeterPort), GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(Rows, OptionTable,
                         testing::Values(Fit{{0, 1}, "optAutomatic", {2, 1}}, Fit{{0, 2}, "optAutomatic", {1, 2}},
                                         Fit{{1, 2}, "optManual", {0, 2}}, Fit{{2, 0}, "optManual", {0, 1}},
                                         Fit{{0, 1}, "optCAL_COM1", {1, 2}}, Fit{{2, 1}, "optCAL_COM1", {1, 2}},
                                         Fit{{2, 0}, "optCAL_COM1", {1, 0}}, Fit{{0, 2}, "optCAL_COM2", {2, 1}},
                                         Fit{{1, 2}, "optCAL_COM2", {2, 1}}, Fit{{1, 0}, "optCAL_COM2", {2, 0}},
                                         Fit{{0, 2}, "optDPM_CAL", {1, 0}}, Fit{{2, 1}, "optDPM_CAL", {2, 0}},
                                         Fit{{1, 2}, "optDPM_COM1", {2, 1}}, Fit{{2, 0}, "optDPM_COM1", {2, 1}},
                                         Fit{{2, 1}, "optDPM_COM2", {1, 2}}, Fit{{1, 0}, "optDPM_COM2", {1, 2}}));

TEST_F(SetupOptions, WithTheMeterOnTheCalibratorManualMovesItToCom1)
{
    Wire(2, 0);
    Click("optManual");
    EXPECT_EQ(MeterPort, 1);
    EXPECT_TRUE(IsOn("optDPM_COM1"));
    EXPECT_FALSE(IsOn("optCAL_COM1"));
    EXPECT_FALSE(IsOn("optCAL_COM2"));
}

TEST_F(SetupOptions, MutedOptionsSayNothing)
{
    const ScopedFlag muted(OptionEventsMuted);
    Choose("optManual");
    Choose("optSwNo");
    EXPECT_TRUE(Automatic);
    EXPECT_TRUE(UseSwitch);
}

TEST_F(SetupOptions, AChangedChoiceCostsTheEstablishedSession)
{
    EstablishSimulated();
    Click("optManual");
    EXPECT_FALSE(Established);
    EXPECT_FALSE(Sees("lblStatus"));
    EXPECT_FALSE(Sees("shpStatus"));
    EXPECT_TRUE(IsEnabled("cmdEstablish"));
    EXPECT_TRUE(HasFocus("cmdEstablish"));
    EXPECT_FALSE(IsEnabled("cmdSetup"));
    EXPECT_FALSE(IsEnabled(StepButton(0)));
    EXPECT_FALSE(TabChangeAllowed);
}

TEST_F(SetupOptions, AnUnchangedChoiceKeepsTheSession)
{
    EstablishSimulated();
    Click("optAutomatic");
    Click("optCAL_COM2");
    Click("optDPM_COM1");
    EXPECT_TRUE(Established);
    EXPECT_TRUE(Sees("lblStatus"));
}

TEST_F(SetupOptions, TheSwitchChoiceKeepsTheSessionAndIsSaved)
{
    EstablishSimulated();
    EXPECT_TRUE(Sees("lblSwitch"));
    Click("optSwNo");
    EXPECT_FALSE(UseSwitch);
    EXPECT_TRUE(Established);
    EXPECT_FALSE(Sees("lblSwitch"));
    EXPECT_EQ(IniGet("Comms", "Switch"), "0");
    Click("optSwYes");
    EXPECT_TRUE(UseSwitch);
    EXPECT_TRUE(Sees("lblSwitch"));
    EXPECT_EQ(IniGet("Comms", "Switch"), "1");
}

TEST_F(SetupOptions, TheFocusStaysOnTheSwitchChoice)
{
    EstablishOnLines();
    Click("optSwNo");
    Click("optSwYes");
    EXPECT_TRUE(HasFocus("optSwYes"));
}

TEST_F(SetupOptions, BeforeEstablishTheSwitchChoiceIsNeitherSentNorSaved)
{
    Click("optSwNo");
    EXPECT_FALSE(UseSwitch);
    EXPECT_EQ(IniGet("Comms", "Switch"), "1");
    EXPECT_EQ(MeterOpened(), 0);
}

TEST_F(SetupOptions, AreInForceAsTheSettingsHaveThem)
{
    const struct {
        const char *comms;
        std::vector<std::string> on;
    } rows[] = {
        {"CALPort=0\nDPMPort=1\nSwitch=1", {"optManual", "optDPM_COM1", "optSwYes"}},
        {"CALPort=0\nDPMPort=2\nSwitch=0", {"optManual", "optDPM_COM2", "optSwNo"}},
        {"CALPort=1\nDPMPort=0\nSwitch=0", {"optAutomatic", "optCAL_COM1", "optDPM_CAL", "optSwNo"}},
        {"CALPort=1\nDPMPort=2\nSwitch=1", {"optAutomatic", "optCAL_COM1", "optDPM_COM2", "optSwYes"}},
        {"CALPort=2\nDPMPort=0\nSwitch=1", {"optAutomatic", "optCAL_COM2", "optDPM_CAL", "optSwYes"}},
        {"CALPort=2\nDPMPort=1\nSwitch=0", {"optAutomatic", "optCAL_COM2", "optDPM_COM1", "optSwNo"}},
    };
    for (const auto &row : rows) {
        CloseStation();
        WriteFile("Ombrix.ini", std::string("[Comms]\n") + row.comms + "\n");
        OpenWholeStation();
        std::vector<std::string> options = kPortOptions;
        options.insert(options.end(), {"optSwYes", "optSwNo"});
        std::vector<std::string> on;
        std::copy_if(options.begin(), options.end(), std::back_inserter(on),
                     [](const std::string &option) { return IsOn(option); });
        EXPECT_THAT(on, testing::UnorderedElementsAreArray(row.on)) << row.comms;
        EXPECT_FALSE(Sees("lblStatus"));
        EXPECT_EQ(frmOmbrix->focusWidget(), ScriptedOperator::Find("cmdEstablish"));
    }
}

TEST_F(SetupOptions, TabEntersEachGroupAtItsOptionInForce)
{
    const auto walk = [this](const std::string &from) {
        ScriptedOperator::Find(from)->setFocus();
        std::vector<std::string> stops;
        for (int stop = 0; stop < 4; ++stop) {
            Press(Qt::Key_Tab);
            stops.push_back(QApplication::focusWidget()->objectName().toStdString());
        }
        return stops;
    };
    using testing::ElementsAre;
    EXPECT_THAT(walk("optAutomatic"), ElementsAre("optCAL_COM2", "optDPM_COM1", "optSwYes", "cmdEstablish"));
    Click("optDPM_CAL");
    Click("optCAL_COM1");
    Click("optSwNo");
    EXPECT_THAT(walk("optAutomatic"), ElementsAre("optCAL_COM1", "optDPM_CAL", "optSwNo", "cmdEstablish"));
    Click("optManual");
    EXPECT_THAT(walk("optManual"), ElementsAre("optCAL_COM1", "optDPM_COM1", "optSwNo", "cmdEstablish"));
}
