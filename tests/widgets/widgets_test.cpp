#include "widgets/widgets.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QMouseEvent>
#include <QPalette>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <cmath>
#include <stdexcept>

using namespace ombrix;

namespace {

// Ratio of the brighter to the darker of two colours as the eye takes it, 1 to 21.
double Contrast(const QColor &one, const QColor &other)
{
    const auto part = [](double share) {
        return share <= 0.03928 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    const auto luminance = [&](const QColor &c) {
        return 0.2126 * part(c.redF()) + 0.7152 * part(c.greenF()) + 0.0722 * part(c.blueF());
    };
    const double a = luminance(one) + 0.05;
    const double b = luminance(other) + 0.05;
    return a > b ? a / b : b / a;
}

void SendDoubleClick(QWidget *widget, Qt::MouseButton button)
{
    QMouseEvent event(QEvent::MouseButtonDblClick, {1, 1}, {1, 1}, button, button, {});
    QCoreApplication::sendEvent(widget, &event);
}

}  // namespace

TEST(Widgets, CarryTheirNamesAndCaptions)
{
    QWidget page;
    EXPECT_EQ(Button(&page, "cmdReady", "Ready", nullptr)->objectName(), "cmdReady");
    EXPECT_EQ(Label(&page, "lblInst", "one\r\ntwo")->text(), "one\ntwo");
    EXPECT_EQ(Indexed("cmdCalib", 3), "cmdCalib(3)");
    EXPECT_EQ(Group(&page, "fraAA(0)", "Mode")->title(), "Mode");
    EXPECT_EQ(Shape(&page, "shpFlag")->objectName(), "shpFlag");
    EXPECT_EQ(Check(&page, "chkXmtr", "Xmtr", nullptr)->text(), "Xmtr");
    EXPECT_EQ(Option(&page, "optYes", "Yes", nullptr)->text(), "Yes");
}

TEST(Widgets, OnlyTheOperatorsClickCallsTheHandler)
{
    QWidget page;
    int clicks = 0;
    QRadioButton *option = Option(&page, "optYes", "Yes", [&] { ++clicks; });
    option->setChecked(true);
    EXPECT_EQ(clicks, 0);
    option->click();
    EXPECT_EQ(clicks, 1);
}

TEST(Widgets, AFaultInAHandlerDoesNotReachTheToolkit)
{
    QWidget page;
    QPushButton *button = Button(&page, "cmdReady", "Ready", [] { throw std::runtime_error("fault"); });
    EXPECT_NO_THROW(button->click());
}

TEST(Widgets, OptionsOfAGroupCanAllBeOff)
{
    QWidget page;
    QRadioButton *one = Option(&page, "opt(0)", "one", nullptr);
    QRadioButton *two = Option(&page, "opt(1)", "two", nullptr);
    SetOption(one, true);
    SetOption(two, true);
    EXPECT_FALSE(one->isChecked()) << "still exclusive";
    SetOption(two, false);
    EXPECT_FALSE(one->isChecked());
    EXPECT_FALSE(two->isChecked());
    SetOption(one, true);
    EXPECT_TRUE(one->isChecked());
}

TEST(Widgets, OptionsOfAButtonGroupCanAllBeOff)
{
    QWidget page;
    QButtonGroup group;
    QRadioButton *one = Option(&page, "opt(0)", "one", nullptr);
    QRadioButton *two = Option(&page, "opt(1)", "two", nullptr);
    group.addButton(one);
    group.addButton(two);
    SetOption(one, true);
    SetOption(one, false);
    EXPECT_FALSE(one->isChecked());
    SetOption(one, true);
    SetOption(two, true);
    EXPECT_FALSE(one->isChecked());
}

TEST(Widgets, ADoubleClickIsTheLeftButtons)
{
    QWidget page;
    QLabel *label = Label(&page, "lblCalOut", "Calibrator Output");
    int clicks = 0;
    OnDoubleClick(label, [&] { ++clicks; });
    SendDoubleClick(label, Qt::RightButton);
    EXPECT_EQ(clicks, 0);
    SendDoubleClick(label, Qt::LeftButton);
    EXPECT_EQ(clicks, 1);
}

TEST(Widgets, TextOnAFillCanBeRead)
{
    QLabel label("text");
    for (const QColor &fill : {Cyan(), Green(), Yellow(), Red(), QColor(Qt::black), QColor(Qt::white)}) {
        SetFill(&label, fill);
        EXPECT_EQ(label.palette().color(QPalette::Window), fill);
        EXPECT_GE(Contrast(label.palette().color(QPalette::WindowText), fill), 3.9) << fill.name().toStdString();
    }
}

TEST(Widgets, ADisabledFillIsDullInColourAndText)
{
    QPushButton button("2 V");
    SetFill(&button, Cyan());
    const QPalette palette = button.palette();
    EXPECT_NE(palette.color(QPalette::Disabled, QPalette::Button), Cyan());
    const auto contrast = [&](QPalette::ColorGroup group) {
        return Contrast(palette.color(group, QPalette::ButtonText), palette.color(group, QPalette::Button));
    };
    EXPECT_LT(contrast(QPalette::Disabled), contrast(QPalette::Active) / 2);
}

TEST(Widgets, AnEndedFillShowsThePageAgain)
{
    QLabel label("text");
    const QColor before = label.palette().color(QPalette::Window);
    SetFill(&label, Red());
    ClearFill(&label);
    EXPECT_EQ(label.palette().color(QPalette::Window), before);
    EXPECT_FALSE(label.autoFillBackground());
}

TEST(Widgets, IdleServiceAndUnusedItemsAreToldApartInLightAndDark)
{
    for (const QColor &ground : {QColor(240, 240, 240), QColor(40, 40, 43)}) {
        QApplication::setPalette(QPalette(ground));
        EXPECT_EQ(IsDark(QApplication::palette()), ground.lightness() < 100);
        const auto apart = [](const QColor &one, const QColor &other) {
            return std::abs(one.red() - other.red()) + std::abs(one.green() - other.green()) +
                   std::abs(one.blue() - other.blue());
        };
        EXPECT_GT(apart(InfoBackground(), ScrollBarColour()), 40);
        EXPECT_GT(apart(InfoBackground(), ButtonFace()), 30);
        EXPECT_GT(apart(ScrollBarColour(), ButtonFace()), 40);
    }
    QApplication::setPalette(QPalette());
    QCoreApplication::sendPostedEvents();
}

TEST(Widgets, TheThreeUsesOfAnItemHaveTheirColours)
{
    QLabel label("text");
    ShowUse(&label, Use::InWork);
    EXPECT_EQ(label.palette().color(QPalette::Window), Cyan());
    ShowUse(&label, Use::Idle);
    EXPECT_EQ(label.palette().color(QPalette::Window), InfoBackground());
    ShowUse(&label, Use::NotInUse);
    EXPECT_EQ(label.palette().color(QPalette::Window), ButtonFace());
    EXPECT_TRUE(label.autoFillBackground());
}

TEST(Widgets, MixTakesItsShareOfEach)
{
    EXPECT_EQ(Mix(QColor(100, 0, 200), QColor(0, 100, 0), 0.25), QColor(25, 75, 50));
}
