#include "widgets/fields.h"

#include "session/procedure.h"
#include "support/virtual_clock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QFrame>
#include <QLineEdit>
#include <QtTest/QTest>

#include <memory>
#include <string>
#include <vector>

namespace ombrix::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Fields : public testing::Test
{
protected:
    void Opens(KeyFilter filter)
    {
        field = Field(
            &page, "txtNVM(3)", std::move(filter),
            [this](const std::string &text, CommitBy by) {
                commits.push_back(text + (by == CommitBy::Enter ? " by Enter" : " by leaving"));
            },
            [this](const std::string &text) { edits.push_back(text); });
        other = new QLineEdit(&page);
        page.show();
        QApplication::setActiveWindow(&page);
        field->setFocus();
    }

    void Types(const char *keys) const { QTest::keyClicks(field, keys); }

    VirtualClock clock;
    QFrame page;
    QLineEdit *field = nullptr;
    QLineEdit *other = nullptr;
    std::vector<std::string> commits;
    std::vector<std::string> edits;
};

TEST_F(Fields, LetOnlyTheirOwnKeysIn)
{
    Opens(HexKeys());
    EXPECT_EQ(field->objectName(), "txtNVM(3)");
    Types("1g a-F.");
    EXPECT_EQ(field->text(), "1AF");
    EXPECT_THAT(edits, ElementsAre("1", "1A", "1AF"));
}

TEST_F(Fields, ASecondMinusOrPointIsRefused)
{
    Opens(NumberKeys());
    Types("-1.5.-7e");
    EXPECT_EQ(field->text(), "-1.57");
    field->selectAll();
    Types("-2");
    EXPECT_EQ(field->text(), "-2") << "what is replaced doesn't count";
}

TEST_F(Fields, AnyOfTakesTheCharactersAsTheyAre)
{
    Opens(AnyOf("01"));
    Types("0121");
    EXPECT_EQ(field->text(), "011");
}

TEST_F(Fields, PastedCharactersAreRefusedOneByOne)
{
    Opens(HexKeys());
    field->setMaxLength(4);
    QApplication::clipboard()->setText("0x12 ab cd\n");
    QTest::keyClick(field, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(field->text(), "012A");
    EXPECT_EQ(field->contextMenuPolicy(), Qt::NoContextMenu);
    EXPECT_FALSE(field->acceptDrops());
}

TEST_F(Fields, EnterCommitsAndLeavingThenDoesNotCommitAgain)
{
    Opens(HexKeys());
    Types("12");
    QTest::keyClick(field, Qt::Key_Return);
    other->setFocus();
    EXPECT_THAT(commits, ElementsAre("12 by Enter"));
}

TEST_F(Fields, LeavingCommitsWhatWasEditedOnce)
{
    Opens(HexKeys());
    other->setFocus();
    EXPECT_THAT(commits, IsEmpty()) << "nothing was edited";
    field->setFocus();
    Types("12");
    QTest::keyClick(field, Qt::Key_Backspace);
    QTest::keyClick(field, Qt::Key_Tab);
    EXPECT_FALSE(field->hasFocus());
    field->setFocus();
    other->setFocus();
    EXPECT_THAT(commits, ElementsAre("1 by leaving"));
}

TEST_F(Fields, AnotherWindowInFrontDoesNotLeaveThem)
{
    Opens(HexKeys());
    Types("12");
    QFrame window;
    window.show();
    QApplication::setActiveWindow(&window);
    ASSERT_FALSE(field->hasFocus());
    EXPECT_THAT(commits, IsEmpty());
}

TEST_F(Fields, AChangeByTheProgramIsSilent)
{
    Opens(HexKeys());
    Types("12");
    edits.clear();
    SetField(field, "not set");
    EXPECT_EQ(field->text(), "not set");
    other->setFocus();
    EXPECT_THAT(edits, IsEmpty());
    EXPECT_THAT(commits, IsEmpty()) << "what the operator had begun is gone";
}

TEST_F(Fields, NoKeyPassesWhileAProcedureRuns)
{
    Opens(HexKeys());
    Types("12");
    RunProcedure([this] {
        Types("34");
        QTest::keyClick(field, Qt::Key_Return);
        QTest::keyClick(field, Qt::Key_V, Qt::ControlModifier);
    });
    EXPECT_EQ(field->text(), "12");
    EXPECT_THAT(commits, IsEmpty());
}

TEST_F(Fields, ACommitWaitsForTheProcedureThatPutTheFieldOff)
{
    Opens(HexKeys());
    Types("12");
    RunProcedure([this] {
        field->setEnabled(false);
        field->setEnabled(true);
        PumpEvents(500);
        EXPECT_THAT(commits, IsEmpty());
        field->setEnabled(false);
    });
    PumpEvents(500);
    EXPECT_THAT(commits, IsEmpty()) << "still off";
    field->setEnabled(true);
    EXPECT_THAT(commits, ElementsAre("12 by leaving"));
    PumpEvents(500);
    EXPECT_EQ(commits.size(), 1U);
}

TEST_F(Fields, AHeldEnterCommitsOnce)
{
    Opens(HexKeys());
    Types("1");
    for (const bool held : {false, true, true}) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, "\r", held);
        QApplication::sendEvent(field, &event);
    }
    EXPECT_EQ(commits.size(), 1U);
}

TEST_F(Fields, FreeTextTakesKeysAlsoWhileAProcedureRuns)
{
    QLineEdit *text = FreeText(&page, "txtDpmID", [this](const std::string &now) { edits.push_back(now); });
    page.show();
    RunProcedure([&] { QTest::keyClicks(text, "a 7"); });
    EXPECT_EQ(text->objectName(), "txtDpmID");
    EXPECT_THAT(edits, ElementsAre("a", "a ", "a 7"));
}

TEST_F(Fields, AFilledFieldIsPaintedInItsColourWithATextThatReads)
{
    Opens(HexKeys());
    FillField(field, Qt::cyan);
    EXPECT_EQ(field->palette().color(QPalette::Base), QColor(Qt::cyan));
    EXPECT_EQ(field->palette().color(QPalette::Text), QColor(Qt::black));
    FillField(field, Qt::darkBlue);
    EXPECT_EQ(field->palette().color(QPalette::Text), QColor(Qt::white));
}

}  // namespace
}  // namespace ombrix::test
