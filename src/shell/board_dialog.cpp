#include "shell/board_dialog.h"

#include "links/meter_identity.h"
#include "links/meter_simulator.h"
#include "platform/clock.h"
#include "session/state.h"
#include "shell/input_gate.h"
#include "shell/main_window.h"
#include "widgets/widgets.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QRadioButton>

#include <array>
#include <vector>

namespace ombrix {
namespace {

struct BoardChoice {
    const char *caption;
    int board;
    const char *code;
};
constexpr BoardChoice kBoardChoices[] = {
    {"DC", kDc, "01"},   {"AC", kAc, "02"},   {"LC", kLc, "03"},     {"TC", kTc, "31"},
    {"AC2", kAc2, "12"}, {"AC3", kAc3, "22"}, {"Temp", kTemp, "01"}, {"RTD / Ohms", kRtd, "41"},
};
constexpr std::array<const char *, 3> kKinds = {"DPM", "Weight", "CTR"};

class Dialog;

// One showing of the dialog: what is chosen, and its widgets.
struct Asking {
    int kind = kDpm;
    bool xmtr = false;
    int board = -1;
    std::string code;
    int boardBeforeCtr = 0;
    std::string codeBeforeCtr;
    bool answered = false;
    bool dropped = false;

    Dialog *window = nullptr;
    std::vector<QRadioButton *> optSC;
    QCheckBox *chkXmtr = nullptr;
};
Asking *asking = nullptr;  // the one that is up

// Neither a close box nor Esc ends it: it needs an answer. While the answer is written Esc is a stop, as anywhere.
class Dialog : public QWidget
{
public:
    explicit Dialog(QWidget *parent) : QWidget(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint) {}

protected:
    void closeEvent(QCloseEvent *event) override { event->ignore(); }

    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Escape && asking->answered && !event->isAutoRepeat())
            Abort = true;
        else
            QWidget::keyPressEvent(event);
    }
};

void optSC_Click(int index)
{
    asking->board = kBoardChoices[index].board;
    asking->code = kBoardChoices[index].code;
}

void EnableBoards(bool on)
{
    for (QRadioButton *option : asking->optSC)
        option->setEnabled(on);
}

// A counter carries the VF board and no other.
void optMeter_Click(int index)
{
    const int kind = index + 1;
    if (kind == kCtr && asking->kind != kCtr) {
        asking->boardBeforeCtr = asking->board;
        asking->codeBeforeCtr = asking->code;
        asking->board = kVf;
        EnableBoards(false);
    } else if (kind != kCtr && asking->kind == kCtr) {
        asking->board = asking->boardBeforeCtr;
        asking->code = asking->codeBeforeCtr;
        EnableBoards(true);
    }
    asking->kind = kind;
}

void OKButton_Click()
{
    asking->answered = true;
    // The writes behind it take their time, and the answer stands.
    for (QWidget *part : asking->window->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly))
        part->setEnabled(false);
    asking->window->setFocus();
}

void lblMsg_DoubleClick()
{
    if (HardwareMode || asking->answered)
        return;
    ClearSimWord21();
    asking->dropped = true;
}

QGroupBox *BuildMeterGroup()
{
    QGroupBox *fraMeter = Group(asking->window, "fraMeter", "Meter Type");
    auto *row = new QHBoxLayout(fraMeter);
    for (int index = 0; index < static_cast<int>(kKinds.size()); index++) {
        QRadioButton *option =
            Option(fraMeter, Indexed("optMeter", index), kKinds[index], [index] { optMeter_Click(index); });
        SetOption(option, index + 1 == asking->kind);
        row->addWidget(option);
    }
    asking->chkXmtr = Check(fraMeter, "chkXmtr", "Xmtr", nullptr);
    asking->chkXmtr->setChecked(asking->xmtr);
    row->addWidget(asking->chkXmtr);
    return fraMeter;
}

QGroupBox *BuildBoardGroup()
{
    QGroupBox *fraSC = Group(asking->window, "fraSC", "SC Type");
    auto *grid = new QGridLayout(fraSC);
    constexpr int kRows = 4;
    for (int index = 0; index < static_cast<int>(std::size(kBoardChoices)); index++) {
        const BoardChoice &choice = kBoardChoices[index];
        QRadioButton *option = Option(fraSC, Indexed("optSC", index), choice.caption, [index] { optSC_Click(index); });
        SetOption(option, choice.board == asking->board);
        grid->addWidget(option, index % kRows, index / kRows);
        asking->optSC.push_back(option);
    }
    return fraSC;
}

void BuildDialog(bool asksMeter)
{
    Dialog *window = asking->window;
    window->setObjectName("dlgSCType");
    window->setWindowTitle("S/C Board");
    QLabel *lblMsg = Label(window, "lblMsg",
                           "The Signal Conditioner Board has not been initialized. "
                           "Please specify which type of S/C Board is installed.");
    lblMsg->setWordWrap(true);
    lblMsg->setMinimumWidth(360);
    OnDoubleClick(lblMsg, lblMsg_DoubleClick);
    auto *column = new QVBoxLayout(window);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->addWidget(lblMsg);
    QGroupBox *fraMeter = BuildMeterGroup();
    fraMeter->setVisible(asksMeter);
    column->addWidget(fraMeter);
    column->addWidget(BuildBoardGroup());
    QPushButton *OKButton = Button(window, "OKButton", "OK", OKButton_Click);
    OKButton->setMinimumSize(100, 34);
    column->addWidget(OKButton, 0, Qt::AlignHCenter);
}

// What the meter says of itself, as far as it is to be kept.
void TakeFromMeter(Asking &ask, bool asksMeter)
{
    if (!asksMeter) {
        ask.kind = MeterKind;
        ask.xmtr = XmtrFlag;
        ask.board = MeterSCType;
        ask.code = BoardCode;
    }
    if (ask.board < kDc || ask.board > kRtd) {
        ask.board = kDc;
        ask.code = "01";
    }
}

}  // namespace

void AskBoard()
{
    const bool asksMeter = MeterKind < 0 || ShowSCDialogFull == 0;
    Asking ask;
    TakeFromMeter(ask, asksMeter);
    Dialog window(frmOmbrix);
    ask.window = &window;
    asking = &ask;
    const struct Done {
        ~Done() { asking = nullptr; }
    } done;
    BuildDialog(asksMeter);
    const InputGate gate(&window);
    window.show();
    while (!ask.answered && !ask.dropped)
        PumpEvents(kForever);
    if (ask.answered)
        WriteMeterIdentity(ask.kind, ask.chkXmtr->isChecked(), ask.board, ask.code);
}

}  // namespace ombrix
