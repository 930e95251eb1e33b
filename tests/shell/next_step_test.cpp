#include "shell/steps_fixture.h"

using namespace ombrix;
using namespace ombrix::test;

namespace {

class NextSteps : public Steps
{
};

}  // namespace

TEST_F(NextSteps, OpensTheNextAllowedOne)
{
    EstablishSimulated();
    ProbeAll();
    Click(StepButton(0));
    RegisterProbe(
        StepIds[1], [] {}, [](int) { return false; });
    NextStep();
    EXPECT_EQ(CurrentStepButton, 2);
    EXPECT_EQ(opened, (std::vector{0, 2}));
}

TEST_F(NextSteps, WrapsFromTheLastCalibrationPositionToInitNvm)
{
    EstablishSimulated();
    ProbeAll();
    for (int board = kDc; board <= kRtd; board++) {
        Board(board);
        HighlightStep(StepButtonCount());
        NextStep();
        EXPECT_EQ(CurrentStepButton, 0) << BoardName(board);
        EXPECT_EQ(opened.back(), 0) << BoardName(board);
    }
}

TEST_F(NextSteps, WrapsToTheFirstAllowedOneAndStaysWhereNoneIs)
{
    EstablishSimulated();
    ProbeAll();
    bool allowed = true;
    RegisterProbe(
        StepIds[0], [] { FAIL() << "it isn't allowed"; }, [](int) { return false; });
    for (int position = 1; position <= StepButtonCount(); position++)
        pageTables.steps[StepIds[position]].allowed = [&allowed](int) { return allowed; };
    HighlightStep(StepButtonCount());
    NextStep();
    EXPECT_EQ(CurrentStepButton, 1);
    EXPECT_EQ(opened, std::vector{StepIds[1]});
    allowed = false;
    NextStep();
    EXPECT_EQ(CurrentStepButton, 1);
    EXPECT_EQ(opened.size(), 1U);
}

TEST_F(NextSteps, AStepThatIsNotAllowedIsNotOpenedByItsPositionEither)
{
    EstablishSimulated();
    ProbeAll();
    bool allowed = false;
    RegisterProbe(
        StepIds[5], [this] { opened.push_back(StepIds[5]); }, [&allowed](int) { return allowed; });
    OpenStep(5);
    OpenStep(kPositions);
    EXPECT_EQ(CurrentStepButton, -1);
    allowed = true;
    OpenStep(5);
    EXPECT_EQ(CurrentStepButton, 5);
    EXPECT_EQ(opened.size(), 1U);
}

TEST_F(NextSteps, FromAServiceButtonDoesNothing)
{
    EstablishSimulated();
    ProbeAll();
    Click(StepButton(15));
    NextStep();
    EXPECT_EQ(CurrentStepButton, 15);
    EXPECT_EQ(opened.size(), 1U);
}

TEST_F(NextSteps, OnTheAnalogTabLooksAtNoButtonBehindTheLast)
{
    EstablishSimulated();
    ProbeAll();
    ClickTab(kTabAnaCal);
    Click(StepButton(16));
    NextStep();
    EXPECT_EQ(CurrentStepButton, 0);
    EXPECT_EQ(opened.back(), StepIds[0]);
    EXPECT_EQ(Text(StepButton(0)), "Init NVMEM");
}

TEST_F(NextSteps, AsksWhatIsAllowedAndNotWhichButtonsHappenToBeOn)
{
    EstablishSimulated();
    ProbeAll();
    Click(StepButton(3));
    SetNavigation(Navigation::Held);
    ASSERT_FALSE(IsEnabled(StepButton(4)));
    NextStep();
    EXPECT_EQ(CurrentStepButton, 4);
}

TEST_F(NextSteps, AStepIsOpenedByItsPositionToo)
{
    EstablishSimulated();
    ProbeAll();
    OpenStep(5);
    EXPECT_EQ(CurrentStepButton, 5);
    EXPECT_EQ(opened, std::vector{StepIds[5]});
}

TEST_F(NextSteps, FromInsideAProcedureFollowsItsEnd)
{
    EstablishSimulated();
    std::string order;
    RegisterProbe(StepIds[4], [&] {
        NextStep();
        order += "end ";
    });
    RegisterProbe(StepIds[5], [&] { order += "next"; });
    Click(StepButton(4));
    EXPECT_EQ(order, "end next");
    EXPECT_EQ(CurrentStepButton, 5);
}
