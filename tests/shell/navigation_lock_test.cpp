#include "shell/navigation_lock.h"

#include "session/procedure.h"

#include "shell/steps_fixture.h"

#include <stdexcept>

using namespace ombrix;
using namespace ombrix::test;

namespace {

class Lock : public Steps
{
};

}  // namespace

TEST_F(Lock, NavigationIsLockedWhileAnEntryTalks)
{
    EstablishSimulated();
    RegisterProbe(Step::Range2V, [] { DelayAlways(1000); });
    person.Clicks(StepButton(4)).Waits(500).Does([] {
        EXPECT_FALSE(IsEnabled(StepButton(0)));
        EXPECT_FALSE(IsEnabled("cmdSetup"));
        EXPECT_FALSE(HasFocus("cmdQuit"));
    });
    ASSERT_TRUE(person.Runs());
    EXPECT_TRUE(IsEnabled(StepButton(0)));
    EXPECT_TRUE(IsEnabled("cmdSetup"));
    EXPECT_TRUE(HasFocus(StepButton(4))) << "a page that takes no focus leaves it on the step";
}

TEST_F(Lock, ButtonsThatAreFilledMeanwhileStayOffUntilItsEnd)
{
    EstablishSimulated();
    bool prepared = false;
    RegisterTab(kTabLc, {.prepare = [&] {
                    prepared = true;
                    EXPECT_EQ(Text(StepButton(2)), "GND (.5 V)");
                    EXPECT_FALSE(IsEnabled(StepButton(2)));
                }});
    ClickTab(kTabLc);
    EXPECT_TRUE(prepared);
    EXPECT_TRUE(IsEnabled(StepButton(2)));
}

TEST_F(Lock, APageThatLocksNavigationItselfKeepsItLocked)
{
    EstablishSimulated();
    RegisterProbe(Step::Range2V, [] { SetNavigation(Navigation::Held); });
    Click(StepButton(4));
    EXPECT_FALSE(IsEnabled(StepButton(0)));
    EXPECT_FALSE(IsEnabled("cmdSetup"));
}

TEST_F(Lock, AFaultInAnEntryGivesNavigationBackAndIsTold)
{
    EstablishSimulated();
    RegisterProbe(Step::Range2V, [] { throw std::runtime_error("Input/output error"); });
    Click(StepButton(4));
    EXPECT_TRUE(IsEnabled(StepButton(0)));
    EXPECT_EQ(Text("lblRemark"), "Input/output error");
}
