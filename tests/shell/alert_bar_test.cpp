#include "shell/alert_bar.h"

#include "session/outlets.h"
#include "session/page_frame.h"
#include "shell/main_window.h"
#include "shell/station.h"
#include "support/station.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QMainWindow>

namespace ombrix::test {
namespace {

constexpr char kAlert[] =
    "Standby not confirmed: 200.0 V may be on the terminals. Press the calibrator's own STBY key.";

class AlertBar : public testing::Test
{
protected:
    void Settles()
    {
        station.person.Waits(10);
        ASSERT_TRUE(station.person.Runs());
    }

    static QRect Place(const char *name)
    {
        const QWidget *widget = ScriptedOperator::Find(name);
        return {widget->mapTo(frmOmbrix, QPoint(0, 0)), widget->size()};
    }

    Station station;
};

TEST_F(AlertBar, StandsInRedOverTheWholeWidthAboveTheOutputPanel)
{
    EXPECT_FALSE(ScriptedOperator::Sees("shpAlert"));
    outlets.showAlert(kAlert);
    Settles();
    EXPECT_TRUE(ScriptedOperator::Sees("lblAlert"));
    EXPECT_EQ(ScriptedOperator::Text("lblAlert"), kAlert);
    EXPECT_EQ(ScriptedOperator::Fill("shpAlert"), "#ff0000");
    EXPECT_GE(Place("shpAlert").width(), frmOmbrix->width() - 20);
    EXPECT_LE(Place("shpAlert").bottom(), Place("fraCalOut").top());
    EXPECT_GE(ScriptedOperator::Find("lblAlert")->font().pointSize(), 18);
}

TEST_F(AlertBar, StaysThroughAChangeOfPageUntilItIsTakenAway)
{
    outlets.showAlert(kAlert);
    for (const int page : {4, 0, 1}) {
        ShowPage(page);
        Settles();
        EXPECT_TRUE(ScriptedOperator::Sees("lblAlert")) << page;
    }
    outlets.showAlert("");
    EXPECT_FALSE(ScriptedOperator::Sees("shpAlert"));
}

TEST_F(AlertBar, IsReadInFullOnASmallScreen)
{
    outlets.showAlert(kAlert);
    for (const QSize size : {QSize(1024, 700), QSize(960, 504)}) {
        frmOmbrix->resize(size);
        Settles();
        EXPECT_EQ(frmOmbrix->size(), size);
        const auto *label = qobject_cast<QLabel *>(ScriptedOperator::Find("lblAlert"));
        EXPECT_GE(label->height(), label->heightForWidth(label->width()));
        EXPECT_TRUE(frmOmbrix->rect().contains(Place("shpAlert")));
        EXPECT_TRUE(frmOmbrix->rect().contains(Place("fraCalOut")));
        EXPECT_TRUE(frmOmbrix->rect().contains(Place("cmdQuit")));
    }
}

}  // namespace
}  // namespace ombrix::test
