#include "widgets/page_kit.h"

#include "widgets/widgets.h"

#include <gtest/gtest.h>

#include <QFrame>
#include <QLabel>
#include <QPushButton>

namespace ombrix::test {
namespace {

class PageKit : public testing::Test
{
protected:
    QFrame page;
};

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

TEST_F(PageKit, TitleIsLargerThanAnyOtherText)
{
    const QLabel *title = Title(&page, "lblTitle");
    EXPECT_EQ(page.findChild<QLabel *>("lblTitle"), title);
    EXPECT_GT(title->font().pointSizeF(), page.font().pointSizeF());
    EXPECT_GT(title->font().pointSizeF(), Instruction(&page, 0, 1)->findChild<QLabel *>()->font().pointSizeF());
    EXPECT_TRUE(title->font().bold());
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

TEST_F(PageKit, AStatusBarIsHiddenUntilItSaysSomething)
{
    QFrame *bar = StatusBar(&page, "InitStatus", 1);
    page.show();
    const auto *label = page.findChild<QLabel *>("lblInitStatus");
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(bar->objectName(), "shpInitStatus");
    EXPECT_FALSE(bar->isVisible());
    ShowStatusBar(bar, "Initializing NVM", Cyan());
    EXPECT_TRUE(label->isVisible());
    EXPECT_EQ(bar->palette().color(QPalette::Window), Cyan());
    ShowStatusBar(bar, "", Cyan());
    EXPECT_FALSE(bar->isVisible());
}

TEST_F(PageKit, ADoneButtonCarriesItsIndexAndItsWord)
{
    int clicks = 0;
    QPushButton *done = DoneButton(&page, 4, [&] { ++clicks; });
    EXPECT_EQ(done->objectName(), "cmdDone(4)");
    EXPECT_EQ(done->text(), "Done");
    done->click();
    EXPECT_EQ(clicks, 1);
}

}  // namespace
}  // namespace ombrix::test
