#include "shell/operator_boxes.h"

#include "session/procedure.h"
#include "shell/shell_fixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>

using namespace ombrix;
using namespace ombrix::test;

namespace {

class OperatorBoxes : public ShellTest
{
protected:
    static QMessageBox *Box() { return qobject_cast<QMessageBox *>(QApplication::activeModalWidget()); }
};

}  // namespace

TEST_F(OperatorBoxes, APromptCarriesAnExclamationMarkAndWaitsForOk)
{
    bool returned = false;
    person.Does([&] {
        RunProcedure([&] {
            outlets.promptOperator("Remove any input signal from the meter", "Remove Input");
            returned = true;
        });
    });
    person.WaitsUntil("the box is up", [] { return Box() != nullptr; }).Waits(3'600'000).Does([&] {
        EXPECT_FALSE(returned);
        EXPECT_EQ(Box()->icon(), QMessageBox::Warning);
        EXPECT_EQ(ScriptedOperator::BoxText(), "Remove any input signal from the meter");
        EXPECT_EQ(ScriptedOperator::BoxTitle(), "Remove Input");
        EXPECT_EQ(Box()->buttons().size(), 1);
        EXPECT_EQ(Box()->textFormat(), Qt::PlainText);
        Box()->button(QMessageBox::Ok)->click();
    });
    person.Within(4000);
    ASSERT_TRUE(person.Runs());
    EXPECT_TRUE(returned);
}

TEST_F(OperatorBoxes, EscAtAPromptStopsTheProcedureInsteadOfConfirming)
{
    bool stopped = false;
    person.Does([&] {
        RunProcedure([&] {
            outlets.promptOperator("Apply an accurate input signal of 660 V to the Meter", "Apply Input Signal");
            stopped = Abort;
        });
    });
    person.WaitsUntil("the box is up", [] { return Box() != nullptr; }).Presses(Qt::Key_Escape);
    ASSERT_TRUE(person.Runs());
    EXPECT_TRUE(stopped);
    EXPECT_EQ(Box(), nullptr);
}

TEST_F(OperatorBoxes, AWarningCarriesAStopSign)
{
    person.Does([] { RunProcedure([] { outlets.warnOperator("Too many INI Keys", "Ombrix.ini Problem"); }); });
    person.WaitsUntil("the box is up", [] { return Box() != nullptr; }).Does([] {
        EXPECT_EQ(Box()->icon(), QMessageBox::Critical);
        EXPECT_EQ(ScriptedOperator::BoxTitle(), "Ombrix.ini Problem");
        Box()->button(QMessageBox::Ok)->click();
    });
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(Box(), nullptr);
}

TEST_F(OperatorBoxes, LineEndsAreLineBreaks)
{
    person.onBox = [](const std::string &, const std::string &text) { EXPECT_EQ(text, "one\ntwo"); };
    person.Does([] { RunProcedure([] { outlets.promptOperator("one\r\ntwo", "Title"); }); });
    person.Does([] { EXPECT_EQ(Box(), nullptr); });
    ASSERT_TRUE(person.Runs());
}

TEST_F(OperatorBoxes, SilencedNoBoxComesUp)
{
    SilenceBoxes(true);
    bool returned = false;
    RunProcedure([&] {
        outlets.promptOperator("text", "title");
        returned = true;
    });
    SilenceBoxes(false);
    EXPECT_TRUE(returned);
}
