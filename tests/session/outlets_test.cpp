#include "session/outlets.h"

#include <gtest/gtest.h>

#include <string>

using namespace ombrix;

TEST(WaitNote, ShowsTheWaitInsideThenTheOneAroundIt)
{
    std::string shown;
    outlets.showWait = [&shown](const std::string &text) { shown += text + "."; };
    {
        const WaitNote outer("outer");
        {
            const WaitNote inner("inner");
        }
        shown += "between.";
    }
    EXPECT_EQ(shown, "outer.inner.outer.between..");
    outlets = Outlets();
}

TEST(WaitNote, GoesWhateverEndsTheWait)
{
    std::string shown;
    outlets.showWait = [&shown](const std::string &text) { shown = text; };
    try {
        const WaitNote note("waiting");
        throw 1;
    } catch (int) {
    }
    EXPECT_EQ(shown, "");
    outlets = Outlets();
}

TEST(Outlets, DoNothingByDefault)
{
    const Outlets none;
    none.showOutput("0.0 V");
    none.showDangerFlag(Danger::Danger);
    none.promptOperator("text", "title");
    none.warnOperator("text", "title");
    none.showSwitchText("0");
    none.showSwitch(true);
    none.showWait("text");
    none.showRemark("text");
    none.keepRemark("text");
}
