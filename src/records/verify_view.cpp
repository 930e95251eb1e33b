#include "records/verify_view.h"

#include "widgets/fields.h"
#include "widgets/page_kit.h"

#include <QCheckBox>
#include <QFontDatabase>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace ombrix {
namespace {

constexpr int kInstruction = 8;
constexpr int kReadingDigits = 12;  // room for a reading, and for what is said of one

QFrame *BuildReading(QFrame *page, VerifyView &view, int slot)
{
    QFrame *shape = Shape(page, Indexed("shpVfyRdg", slot));
    QLabel *label = Label(shape, Indexed("lblVfyRdg", slot));
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(font.pointSizeF() * 1.25);
    label->setFont(font);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label->setMinimumWidth(label->fontMetrics().horizontalAdvance(QString(kReadingDigits, '0')));
    auto *layout = new QHBoxLayout(shape);
    layout->setContentsMargins(8, 2, 8, 2);
    layout->addWidget(label);
    view.shpVfyRdg[static_cast<std::size_t>(slot)] = shape;
    view.lblVfyRdg[static_cast<std::size_t>(slot)] = label;
    return shape;
}

QGridLayout *BuildRanges(QFrame *page, VerifyView &view, const VerifyEvents &events)
{
    auto *grid = new QGridLayout;
    grid->setVerticalSpacing(3);
    for (int button = 0; button < kVerifyRanges; ++button) {
        QPushButton *range =
            Button(page, Indexed("cmdVfyRng", button), "", [range = events.range, button] { range(button); });
        range->setMinimumHeight(range->fontMetrics().lineSpacing() * 2 + 6);
        range->setMinimumWidth(range->fontMetrics().horizontalAdvance("+200 mV") * 2);
        view.cmdVfyRng[static_cast<std::size_t>(button)] = range;
        grid->addWidget(range, button, 0);
        grid->addWidget(BuildReading(page, view, 2 * button), button, 1);
        grid->addWidget(BuildReading(page, view, 2 * button + 1), button, 2);
    }
    grid->setColumnStretch(3, 1);
    return grid;
}

QGridLayout *BuildFile(QFrame *page, VerifyView &view, const VerifyEvents &events)
{
    view.txtDpmID = FreeText(page, "txtDpmID", events.dpmId);
    view.txtDpmID->setToolTip("Stands on the printed table");
    view.chkTempFile = Check(page, "chkTempFile", "Use Temporary File", events.tempFile);
    view.chkTempFile->setToolTip("Emptied each time this is checked");
    QSizePolicy keepsItsPlace = view.chkTempFile->sizePolicy();
    keepsItsPlace.setRetainSizeWhenHidden(true);
    view.chkTempFile->setSizePolicy(keepsItsPlace);
    view.cmdFileSpec = Button(page, "cmdFileSpec", "File...", events.fileSpec, "Alt+F");
    view.lblFileSpec = Label(page, "lblFileSpec");
    view.lblFileSpec->setTextFormat(Qt::PlainText);
    auto *grid = new QGridLayout;
    grid->addWidget(Label(page, "lblDpmID", "DPM ID"), 0, 0);
    grid->addWidget(view.txtDpmID, 0, 1, 1, 2);
    grid->addWidget(view.cmdFileSpec, 1, 0);
    grid->addWidget(view.lblFileSpec, 1, 1);
    grid->addWidget(view.chkTempFile, 1, 2, Qt::AlignRight);
    grid->setColumnStretch(1, 1);
    return grid;
}

QHBoxLayout *BuildButtons(QFrame *page, VerifyView &view, const VerifyEvents &events)
{
    view.cmdVfyReady = Button(page, "cmdVfyReady", "Ready", events.ready);
    view.cmdVfyOK = Button(page, "cmdVfyOK", "OK", events.ok);
    view.cmdVfyDone = Button(page, "cmdVfyDone", "Done", events.done);
    view.cmdVfyPrint = Button(page, "cmdVfyPrint", "Print", events.print, "Alt+P");
    return ButtonRow({view.cmdVfyReady, view.cmdVfyOK, view.cmdVfyDone, view.cmdVfyPrint});
}

}  // namespace

VerifyView BuildVerifyView(QFrame *page, const VerifyEvents &events)
{
    VerifyView view;
    auto *column = new QVBoxLayout(page);
    column->addLayout(BuildFile(page, view, events));
    column->addLayout(BuildRanges(page, view, events), 1);
    view.instruction = Instruction(page, kInstruction, 2);
    column->addWidget(view.instruction);
    column->addLayout(BuildButtons(page, view, events));
    return view;
}

void ShowVerifyRanges(const VerifyView &view, int board)
{
    for (int button = 0; button < kVerifyRanges; ++button) {
        const std::string name = VerifyRangeName(board, button);
        const bool two = VerifyTwoPolarity(board);
        QPushButton *range = view.cmdVfyRng[static_cast<std::size_t>(button)];
        const std::string both = std::string("+").append(name).append("\r\n-").append(name);
        range->setText(Caption(two && !name.empty() ? both : name));
        range->setEnabled(false);
        ShowUse(range, name.empty() ? Use::NotInUse : Use::Idle);
        const std::size_t slot = 2 * static_cast<std::size_t>(button);
        ShowUse(view.shpVfyRdg[slot], name.empty() ? Use::NotInUse : Use::Idle);
        ShowUse(view.shpVfyRdg[slot + 1], name.empty() || !two ? Use::NotInUse : Use::Idle);
    }
}

void ShowVerifyReadings(const VerifyView &view, const std::array<std::string, kVerifySlots> &readings)
{
    for (std::size_t slot = 0; slot < readings.size(); ++slot) {
        ClearFill(view.lblVfyRdg[slot]);
        view.lblVfyRdg[slot]->setText(Caption(readings[slot]));
    }
}

void ShowUnsavedReading(const VerifyView &view, int slot, const std::string &reading)
{
    QLabel *label = view.lblVfyRdg[static_cast<std::size_t>(slot)];
    label->setText(Caption(reading + " unsaved"));
    SetFill(label, Red());
}

}  // namespace ombrix
