#include "procedures/page_kit.h"

#include "platform/clock.h"
#include "platform/widgets.h"
#include "session/state.h"
#include "support/virtual_clock.h"

#include <gtest/gtest.h>

#include <QFrame>
#include <QLabel>
#include <QPushButton>

#include <stdexcept>
#include <string>

namespace ombrix::test {
namespace {

class PageKit : public testing::Test
{
protected:
    VirtualClock clock;
    QFrame page;
    std::string log;

    void SetUp() override { InitSessionState(); }
    void TearDown() override
    {
        RequestShutdown(false);
        InitSessionState();
    }

    void Works() { log += "work "; }
    void Leaves() { log += Abort ? "leave stopped" : "leave"; }
};

TEST_F(PageKit, LeavesAfterTheWork)
{
    WithExit([this] { Works(); }, [this] { Leaves(); });
    EXPECT_EQ(log, "work leave");
}

TEST_F(PageKit, LeavesAsStoppedAfterAFaultAndTellsIt)
{
    const auto fails = [this] {
        Works();
        throw std::runtime_error("a fault");
    };
    EXPECT_THROW(WithExit(fails, [this] { Leaves(); }), std::runtime_error);
    EXPECT_EQ(log, "work leave stopped");
}

TEST_F(PageKit, LeavesNothingAtTheEndOfTheProgram)
{
    const auto quits = [this] {
        Works();
        RequestShutdown();
        PumpEvents(kForever);
    };
    EXPECT_THROW(WithExit(quits, [this] { Leaves(); }), Shutdown);
    EXPECT_EQ(log, "work ");
}

TEST_F(PageKit, WaitsForTheOperatorUntilTheFlag)
{
    bool clicked = false;
    CallAfter(3'600'000, [&clicked] { clicked = true; });
    WaitForOperator([&clicked] { return clicked; });
    EXPECT_EQ(clock.Elapsed(), 3'600'000);
}

TEST_F(PageKit, WaitsForTheOperatorNoLongerThanUntilAStop)
{
    CallAfter(5000, [] { Abort = true; });
    WaitForOperator([] { return false; });
    EXPECT_EQ(clock.Elapsed(), 5000);
}

TEST_F(PageKit, WaitsForNobodyWhenTheFlagStands)
{
    WaitForOperator([] { return true; });
    EXPECT_EQ(clock.Elapsed(), 0);
}

TEST_F(PageKit, InstructionStandsInItsShapeAndGoesWithItsText)
{
    QFrame *instruction = Instruction(&page, 3, 2);
    page.show();
    ShowInstruction(instruction, "one\r\ntwo", Red());
    const auto *label = page.findChild<QLabel *>("lblInst(3)");
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(instruction->objectName(), "shpInst(3)");
    EXPECT_EQ(label->text(), "one\ntwo");
    EXPECT_EQ(instruction->palette().color(QPalette::Window), Red());
    EXPECT_TRUE(label->isVisible());
    ShowInstruction(instruction, "", Red());
    EXPECT_FALSE(label->isVisible());
}

TEST_F(PageKit, FocusIsOnNoButtonOnceDropped)
{
    QPushButton *button = Button(&page, "cmdOne", "One", nullptr);
    page.show();
    EnableAndFocus(button);
    EXPECT_EQ(page.focusWidget(), button);
    DropFocus(&page);
    EXPECT_NE(page.focusWidget(), button);
}

}  // namespace
}  // namespace ombrix::test
