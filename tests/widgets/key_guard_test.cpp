#include "widgets/key_guard.h"

#include "support/virtual_clock.h"
#include "widgets/page_kit.h"
#include "widgets/widgets.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFrame>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest/QTest>

namespace ombrix::test {
namespace {

class KeyGuard : public testing::Test
{
protected:
    KeyGuard()
    {
        page.show();
        QApplication::setActiveWindow(&page);
        clock.Advance(1000);
    }

    void Press(int key, bool held = false) const
    {
        QWidget *focus = QApplication::focusWidget();
        ASSERT_NE(focus, nullptr);
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, Qt::NoModifier, "\r", held);
            QApplication::sendEvent(focus, &event);
        }
    }

    VirtualClock clock;
    QFrame page;
    int readied = 0;
    int stopped = 0;
    QPushButton *cmdReady = Button(&page, "cmdReady", "Ready", [this] { ++readied; });
    QPushButton *cmdStop = Button(&page, "cmdStop", "Stop", [this] { ++stopped; });
};

TEST_F(KeyGuard, AButtonThatTookTheFocusByProgramIgnoresEnterAndSpaceFor400Ms)
{
    for (const int key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        stopped = 0;
        cmdReady->setFocus();
        clock.Advance(1000);
        cmdStop->setFocus();
        Press(key);
        clock.Advance(399);
        Press(key);
        EXPECT_EQ(stopped, 0) << key;
        clock.Advance(1);
        Press(key);
        EXPECT_EQ(stopped, 1) << key;
    }
}

TEST_F(KeyGuard, ADoubleEnterOnReadyDoesNotPressStop)
{
    QPushButton *ready = Button(&page, "cmdStart", "Ready", [this] {
        ++readied;
        EnableAndFocus(cmdStop);
    });
    ready->show();
    ready->setFocus(Qt::TabFocusReason);
    Press(Qt::Key_Return);
    ASSERT_EQ(QApplication::focusWidget(), cmdStop);
    clock.Advance(150);
    Press(Qt::Key_Return);
    EXPECT_EQ(readied, 1);
    EXPECT_EQ(stopped, 0);
}

TEST_F(KeyGuard, AHeldKeyPressesNothingHoweverLongItIsHeld)
{
    EnableAndFocus(cmdStop);
    for (int i = 0; i < 100; ++i) {
        clock.Advance(30);
        Press(Qt::Key_Return, true);
        Press(Qt::Key_Space, true);
    }
    EXPECT_EQ(stopped, 0);
    Press(Qt::Key_Return);
    EXPECT_EQ(stopped, 1);
}

TEST_F(KeyGuard, AMouseClickAlwaysCounts)
{
    EnableAndFocus(cmdStop);
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, {1, 1}, {1, 1}, Qt::LeftButton, Qt::LeftButton, {});
        QApplication::sendEvent(cmdStop, &event);
    }
    EXPECT_EQ(stopped, 1);
}

TEST_F(KeyGuard, TheOperatorsTabIsNoProgram)
{
    cmdReady->setFocus();
    QTest::keyClick(cmdReady, Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), cmdStop);
    Press(Qt::Key_Return);
    EXPECT_EQ(stopped, 1);
}

TEST_F(KeyGuard, AFocusThatAWidgetHandsOnByGoingOffIsTakenByProgram)
{
    QRadioButton *option = Option(&page, "opt", "", nullptr);
    option->show();
    QWidget::setTabOrder(option, cmdReady);
    for (const bool hidden : {false, true}) {
        readied = 0;
        option->setEnabled(true);
        option->setVisible(true);
        option->setFocus();
        clock.Advance(1000);
        if (hidden)
            option->hide();
        else
            option->setEnabled(false);
        ASSERT_EQ(QApplication::focusWidget(), cmdReady);
        Press(Qt::Key_Return);
        EXPECT_EQ(readied, 0) << hidden;
        clock.Advance(400);
        Press(Qt::Key_Return);
        EXPECT_EQ(readied, 1) << hidden;
    }
}

// "Start" has become "Next" under the finger.
TEST_F(KeyGuard, AButtonThatHadTheFocusIsDeafAgainWhenItIsGivenAnew)
{
    cmdReady->setFocus();
    clock.Advance(1000);
    EnableAndFocus(cmdReady);
    Press(Qt::Key_Return);
    EXPECT_EQ(readied, 0);
}

TEST_F(KeyGuard, ADoubleEnterPressesTheSameButtonOnce)
{
    cmdReady->setFocus(Qt::TabFocusReason);
    Press(Qt::Key_Return);
    clock.Advance(200);
    Press(Qt::Key_Return);
    EXPECT_EQ(readied, 1);
    clock.Advance(400);
    Press(Qt::Key_Return);
    EXPECT_EQ(readied, 2);
}

TEST_F(KeyGuard, OtherKeysGoTheirWay)
{
    EnableAndFocus(cmdReady);
    QTest::keyClick(cmdReady, Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), cmdStop);
}

TEST_F(KeyGuard, AShortcutPressesItsButtonWhereverTheFocusIsAndIsToldInTheTooltip)
{
    int repeated = 0;
    QPushButton *cmdRepeat = Button(
        &page, "cmdRepeat", "Repeat", [&] { ++repeated; }, "Alt+R");
    cmdRepeat->show();
    EXPECT_EQ(cmdRepeat->text(), "Repeat");
    EXPECT_EQ(cmdRepeat->toolTip(), "Alt+R");
    cmdStop->setFocus();
    QTest::keyClick(cmdStop, Qt::Key_R, Qt::AltModifier);
    EXPECT_EQ(repeated, 1) << "at once: no time has passed";
    EXPECT_EQ(QApplication::focusWidget(), cmdRepeat);
    cmdRepeat->setEnabled(false);
    QTest::keyClick(cmdStop, Qt::Key_R, Qt::AltModifier);
    cmdRepeat->setEnabled(true);
    cmdRepeat->hide();
    QTest::keyClick(cmdStop, Qt::Key_R, Qt::AltModifier);
    EXPECT_EQ(repeated, 1);
}

}  // namespace
}  // namespace ombrix::test
