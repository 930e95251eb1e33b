#include "records/dual_converter.h"

#include "records/diagram_painting.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QLabel>
#include <QLayout>
#include <QWidget>

namespace ombrix {
namespace {

TEST(DualConverter, IsBuiltHidden)
{
    QWidget window;
    EXPECT_TRUE(BuildDualConverter(&window)->isHidden());
}

TEST(DualConverter, CarriesTheTitlesAndPinsOfBothConnectors)
{
    QWidget window;
    const QWidget *box = BuildDualConverter(&window);
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
    QWidget *box = BuildDualConverter(&window);
    box->resize(box->sizeHint());
    const QImage image = box->grab().toImage();
    const QColor ink = InkOf(box->palette()).line;
    for (int i = 0; i < 5; i++) {
        const auto *label = box->findChild<QLabel *>(QString("lblDACPin(%1)").arg(i));
        const auto *screw = box->findChild<QWidget *>(QString("imgDACPin(%1)").arg(i));
        EXPECT_LT(label->geometry().right(), screw->geometry().left()) << i;
        EXPECT_NEAR(label->geometry().center().y(), screw->geometry().center().y(), 1) << i;
        EXPECT_EQ(image.pixelColor(screw->mapTo(box, QPoint(11, 11))), ink) << i;
    }
}

}  // namespace
}  // namespace ombrix
