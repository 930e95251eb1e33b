// While a box or the board dialog stands the main window takes nothing but Quit, and Quit works every way.

#include "shell/input_gate.h"

#include "shell/quit_fixture.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPushButton>

#include <csignal>
#include <tuple>

using namespace ombrix;
using namespace ombrix::test;

namespace {

void Type(QWidget *widget, int key, Qt::KeyboardModifiers modifiers)
{
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, modifiers);
        QCoreApplication::sendEvent(widget, &event);
    }
}

enum class Before { Box, Dialog };
enum class Way { Button, Key, CloseBox, Terminate, Interrupt };

class QuitFromBehind : public QuitProcedure, public testing::WithParamInterface<std::tuple<Before, Way>>
{
protected:
    void ComesUp(Before what)
    {
        if (what == Before::Dialog) {
            HasBoardCode(0);
            person.Clicks("cmdEstablish").WaitsFor("dlgSCType");
            return;
        }
        Click("optManual");
        EstablishOnLines();
        Procedure([this] {
            ApplyInput("660 V");
            wentOn = true;
        });
        person.Clicks(StepButton(4)).WaitsUntil("the box is up", [] { return !ScriptedOperator::BoxText().empty(); });
    }

    void Goes(Way way)
    {
        person.Does([this] { Forget(); });
        switch (way) {
        case Way::Button:
            person.Clicks("cmdQuit");
            break;
        case Way::Key:
            person.Does([] { Type(Front(), Qt::Key_Q, Qt::ControlModifier); });
            break;
        case Way::CloseBox:
            person.Does([] {
                EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "it would hold back the close box";
                frmOmbrix->close();
            });
            break;
        case Way::Terminate:
        case Way::Interrupt:
            person.Does([way] { std::raise(way == Way::Terminate ? SIGTERM : SIGINT); });
            break;
        }
        // What Quit itself asks in Manual mode is obeyed.
        person.WaitsUntil("the station quits", [] { return Quitting; }).Does([this] {
            person.onBox = [](const std::string &, const std::string &) {};
        });
    }

    static QWidget *Front()
    {
        QWidget *front = QApplication::activeWindow();
        return front && front->focusWidget() ? front->focusWidget() : front;
    }

    bool wentOn = false;
};

class Gate : public ShellTest
{
};

}  // namespace

TEST_P(QuitFromBehind, EndsTheProgram)
{
    const auto [before, way] = GetParam();
    WatchSignals();
    ComesUp(before);
    Goes(way);
    EXPECT_TRUE(person.Runs());
    StopWatchingSignals();
    EXPECT_TRUE(Quitting);
    EXPECT_FALSE(frmOmbrix->isVisible());
    EXPECT_FALSE(wentOn);
    EXPECT_EQ(ScriptedOperator::BoxText(), "");
    EXPECT_EQ(ScriptedOperator::Find("dlgSCType"), nullptr);
    EXPECT_LT(clock.Elapsed(), 4000);
    if (before == Before::Dialog) {
        EXPECT_THAT(ToMeter(), IsEmpty());
        EXPECT_THAT(ToCalibrator(), ElementsAre(kStandby, kLocal));
    }
}

INSTANTIATE_TEST_SUITE_P(Ways, QuitFromBehind,
                         testing::Combine(testing::Values(Before::Box, Before::Dialog),
                                          testing::Values(Way::Button, Way::Key, Way::CloseBox, Way::Terminate,
                                                          Way::Interrupt)));

TEST_F(Gate, HoldsTheWindowAsLongAsItStands)
{
    QWidget box;
    int clicks = 0;
    QPushButton other("other", frmOmbrix->centralWidget());
    other.setObjectName("cmdOther");
    other.show();
    QObject::connect(&other, &QPushButton::clicked, [&clicks] { ++clicks; });
    {
        const InputGate gate(&box);
        person.Clicks("cmdOther").Does([&other] {
            other.setFocus();
            Type(&other, Qt::Key_Space, {});
        });
        ASSERT_TRUE(person.Runs());
        EXPECT_EQ(clicks, 0);
    }
    Click("cmdOther");
    EXPECT_EQ(clicks, 1) << "and all again afterwards";
}
