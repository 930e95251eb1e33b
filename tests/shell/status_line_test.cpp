#include "shell/status_line.h"

#include "shell/shell_fixture.h"

#include <QDir>
#include <QFile>

using namespace ombrix;
using namespace ombrix::test;

namespace {

class StatusLine : public ShellTest
{
protected:
    void Passes(int ms)
    {
        person.Waits(ms);
        ASSERT_TRUE(person.Runs());
    }
};

}  // namespace

TEST_F(StatusLine, SaysAtOnceWhatIsWaitedForAndTheSecondsFromOneOn)
{
    outlets.showWait("Meter: waiting for reply");
    EXPECT_EQ(Text("lblWait"), "Meter: waiting for reply");
    EXPECT_TRUE(Sees("shpBusy"));
    Passes(999);
    EXPECT_EQ(Text("lblWait"), "Meter: waiting for reply");
    Passes(1);
    EXPECT_EQ(Text("lblWait"), "Meter: waiting for reply  1 s");
    Passes(11'100);
    EXPECT_EQ(Text("lblWait"), "Meter: waiting for reply  12 s");
}

TEST_F(StatusLine, GoesBlankWithinASecondOfTheEnd)
{
    outlets.showWait("Meter restarts");
    Passes(300);
    outlets.showWait("");
    EXPECT_EQ(Text("lblWait"), "Meter restarts") << "waits that follow each other do not flicker";
    Passes(1000);
    EXPECT_EQ(Text("lblWait"), "");
    EXPECT_FALSE(Sees("shpBusy"));
}

TEST_F(StatusLine, EachWaitCountsFromItsOwnStart)
{
    outlets.showWait("Meter: waiting for reply");
    Passes(2500);
    outlets.showWait("");
    outlets.showWait("Meter: waiting for reply");
    EXPECT_EQ(Text("lblWait"), "Meter: waiting for reply");
}

TEST_F(StatusLine, AWaitThatStandsAroundOthersCountsThrough)
{
    const WaitNote restart("Meter restarts");
    Passes(3000);
    for (int i = 0; i < 2; ++i) {
        const WaitNote reply("Meter: waiting for reply");
        Passes(2600);
        EXPECT_EQ(Text("lblWait"), "Meter: waiting for reply  2 s");
    }
    EXPECT_EQ(Text("lblWait"), "Meter restarts  8 s");
}

TEST_F(StatusLine, SaysHowFarTheWorkIs)
{
    EXPECT_FALSE(Sees("lblProgress"));
    ShowProgress("range 4 of 11");
    EXPECT_TRUE(Sees("lblProgress"));
    EXPECT_EQ(Text("lblProgress"), "range 4 of 11");
    ShowProgress("");
    EXPECT_FALSE(Sees("lblProgress"));
}

TEST_F(StatusLine, LooksOnceASecondAtMostAndNotAtAllWhenNothingIsWaitedFor)
{
    for (int i = 0; i < 50; i++) {
        outlets.showWait("Meter: waiting for reply");
        outlets.showWait("");
    }
    outlets.showWait("Meter: waiting for reply");
    int wakeUps = 0;
    const Deadline end(10'000);
    while (!end.Passed()) {
        PumpEvents(end.LeftMs());
        ++wakeUps;
    }
    EXPECT_LE(wakeUps, 11);
    outlets.showWait("");
    PumpEvents(1000);
    const std::int64_t before = clock.Elapsed();
    PumpEvents(60'000);
    EXPECT_EQ(clock.Elapsed() - before, 60'000) << "nothing wakes an idle station";
}

TEST_F(StatusLine, ARemarkStaysUntilTheNext)
{
    outlets.showRemark("GND: the meter fell silent");
    outlets.showWait("Meter restarts");
    outlets.showWait("");
    Passes(5000);
    EXPECT_EQ(Text("lblRemark"), "GND: the meter fell silent");
    outlets.showRemark("");
    EXPECT_EQ(Text("lblRemark"), "");
}

TEST_F(StatusLine, AKeptRemarkStandsBesideLaterOnesInFull)
{
    const std::string kept = "Ombrix.ini is in use by another station. Settings of this session won't be kept.";
    outlets.keepRemark(kept);
    outlets.showWait("Calibrator: waiting for OPER");
    outlets.showRemark("REF (200 mV): the meter fell silent, its last reading stands");
    Passes(10);
    EXPECT_EQ(Text("lblKeptRemark"), kept);
    EXPECT_EQ(Text("lblRemark"), "REF (200 mV): the meter fell silent, its last reading stands");
    const QWidget *label = ScriptedOperator::Find("lblKeptRemark");
    EXPECT_GE(label->width(), label->sizeHint().width());
    outlets.keepRemark("");
    EXPECT_EQ(Text("lblKeptRemark"), "");
    EXPECT_EQ(Text("lblRemark"), "REF (200 mV): the meter fell silent, its last reading stands");
}

TEST_F(StatusLine, SettingsThatCannotBeReadAreTold)
{
    CloseStation();
    QFile::remove("Ombrix.ini");
    QDir().mkdir("Ombrix.ini");
    OpenWholeStation(Painted::No);
    EXPECT_EQ(Text("lblKeptRemark"), "Ombrix.ini can't be read. Settings of this session won't be kept.");
}

TEST_F(StatusLine, ALongRemarkDoesNotWidenTheWindow)
{
    const int before = ScriptedOperator::Find("frmOmbrix")->width();
    outlets.showRemark(std::string(2000, 'w'));
    outlets.keepRemark(std::string(2000, 'w'));
    Passes(10);
    EXPECT_EQ(ScriptedOperator::Find("frmOmbrix")->width(), before);
}
