#include "records/word_boxes.h"

#include "widgets/fields.h"
#include "widgets/widgets.h"

#include <QFontDatabase>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>

namespace ombrix {
namespace {

constexpr int kWidestField = 6;
constexpr int kColumnsOfABox = 4;  // name, address, digits, and the space to the next box

WordBox BuildWordBox(QFrame *page, int index, const WordBoxEvents &events)
{
    WordBox box;
    box.lblNVM = Label(page, Indexed("lblNVM", index));
    box.lblNVM->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    box.lblAddr = Label(page, Indexed("lblAddr", index));
    box.lblAddr->setToolTip("Number of the word, hexadecimal");
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    box.lblAddr->setFont(fixed);
    box.txtNVM = Field(
        page, Indexed("txtNVM", index), HexKeys(),
        [events, index](const std::string &, CommitBy) { events.left(index); },
        [events, index](const std::string &text) { events.edited(index, text); });
    return box;
}

}  // namespace

QGridLayout *BuildWordBoxColumns(QFrame *page, int first, int last, int rows, const WordBoxEvents &events,
                                 std::vector<WordBox> &boxes)
{
    auto *grid = new QGridLayout;
    grid->setVerticalSpacing(2);
    for (int index = first; index <= last; ++index) {
        const WordBox box = BuildWordBox(page, index, events);
        const int row = (index - first) % rows;
        const int column = (index - first) / rows * kColumnsOfABox;
        grid->addWidget(box.lblNVM, row, column);
        grid->addWidget(box.lblAddr, row, column + 1);
        grid->addWidget(box.txtNVM, row, column + 2, Qt::AlignLeft);
        grid->setColumnStretch(column + kColumnsOfABox - 1, 1);
        boxes.push_back(box);
    }
    return grid;
}

void ShowWordBox(const WordBox &box, const NvmField &field)
{
    box.lblNVM->setText(Caption(field.name));
    box.lblAddr->setText(Caption(field.address));
    MakeDigits(box.txtNVM, field.width > 0 ? field.width : kWidestField);
    for (QWidget *part :
         {static_cast<QWidget *>(box.lblNVM), static_cast<QWidget *>(box.lblAddr), static_cast<QWidget *>(box.txtNVM)})
        part->setVisible(field.width > 0);
}

void MarkWordBox(QLineEdit *field, WordMark mark, const std::string &hint)
{
    if (mark == WordMark::None)
        ClearFill(field);
    else
        FillField(field, mark == WordMark::Changed ? Cyan() : Red());
    field->setToolTip(Caption(hint));
}

void MakeDigits(QLineEdit *field, int digits)
{
    field->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    field->setMaxLength(digits);
    const QFontMetrics metrics(field->font());
    field->setFixedWidth(metrics.horizontalAdvance(QString(digits + 2, '0')) + metrics.height() / 2);
}

}  // namespace ombrix
