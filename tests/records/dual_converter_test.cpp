#include "records/dual_converter.h"

#include "records/diagram_painting.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QLabel>
#include <QLayout>
#include <QWidget>

namespace ombrix {
namespace {

constexpr int kRoom = 260;

TEST(DualConverter, IsBuiltHidden)
{
    QWidget window;
    EXPECT_TRUE(BuildDualConverter(&window, kRoom)->isHidden());
}

TEST(DualConverter, CarriesTheTitlesAndPinsOfBothConnectors)
{
    QWidget window;
    const QWidget *box = BuildDualConverter(&window, kRoom);
    const char *titles[] = {"DAC1", "DAC2", "Dual DAC"};
    for (int i = 0; i < 3; i++)
        EXPECT_EQ(box->findChild<QLabel *>(QString("lblDAC(%1)").arg(i))->text(), titles[i]);
    const char *pins[] = {"0 - 20 mA  1", "0 - 10 V  2", "Gnd  3", "Gnd  1", "+/- 10 V  2"};
    for (int i = 0; i < 5; i++)
        EXPECT_EQ(box->findChild<QLabel *>(QString("lblDACPin(%1)").arg(i))->text(), pins[i]);
}

TEST(DualConverter, DrawsAScrewBesideEachPin)
{
    QWidget window;
    Canvas *box = BuildDualConverter(&window, kRoom);
    for (const double zoom : {1.0, 1.5}) {
        box->resize(box->minimumSizeHint() * zoom);
        const QImage image = box->grab().toImage();
        for (int i = 0; i < kDualPins; i++) {
            const auto *label = box->findChild<QLabel *>(QString("lblDACPin(%1)").arg(i));
            const QPointF screw = box->Shown(DualScrew(i, kRoom, box->fontMetrics()).center());
            EXPECT_LT(label->geometry().right(), screw.x()) << i;
            EXPECT_NEAR(label->geometry().center().y(), screw.y(), 1) << i;
            EXPECT_EQ(image.pixelColor((screw + QPointF(3, 3) * zoom).toPoint()), Ink().line) << i;
        }
    }
}

TEST(DualConverter, EachTextHasItsRoom)
{
    QWidget window;
    Canvas *box = BuildDualConverter(&window, kRoom);
    for (const double zoom : {1.0, 1.25, 1.54}) {
        box->resize(box->minimumSizeHint() * zoom);
        box->grab();
        for (const QLabel *label : box->findChildren<QLabel *>()) {
            EXPECT_GE(label->width(), label->sizeHint().width()) << label->text().toStdString();
            EXPECT_TRUE(box->rect().contains(label->geometry())) << label->text().toStdString();
        }
    }
}

}  // namespace
}  // namespace ombrix
