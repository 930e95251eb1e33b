#include "procedures/quasi_diode_view.h"

#include "widgets/fields.h"
#include "widgets/page_kit.h"
#include "widgets/readout.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <cstddef>

namespace ombrix {
namespace {

QGroupBox *BuildTypes(QFrame *frame, QuasiDiodeView &view, const QuasiDiodeHandlers &handlers)
{
    QGroupBox *group = Group(frame, "fraTCType", "T/C Type");
    auto *row = new QHBoxLayout(group);
    for (int type = 0; type < kDiodeGroups; ++type) {
        auto *&option = view.types[static_cast<std::size_t>(type)];
        option = Option(group, Indexed("optTCType", type), DiodeGroupOf(type).name,
                        [pick = handlers.pick, type] { pick(type); });
        row->addWidget(option);
    }
    row->addStretch();
    return group;
}

// A target in a frame that shows whether it is the one in work.
QFrame *BuildTarget(QFrame *frame, int index, QuasiDiodeView &view, const QuasiDiodeHandlers &handlers)
{
    const auto place = static_cast<std::size_t>(index);
    QFrame *shape = view.shpQDTarget[place] = Shape(frame, Indexed("shpQDTarget", index));
    QLineEdit *field = view.txtQDTarget[place] =
        Field(shape, Indexed("txtQDTarget", index), NumberKeys(),
              [commit = handlers.target](const std::string &text, CommitBy) { commit(text); });
    auto *layout = new QHBoxLayout(shape);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(field);
    return shape;
}

QGridLayout *BuildWords(QFrame *frame, QuasiDiodeView &view, const QuasiDiodeHandlers &handlers)
{
    auto *grid = new QGridLayout;
    const char *const heads[] = {"", "Word", "Previous", "Target"};
    for (int column = 0; column < 4; ++column)
        grid->addWidget(Label(frame, Indexed("lblQDHead", column), heads[column]), 0, column);
    view.buttons.gain = Button(frame, "cmdQDGain", "Gain", handlers.gain, "Alt+G");
    view.buttons.offset = Button(frame, "cmdQDOffset", "Offset", handlers.offset, "Alt+O");
    view.lblQDGain = Title(frame, "lblQDGain");
    view.lblQDOffset = Title(frame, "lblQDOffset");
    view.lblQDPrevGain = Title(frame, "lblQDPrevGain");
    view.lblQDPrevOffset = Title(frame, "lblQDPrevOffset");
    int row = 1;
    for (QPushButton *button : {view.buttons.gain, view.buttons.offset}) {
        MakeLarge(button);
        grid->addWidget(button, row, 0);
        grid->addWidget(row == 1 ? view.lblQDGain : view.lblQDOffset, row, 1);
        grid->addWidget(row == 1 ? view.lblQDPrevGain : view.lblQDPrevOffset, row, 2);
        grid->addWidget(BuildTarget(frame, row - 1, view, handlers), row, 3);
        ++row;
    }
    for (int column = 1; column < 4; ++column)
        grid->setColumnStretch(column, 1);
    SetField(view.txtQDTarget[0], "0.0");  // the gain's is no choice
    view.txtQDTarget[0]->setReadOnly(true);
    view.txtQDTarget[0]->setFocusPolicy(Qt::NoFocus);
    return grid;
}

QHBoxLayout *BuildReadouts(QFrame *frame, QuasiDiodeView &view)
{
    view.lblQDReading = Readout(frame, "lblQDReading");
    view.lblQDDistance = Readout(frame, "lblQDDistance");
    auto *row = new QHBoxLayout;
    row->addWidget(Label(frame, "lblQDReadingCaption", "Reading"));
    row->addWidget(view.lblQDReading, 1);
    row->addSpacing(24);
    row->addWidget(Label(frame, "lblQDDistanceCaption", "Off target"));
    row->addWidget(view.lblQDDistance, 1);
    return row;
}

QHBoxLayout *BuildButtons(QFrame *frame, QuasiDiodeView &view, const QuasiDiodeHandlers &handlers)
{
    view.buttons.ready = Button(frame, "cmdQDReady", "Ready", handlers.ready, "Alt+R");
    view.buttons.accept = Button(
        frame, "cmdQDStop(0)", "Accept", [stop = handlers.stop] { stop(0); }, "Alt+A");
    view.buttons.cancel = Button(
        frame, "cmdQDStop(1)", "Cancel", [stop = handlers.stop] { stop(1); }, "Alt+C");
    view.buttons.done = Button(frame, "cmdQDDone", "Done", handlers.done, "Alt+D");
    return ButtonRow({view.buttons.ready, view.buttons.accept, view.buttons.cancel, view.buttons.done});
}

}  // namespace

QuasiDiodeView BuildQuasiDiodeView(QFrame *frame, const QuasiDiodeHandlers &handlers)
{
    QuasiDiodeView view{};
    auto *column = new QVBoxLayout(frame);
    view.title = Title(frame, "lblQDTitle");
    column->addWidget(view.title);
    column->addWidget(BuildTypes(frame, view, handlers));
    column->addStretch(1);
    column->addLayout(BuildWords(frame, view, handlers));
    column->addStretch(1);
    column->addLayout(BuildReadouts(frame, view));
    view.shpQDError = StatusBar(frame, "QDError", 1);
    column->addWidget(view.shpQDError);
    column->addStretch(1);
    QFrame *instruction = Instruction(frame, 5, 2);
    column->addWidget(instruction);
    column->addLayout(BuildButtons(frame, view, handlers));
    view.states = {frame, instruction, {}};
    return view;
}

}  // namespace ombrix
