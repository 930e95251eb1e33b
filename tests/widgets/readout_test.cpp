#include "widgets/readout.h"

#include "widgets/widgets.h"

#include <gtest/gtest.h>

#include <QFrame>
#include <QLabel>

namespace ombrix::test {
namespace {

class ReadoutTest : public testing::Test
{
protected:
    QString Number() const { return page.findChild<QLabel *>("lblReading")->text(); }
    QString Mark() const { return page.findChild<QLabel *>("lblReadingMark")->text(); }
    QColor Ink() const { return page.findChild<QLabel *>("lblReading")->palette().color(QPalette::WindowText); }
    QColor MarkFill() const
    {
        const auto *mark = page.findChild<QLabel *>("lblReadingMark");
        return mark->autoFillBackground() ? mark->palette().color(QPalette::Window) : QColor();
    }

    QFrame page;
    QFrame *readout = Readout(&page, "lblReading");
};

TEST_F(ReadoutTest, ANumberIsAsLargeAsTheOutputPanels)
{
    EXPECT_EQ(page.findChild<QLabel *>("lblReading")->font().pointSize(), 30);
    EXPECT_EQ(Number(), "");
    EXPECT_EQ(Mark(), "");
}

TEST_F(ReadoutTest, ALiveNumberSaysSoAndAFrozenOneIsDimAndSaysSo)
{
    ShowLive(readout, "79987.");
    const QColor live = Ink();
    EXPECT_EQ(Number(), "79987.");
    EXPECT_EQ(Mark(), "live");
    Freeze(readout);
    EXPECT_EQ(Number(), "79987.");
    EXPECT_EQ(Mark(), "frozen");
    EXPECT_NE(Ink(), live);
    ShowLive(readout, "79988.");
    EXPECT_EQ(Mark(), "live");
    EXPECT_EQ(Ink(), live);
}

TEST_F(ReadoutTest, TroubleIsToldInRedAndTheLastNumberIsDim)
{
    ShowLive(readout, "79987.");
    const QColor live = Ink();
    ShowTrouble(readout, "over range");
    EXPECT_EQ(Mark(), "over range");
    EXPECT_EQ(MarkFill(), Red());
    EXPECT_NE(Ink(), live);
    ShowLive(readout, "79988.");
    EXPECT_EQ(MarkFill(), QColor());
}

TEST_F(ReadoutTest, NothingFreezesWhereNothingStands)
{
    Freeze(readout);
    EXPECT_EQ(Mark(), "");
    ShowLive(readout, "1");
    ShowTrouble(readout, "silent");
    ClearReadout(readout);
    EXPECT_EQ(Number(), "");
    EXPECT_EQ(Mark(), "");
    EXPECT_EQ(MarkFill(), QColor());
}

TEST_F(ReadoutTest, AJudgedNumberIsGreenWhenItIsGood)
{
    ShowVerdict(readout, "+12.50 mV", false, "outside");
    const QColor judged = Ink();
    EXPECT_EQ(Number(), "+12.50 mV");
    EXPECT_EQ(Mark(), "outside");
    EXPECT_EQ(MarkFill(), Yellow());
    ShowVerdict(readout, "+0.50 mV", true, "inside");
    EXPECT_EQ(Mark(), "inside");
    EXPECT_EQ(MarkFill(), Green());
    ShowTrouble(readout, "silent");
    EXPECT_NE(Ink(), judged);
    ShowVerdict(readout, "+0.50 mV", true, "inside");
    EXPECT_EQ(Ink(), judged) << "it isn't dim";
}

}  // namespace
}  // namespace ombrix::test
