#include "shell/summary_window.h"

#include "session/outlets.h"
#include "shell/main_window.h"
#include "support/station.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QMainWindow>
#include <QPlainTextEdit>

namespace ombrix::test {
namespace {

class SummaryWindow : public testing::Test
{
protected:
    ~SummaryWindow() override { SetSummarySource(nullptr); }

    static std::string Shown()
    {
        return qobject_cast<QPlainTextEdit *>(ScriptedOperator::Find("txtSummary"))->toPlainText().toStdString();
    }

    Station station;
    ScriptedOperator &person = station.person;
};

TEST_F(SummaryWindow, IsNotOfferedWithoutASource)
{
    SetSummarySource({});
    EXPECT_FALSE(ScriptedOperator::Sees("cmdSummary"));
    SetSummarySource([] { return std::string("text"); });
    EXPECT_TRUE(ScriptedOperator::IsEnabled("cmdSummary"));
}

TEST_F(SummaryWindow, ShowsWhatStandsWhenItIsOpenedAndCanBeCopied)
{
    std::string text = "GND  accepted\r\n2 V  error 1";
    SetSummarySource([&] { return text; });
    person.Clicks("cmdSummary").WaitsFor("cmdSummaryCopy").Clicks("cmdSummaryCopy");
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(QApplication::clipboard()->text(), "GND  accepted\n2 V  error 1");
    text = "later";
    person.Clicks("cmdSummary").WaitsUntil("it is told anew", [] { return Shown() == "later"; });
    person.Clicks("cmdSummaryClose");
    ASSERT_TRUE(person.Runs());
    EXPECT_FALSE(ScriptedOperator::Sees("dlgSummary"));
}

TEST_F(SummaryWindow, OpensWhileABoxIsUp)
{
    SetSummarySource([] { return std::string("text"); });
    person.Does([] { outlets.promptOperator("Remove any input signal from the meter", "Remove Input"); })
        .WaitsUntil("the box is up", [] { return ScriptedOperator::Box() != nullptr; })
        .Clicks("cmdSummary")
        .Clicks("cmdSummaryClose")
        .AnswersBox("OK");
    ASSERT_TRUE(person.Runs()) << person.Trouble();
}

TEST_F(SummaryWindow, LeavesTheKeysWithTheWork)
{
    SetSummarySource([] { return std::string("text"); });
    person.WaitsUntil("Establish has the focus", [] { return ScriptedOperator::HasFocus("cmdEstablish"); })
        .Clicks("cmdSummary")
        .Clicks("cmdSummaryClose")
        .Does([] { frmOmbrix->activateWindow(); })  // as a desktop does when the window in front has gone
        .WaitsUntil("Establish has it again", [] { return ScriptedOperator::HasFocus("cmdEstablish"); });
    EXPECT_TRUE(person.Runs()) << person.Trouble();
}

}  // namespace
}  // namespace ombrix::test
