#include "widgets/page_states.h"

#include "widgets/page_kit.h"
#include "widgets/widgets.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFrame>
#include <QLineEdit>
#include <QPushButton>

namespace ombrix::test {
namespace {

enum State { kFirst, kTyped, kShut };

class KeysOfAPage : public testing::Test
{
protected:
    void SetUp() override
    {
        field = new QLineEdit(&page);
        button = Button(&page, "cmdSave", "Save", nullptr);
        states = {&page,
                  Instruction(&page, 0, 1),
                  {{.state = kFirst, .on = {field, button}, .focus = button, .prompt = {}, .keysStay = true},
                   {.state = kTyped, .on = {field, button}, .focus = button, .prompt = {}},
                   {.state = kShut, .on = {button}, .focus = button, .prompt = {}, .keysStay = true}}};
        page.show();
        QApplication::setActiveWindow(&page);
    }

    QFrame page;
    QLineEdit *field = nullptr;
    QPushButton *button = nullptr;
    PageStates states;
};

TEST_F(KeysOfAPage, StayWhereTheyAreWhenTheStateSaysSo)
{
    field->setFocus();
    ShowPageState(states, kFirst);
    EXPECT_EQ(QApplication::focusWidget(), field);
}

TEST_F(KeysOfAPage, GoToTheControlOfTheStateOtherwise)
{
    field->setFocus();
    ShowPageState(states, kTyped);
    EXPECT_EQ(QApplication::focusWidget(), button);
}

TEST_F(KeysOfAPage, DoNotStayOnAControlThatGoesOff)
{
    field->setFocus();
    ShowPageState(states, kShut);
    EXPECT_EQ(QApplication::focusWidget(), button);
}

}  // namespace
}  // namespace ombrix::test
