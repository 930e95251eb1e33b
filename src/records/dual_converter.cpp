#include "records/dual_converter.h"

#include "records/diagram_painting.h"
#include "widgets/widgets.h"

#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPalette>

namespace ombrix {
namespace {

// Pins from the top: those of the first connector, then those of the second.
constexpr const char *kPins[] = {"0 - 20 mA  1", "0 - 10 V  2", "Gnd  3", "Gnd  1", "+/- 10 V  2"};
constexpr int kPinsOfFirst = 3;
constexpr const char *kTitles[] = {"DAC1", "DAC2", "Dual DAC"};

QLabel *Text(QGridLayout *grid, const QString &name, const char *text, int row, int column, int columns)
{
    QLabel *label = Label(grid->parentWidget(), name, text);
    label->setForegroundRole(QPalette::Text);
    grid->addWidget(label, row, column, 1, columns, columns > 1 ? Qt::AlignCenter : Qt::AlignRight | Qt::AlignVCenter);
    return label;
}

Canvas *Screw(QWidget *parent, const QString &name)
{
    auto *screw = new Canvas(parent, name);
    screw->setFixedSize(16, 16);
    screw->paint = [screw](QPainter &painter) {
        const Ink ink = InkOf(screw->palette());
        PaintScrew(painter, QRectF(1, 1, 14, 14), true, ink.line, ink);
    };
    return screw;
}

}  // namespace

QWidget *BuildDualConverter(QWidget *parent)
{
    auto *box = new QWidget(parent);
    box->setObjectName("imgDualDAC");
    auto *grid = new QGridLayout(box);
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(3);
    Text(grid, "lblDAC(2)", kTitles[2], 0, 0, 4);
    Text(grid, "lblDAC(0)", kTitles[0], 1, 0, 2);
    Text(grid, "lblDAC(1)", kTitles[1], 1, 2, 2);
    for (int pin = 0; pin < 5; pin++) {
        const bool second = pin >= kPinsOfFirst;
        const int row = 2 + (second ? pin - kPinsOfFirst : pin);
        Text(grid, Indexed("lblDACPin", pin), kPins[pin], row, second ? 2 : 0, 1);
        grid->addWidget(Screw(box, Indexed("imgDACPin", pin)), row, second ? 3 : 1);
    }
    box->hide();
    return box;
}

}  // namespace ombrix
