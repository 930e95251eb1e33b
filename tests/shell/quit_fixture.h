// What is written on both lines from the click on Quit on.
#pragma once

#include "links/calibrator.h"
#include "links/calibrator_line.h"
#include "links/meter_protocol.h"
#include "model/ini_store.h"
#include "model/nominals.h"
#include "shell/main_window.h"
#include "shell/quit.h"
#include "shell/shell_fixture.h"

#include <QMainWindow>

namespace ombrix::test {

using testing::ElementsAre;
using testing::IsEmpty;

inline constexpr char kStandby[] = "OUT 0 V, 0 Hz ; STBY ; *WAI";
inline constexpr char kLocal[] = "LOCAL";
inline constexpr char kDisplaySetup1[] = "*1W305000000100001";

class QuitProcedure : public ShellTest
{
protected:
    /// From the click on Quit on: what is written is remembered, and when.
    ScriptedOperator &ClicksQuit()
    {
        return person.Does([this] { Forget(); }).Clicks("cmdQuit");
    }

    ScriptedOperator &SignalComes()
    {
        return person.Does([this] {
            Forget();
            Quit(QuitBy::Signal);
        });
    }

    void ExpectLastWords()
    {
        EXPECT_THAT(ToCalibrator(), ElementsAre(kStandby, kLocal));
        EXPECT_THAT(TimesOf(kStandby), ElementsAre(testing::Le(1200)));
        EXPECT_FALSE(bench->CalibratorNow().operating);
        EXPECT_FALSE(comCAL.IsOpen());
        EXPECT_FALSE(comDPM.IsOpen());
        EXPECT_FALSE(frmOmbrix->isVisible());
        EXPECT_LT(clock.Elapsed(), 4000);
        EXPECT_TRUE(Quitting);
    }

    /// A page's procedure: `body` runs at the click on position 4 of a DC meter.
    void Procedure(std::function<void()> body) { RegisterProbe(Step::Range2V, std::move(body)); }

    static void ExpectSaved()
    {
        LoadIni();
        EXPECT_EQ(IniGet("Gains", "DC.19"), "1.5000");
        EXPECT_EQ(IniGet("CalibValues", "DC.19"), "1234");
    }

    /// Something to save that isn't saved yet.
    static void Learn()
    {
        SetNominalSlopeOf(kDc, 25, 1.5f);
        SetNominalWordOf(kDc, 25, "1234");
    }
};

}  // namespace ombrix::test
