#include "shell/operator_boxes.h"

#include "model/range_names.h"
#include "model/range_tables.h"
#include "session/procedure.h"
#include "session/state.h"
#include "shell/main_window.h"
#include "shell/shell_fixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMainWindow>
#include <QMessageBox>
#include <QRegularExpression>
#include <QtTest/QTest>

#include <functional>
#include <set>
#include <string>

using namespace ombrix;
using namespace ombrix::test;

namespace {

class OperatorBoxes : public ShellTest
{
protected:
    static QMessageBox *Box() { return ScriptedOperator::Box(); }
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

TEST_F(OperatorBoxes, EscAtAPromptSaysNotDoneAndStopsNothing)
{
    bool done = true;
    bool stopped = true;
    person.Does([&] {
        RunProcedure([&] {
            done = outlets.promptOperator("Apply an accurate input signal of 660 V to the Meter", "Apply Input Signal");
            stopped = Abort;
        });
    });
    person.WaitsUntil("the box is up", [] { return Box() != nullptr; }).Presses(Qt::Key_Escape);
    ASSERT_TRUE(person.Runs());
    EXPECT_FALSE(done);
    EXPECT_FALSE(stopped) << "what follows from it is for those who asked";
    EXPECT_EQ(Box(), nullptr);
}

TEST_F(OperatorBoxes, ThePromptsOwnCloseBoxSaysNotDone)
{
    bool done = true;
    person.Does([&] { done = outlets.promptOperator("Remove any input signal from the meter", "Remove Input"); });
    person.WaitsUntil("the box is up", [] { return Box() != nullptr; }).Does([] { Box()->close(); });
    ASSERT_TRUE(person.Runs());
    EXPECT_FALSE(done);
}

TEST_F(OperatorBoxes, APromptShowsItsValueLargeAndSaysWhatEscDoes)
{
    const auto below = [this](const std::string &text) {
        QString shown;
        person.Does([text] { outlets.promptOperator(text, "Apply Input Signal"); })
            .WaitsUntil("the box is up", [] { return Box() != nullptr; })
            .Does([&shown] { shown = Box()->informativeText(); })
            .AnswersBox("OK");
        EXPECT_TRUE(person.Runs());
        EXPECT_TRUE(shown.contains("Esc: not done"));
        static const QRegularExpression value("font-size:30pt[^>]*>([^<]*)<");
        return value.match(shown).captured(1).toStdString();
    };
    const auto large = [&below](const std::string &value) {
        return below("Apply an accurate input signal of " + value + " to the Meter");
    };
    for (const char *value :
         {"660 V", "200 mV", "-75.6 mV", "17.475 mV", "5 A", "2 mV, 300 Hz", "100 Ohms", "1356.4 F"})
        EXPECT_EQ(large(value), value);
    EXPECT_EQ(large("345.28 OHM"), "345.28 Ohm");
    EXPECT_EQ(large("2 KOHM"), "2 kOhm");
    EXPECT_EQ(large("0 CEL"), "0 °C");
    EXPECT_EQ(large("-32.5 FAR"), "-32.5 °F");
    std::set<std::string> values;
    for (SCType = kDc; SCType <= kRtd; SCType++) {
        CalibTab = TabOfBoard(SCType);
        for (int position = 0; position < kPositions; position++)
            values.insert(CalValueAtPosition(position));
    }
    values.erase("");
    EXPECT_GT(values.size(), 20U);
    for (const std::string &value : values)
        EXPECT_EQ(large(value), ValueAsWritten(value));
    EXPECT_EQ(below("Remove any input signal from the meter"), "");
}

TEST_F(OperatorBoxes, AHandThatPressedEnterForSomethingElseConfirmsNothing)
{
    bool done = false;
    person.Does([&] { done = outlets.promptOperator("Remove any input signal from the meter", "Remove Input"); })
        .WaitsUntil("the box is up", [] { return Box() != nullptr; })
        .PressesAtOnce(Qt::Key_Return)
        .Does([] { EXPECT_NE(Box(), nullptr); })
        .Presses(Qt::Key_Return)
        .Does([] { EXPECT_EQ(Box(), nullptr); });
    ASSERT_TRUE(person.Runs());
    EXPECT_TRUE(done);
}

TEST_F(OperatorBoxes, AQuestionIsAnsweredYesByOkAlone)
{
    const auto answer = [this](const std::function<void()> &tell) {
        bool yes = false;
        person.Does([&yes] { yes = outlets.askOperator("This meter will be initialized.", "Extended Meter"); });
        person.WaitsUntil("the box is up", [] { return Box() != nullptr; });
        tell();
        EXPECT_TRUE(person.Runs());
        return yes;
    };
    EXPECT_TRUE(answer([this] { person.AnswersBox("OK"); }));
    EXPECT_FALSE(answer([this] { person.AnswersBox("Cancel"); }));
    EXPECT_FALSE(answer([this] { person.Presses(Qt::Key_Escape); }));
    EXPECT_FALSE(answer([this] { person.Does([] { Box()->close(); }); }));
    EXPECT_FALSE(answer([this] { person.Does(CloseBoxes); }));
}

TEST_F(OperatorBoxes, TheWindowBehindABoxTakesNoInputButQuit)
{
    ScriptedOperator::Find("optAutomatic")->setFocus();
    person.Does([] { outlets.promptOperator("Remove any input signal from the meter", "Remove Input"); })
        .WaitsUntil("the box is up", [] { return Box() != nullptr; })
        .Clicks("optManual")
        .ClicksTab(kTabLc)
        .Does([] {
            EXPECT_FALSE(IsOn("optManual"));
            EXPECT_EQ(Strip()->currentIndex(), kTabDc);
            frmOmbrix->activateWindow();
        })
        .PressesAtOnce(Qt::Key_Down)
        .Does([] {
            EXPECT_FALSE(IsOn("optManual"));
            EXPECT_NE(Box(), nullptr);
        })
        .Clicks("cmdQuit");
    ASSERT_TRUE(person.Runs());
    EXPECT_TRUE(Quitting);
    EXPECT_EQ(Box(), nullptr);
}

TEST_F(OperatorBoxes, TheCloseBoxOfTheWindowAndCtrlQAreOpenWhileABoxIsUp)
{
    for (const bool byKey : {false, true}) {
        CloseStation();
        RequestShutdown(false);
        OpenWholeStation();
        bool done = true;
        person.Does([&] { done = outlets.promptOperator("Remove any input signal from the meter", "Remove Input"); })
            .WaitsUntil("the box is up", [] { return Box() != nullptr; })
            .Does([byKey] {
                // The toolkit drops the desktop's wish to close a window that stands behind a modal one.
                EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
                if (byKey)
                    QTest::keyClick(Box()->button(QMessageBox::Ok), Qt::Key_Q, Qt::ControlModifier);
                else
                    frmOmbrix->close();
            });
        ASSERT_TRUE(person.Runs());
        EXPECT_TRUE(Quitting) << byKey;
        EXPECT_EQ(Box(), nullptr) << byKey;
    }
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
