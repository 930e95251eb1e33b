#include "widgets/readout.h"

#include "widgets/widgets.h"

#include <QFontMetrics>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace ombrix {
namespace {

QLabel *NumberOf(QFrame *readout)
{
    return readout->findChild<QLabel *>(readout->property("number").toString());
}

QLabel *MarkOf(QFrame *readout)
{
    return readout->findChild<QLabel *>(readout->property("number").toString() + "Mark");
}

// Dim stays readable: what stood there last may still be wanted.
void Dim(QLabel *label, bool dim)
{
    const QPalette page = label->parentWidget()->palette();
    const QColor text = page.color(QPalette::Active, QPalette::WindowText);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, dim ? Mix(text, page.color(QPalette::Active, QPalette::Window), 0.5) : text);
    label->setPalette(palette);
}

}  // namespace

QFrame *Readout(QWidget *parent, const QString &name)
{
    auto *readout = new QFrame(parent);
    readout->setProperty("number", name);
    QLabel *number = Label(readout, name);
    QFont font = number->font();
    font.setPointSize(kRoomPoints);
    number->setFont(font);
    number->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    number->setMinimumWidth(QFontMetrics(font).horizontalAdvance("-88888."));  // stands still while it runs
    QLabel *mark = Label(readout, name + "Mark");
    mark->setContentsMargins(4, 0, 4, 0);
    auto *column = new QVBoxLayout(readout);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(number);
    column->addWidget(mark, 0, Qt::AlignRight);
    readout->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    return readout;
}

QLabel *RoomLabel(QWidget *parent, const QString &name)
{
    QLabel *label = Label(parent, name);
    QFont font = label->font();
    font.setPointSize(kRoomPoints);
    label->setFont(font);
    label->setMinimumHeight(QFontMetrics(font).height());  // stands still while it is empty
    return label;
}

QHBoxLayout *AimRow(QWidget *parent, const QString &name, QLabel *&target, QLabel *&distance)
{
    target = RoomLabel(parent, "lbl" + name + "Target");
    distance = RoomLabel(parent, "lbl" + name + "Distance");
    auto *row = new QHBoxLayout;
    row->addWidget(Label(parent, "lbl" + name + "TargetCaption", "Target"));
    row->addWidget(target, 1);
    row->addWidget(Label(parent, "lbl" + name + "DistanceCaption", "Distance"));
    row->addWidget(distance, 1);
    return row;
}

void ShowLive(QFrame *readout, const std::string &number)
{
    NumberOf(readout)->setText(Caption(number));
    Dim(NumberOf(readout), false);
    ClearFill(MarkOf(readout));
    MarkOf(readout)->setText("live");
}

void Freeze(QFrame *readout)
{
    if (NumberOf(readout)->text().isEmpty())
        return;
    Dim(NumberOf(readout), true);
    ClearFill(MarkOf(readout));
    MarkOf(readout)->setText("frozen");
}

void ShowTrouble(QFrame *readout, const std::string &words)
{
    Dim(NumberOf(readout), true);
    MarkOf(readout)->setText(Caption(words));
    SetFill(MarkOf(readout), Red());
}

void ShowVerdict(QFrame *readout, const std::string &number, bool good, const std::string &words)
{
    NumberOf(readout)->setText(Caption(number));
    Dim(NumberOf(readout), false);
    MarkOf(readout)->setText(Caption(words));
    SetFill(MarkOf(readout), good ? Green() : Yellow());
}

void ClearReadout(QFrame *readout)
{
    NumberOf(readout)->clear();
    ClearFill(MarkOf(readout));
    MarkOf(readout)->clear();
}

}  // namespace ombrix
