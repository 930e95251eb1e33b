#include "procedures/analog_view.h"

#include "session/page_frame.h"
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

#include <vector>

namespace ombrix {
namespace {

constexpr int kPointsOfFirst = 6;  // of the first output; the rest is a dual DAC's second
constexpr int kInstruction = 12;   // lblInst, as the page

struct View {
    QLabel *lblAnalogPoint, *lblEnter, *lblDesired, *lblModal, *lblModalPoint, *lblSetMeter;
    QFrame *fraModal, *fraReading, *shpSetMeter, *shpMeterVal, *lblDistance;
    QLineEdit *txtRead, *txtMeterVal;
    std::array<QLabel *, kAnalogWords> lblLast;
    std::array<QLineEdit *, kAnalogWords> txtLast;
    std::array<QLabel *, 2> lblPL;
    std::array<QRadioButton *, 4> optDAC;
    std::array<QRadioButton *, 3> optAnaMode;
    std::array<QRadioButton *, 2> optCalVfy, optCOffCalibPt;
    QPushButton *cmdUp, *cmdDown, *cmdAccept, *cmdWord, *cmdDone, *cmdModal;
    PageStates states;
};
View view;

const Prompt kPromptOpening = {"Preparing the meter for its analog output", false, Tone::Works};
const Prompt kPromptSilent = {"The meter did not answer:\r\ncheck its line, then click the step again", true};
const Prompt kPromptNoPoint = {"Click a step, or \"Up\" for the first one"};
const Prompt kPromptWorking = {"Writing to the meter", false, Tone::Works};
const Prompt kPromptCable = {"Connect the cable, then click \"OK\""};
const Prompt kPromptVerify = {"Type a value for the meter's output, then Enter, and read the output meter"};
const Prompt kPromptLeaving = {"Setting the output to 0 and giving the meter its own settings back", false,
                               Tone::Works};

template <class Array> void Add(std::vector<QWidget *> &list, const Array &widgets)
{
    list.insert(list.end(), widgets.begin(), widgets.end());
}

std::vector<PageState> TableOfStates()
{
    std::vector<QWidget *> idle = {view.cmdUp, view.cmdDown, view.cmdAccept, view.cmdWord, view.cmdDone};
    for (const auto &list : {view.optCalVfy, view.optCOffCalibPt})
        Add(idle, list);
    Add(idle, view.optDAC);
    Add(idle, view.lblPL);
    std::vector<QWidget *> point = idle;
    point.push_back(view.txtRead);
    std::vector<QWidget *> verify = {view.txtMeterVal, view.cmdWord, view.cmdDone};
    Add(verify, view.optCalVfy);
    Add(verify, view.optAnaMode);
    const std::vector<QWidget *> value = {view.shpSetMeter, view.shpMeterVal, view.fraModal};
    return {
        // clang-format off
        // state    on               keys to           prompt           not seen
        {kAnalogOpening,  {},              nullptr,          kPromptOpening,  value},
        {kAnalogSilent,   {view.cmdDone},  nullptr,          kPromptSilent,   value},
        {kAnalogAway,     {view.cmdUp},    view.cmdUp,       kPromptNoPoint,  value},
        {kAnalogNoPoint,  idle,            view.cmdUp,       kPromptNoPoint,  value},
        {kAnalogPoint,    point,           view.txtRead,     {},              value},
        {kAnalogWorking,  {},              nullptr,          kPromptWorking,  {view.fraModal}},
        {kAnalogCable,    {view.cmdModal}, view.cmdModal,    kPromptCable,    {view.shpSetMeter, view.shpMeterVal, view.fraReading}},
        {kAnalogVerify,   verify,          view.txtMeterVal, kPromptVerify,   {view.fraModal, view.fraReading}},
        {kAnalogLeaving,  {},              nullptr,          kPromptLeaving,  {view.fraModal}},
        // clang-format on
    };
}

// ---- the way it is built ----

template <std::size_t count>
QGroupBox *BuildOptions(QFrame *frame, const char *name, const char *title, std::array<QRadioButton *, count> &options,
                        const std::array<const char *, count> &captions, const std::function<void(int)> &click)
{
    QGroupBox *group = Group(frame, QString("fra") + name, title);
    auto *column = new QVBoxLayout(group);
    for (std::size_t i = 0; i < count; ++i) {
        const int index = static_cast<int>(i);
        const QString option = Indexed((std::string("opt") + name).c_str(), index);
        options[i] = Option(group, option, captions[i], [click, index] { click(index); });
        column->addWidget(options[i]);
    }
    column->addStretch(1);
    return group;
}

QHBoxLayout *BuildChoices(QFrame *frame, const AnalogHandlers &handlers)
{
    auto *row = new QHBoxLayout;
    row->addWidget(
        BuildOptions<2>(frame, "CalVfy", "Work", view.optCalVfy, {"Calibrate Mode", "Verify Mode"}, handlers.calVfy));
    row->addWidget(BuildOptions<4>(frame, "DAC", "Meter's DAC", view.optDAC,
                                   {"12- bit DAC", "Xmtr DAC", "Bipolar Output", "Dual DAC"}, handlers.dac));
    row->addWidget(
        BuildOptions<3>(frame, "AnaMode", "Output", view.optAnaMode, {"Voltage", "Current", "BiPolar"}, handlers.mode));
    row->addWidget(BuildOptions<2>(frame, "COffCalibPt", "Current Offset at", view.optCOffCalibPt, {"200 uA", "4 mA"},
                                   handlers.currentPoint));
    return row;
}

void MakeLarger(QLabel *label)
{
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 1.25);
    label->setFont(font);
}

QLineEdit *LargeField(QFrame *frame, const QString &name, const char *keys, Commit commit)
{
    QLineEdit *field = Field(frame, name, AnyOf(keys), std::move(commit));
    QFont font = field->font();
    font.setPointSize(kRoomPoints * 2 / 3);
    field->setFont(font);
    field->setAlignment(Qt::AlignRight);
    field->setMaxLength(12);
    field->setFixedWidth(field->fontMetrics().horizontalAdvance("-10000.0000"));
    return field;
}

QFrame *BuildReading(QFrame *frame, const AnalogHandlers &handlers)
{
    view.fraReading = new QFrame(frame);
    view.lblEnter = Label(view.fraReading, "lblEnter");
    view.lblDesired = Label(view.fraReading, "lblDesired");
    MakeLarger(view.lblDesired);
    view.txtRead = LargeField(view.fraReading, "txtRead", "0123456789+-.,", handlers.typed);
    view.txtRead->setToolTip("What the output meter shows, then Enter. A comma is a decimal sign too");
    view.lblDistance = Readout(view.fraReading, "lblDistance");
    MakeLarger(view.lblDistance->findChild<QLabel *>("lblDistanceMark"));  // the tolerance stands there
    auto *grid = new QGridLayout(view.fraReading);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(view.lblDesired, 0, 0, 1, 3);
    grid->addWidget(view.lblEnter, 1, 0);
    grid->addWidget(view.txtRead, 1, 1);
    grid->addWidget(view.lblDistance, 1, 2);
    grid->setColumnStretch(2, 1);
    return view.fraReading;
}

QHBoxLayout *BuildValue(QFrame *frame, const AnalogHandlers &handlers)
{
    view.shpSetMeter = Shape(frame, "shpSetMeter");
    view.lblSetMeter = Label(view.shpSetMeter, "lblSetMeter", "Set Meter To");
    (new QHBoxLayout(view.shpSetMeter))->addWidget(view.lblSetMeter);
    view.shpMeterVal = Shape(frame, "shpMeterVal");
    view.txtMeterVal = LargeField(view.shpMeterVal, "txtMeterVal", "0123456789", handlers.value);
    view.txtMeterVal->setToolTip("20000 is full scale, on a counter 100000");
    view.txtMeterVal->setMaxLength(8);
    (new QHBoxLayout(view.shpMeterVal))->addWidget(view.txtMeterVal);
    auto *row = new QHBoxLayout;
    row->addWidget(view.shpSetMeter);
    row->addWidget(view.shpMeterVal);
    row->addStretch(1);
    return row;
}

QLineEdit *LastReading(QFrame *frame, int point)
{
    QLineEdit *last = Field(frame, Indexed("txtLast", point), AnyOf(""), nullptr);
    last->setReadOnly(true);
    last->setFocusPolicy(Qt::NoFocus);
    last->setFrame(false);
    last->setAlignment(Qt::AlignRight);
    last->setToolTip(Caption(AnalogWordTitle(point) + ", in" + AnalogUnit(point)));
    QPalette shown;  // all else of it follows the theme
    shown.setColor(QPalette::Base, Qt::transparent);
    last->setPalette(shown);
    return last;
}

// The last readings below the names of their words: the first output's, then those of a dual DAC's second.
QGridLayout *BuildLast(QFrame *frame)
{
    auto *grid = new QGridLayout;
    grid->setVerticalSpacing(2);
    view.lblPL = {Label(frame, "lblPL(0)", "Last readings"), Label(frame, "lblPL(1)", "of output 2")};
    grid->addWidget(view.lblPL[0], 1, 0);
    grid->addWidget(view.lblPL[1], 3, 0);
    for (int point = 0; point < kAnalogWords; ++point) {
        const int row = point < kPointsOfFirst ? 0 : 2;
        const int column = point % kPointsOfFirst + 1;
        QLineEdit *last = LastReading(frame, point);
        view.txtLast[static_cast<std::size_t>(point)] = last;
        QLabel *name = Label(frame, Indexed("lblLast", point), AnalogWordName(point));
        view.lblLast[static_cast<std::size_t>(point)] = name;
        grid->addWidget(name, row, column, Qt::AlignRight);
        grid->addWidget(last, row + 1, column);
        KeepPlace(name);
        KeepPlace(last);
    }
    KeepPlace(view.lblPL[1]);
    return grid;
}

QFrame *BuildModal(QFrame *frame, const AnalogHandlers &handlers)
{
    view.fraModal = Shape(frame, "fraModal");
    view.lblModal = Label(view.fraModal, "lblModal");
    view.lblModalPoint = Label(view.fraModal, "lblModalPoint");
    for (QLabel *label : {view.lblModal, view.lblModalPoint}) {
        MakeLarger(label);
        label->setWordWrap(true);
        label->setAlignment(Qt::AlignCenter);
    }
    SetFill(view.fraModal, Cyan());
    view.cmdModal = Button(view.fraModal, "cmdModal", "OK", handlers.cable);
    MakeLarge(view.cmdModal);
    auto *column = new QVBoxLayout(view.fraModal);
    for (QLabel *label : {view.lblModal, view.lblModalPoint})
        column->addWidget(label);
    column->addWidget(view.cmdModal, 0, Qt::AlignHCenter);
    return view.fraModal;
}

QHBoxLayout *BuildButtons(QFrame *frame, const AnalogHandlers &handlers)
{
    view.cmdUp = Button(frame, "cmdUp", "Up", handlers.up, "Alt+U");
    view.cmdDown = Button(frame, "cmdDown", "Down", handlers.down, "Alt+N");
    view.cmdAccept = Button(frame, "cmdAnaCal(0)", "Accept", handlers.accept, "Alt+A");
    view.cmdWord = Button(frame, Indexed("cmdNVMWord", 6), "*", handlers.raw);
    view.cmdDone = Button(frame, "cmdAnaCal(1)", "Done", handlers.done, "Alt+D");
    view.cmdWord->setToolTip("One to four words of the meter by their number");
    view.cmdUp->setToolTip("The next point (Alt+U)");
    view.cmdDown->setToolTip("The point before (Alt+N)");
    view.cmdAccept->setToolTip("The station learns from this meter's words (Alt+A)");
    view.cmdDone->setToolTip("Output 0, and the meter gets its own settings back (Alt+D)");
    QHBoxLayout *row = ButtonRow({view.cmdUp, view.cmdDown, view.cmdAccept, view.cmdWord, view.cmdDone});
    view.cmdWord->setFixedWidth(view.cmdWord->minimumHeight());  // square: the row has no room for a fifth large one
    return row;
}

// Of the points that the meter's DAC hasn't there is nothing to be seen.
void ShowPointsOfDac(int dacType)
{
    for (std::size_t i = 0; i < view.txtLast.size(); ++i) {
        const bool has = HasAnalogPoint(dacType, static_cast<int>(i));
        view.lblLast[i]->setVisible(has);
        view.txtLast[i]->setVisible(has);
    }
    view.lblPL[1]->setVisible(dacType == kDacDual);
}

}  // namespace

void BuildAnalogView(QFrame *frame, const AnalogHandlers &handlers)
{
    LivesWith(frame, view);
    auto *column = new QVBoxLayout(frame);
    view.lblAnalogPoint = Title(frame, "lblAnalogPoint");
    column->addWidget(view.lblAnalogPoint);
    column->addLayout(BuildChoices(frame, handlers));
    column->addWidget(BuildReading(frame, handlers));
    column->addLayout(BuildValue(frame, handlers));
    column->addWidget(BuildModal(frame, handlers));
    column->addLayout(BuildLast(frame));
    column->addStretch(1);
    QFrame *instruction = Instruction(frame, kInstruction, 2);
    column->addWidget(instruction);
    column->addLayout(BuildButtons(frame, handlers));
    view.states = {frame, instruction, TableOfStates()};
    ShowAnalogState(kAnalogOpening);
}

void ShowAnalogState(AnalogState state)
{
    ShowPageState(view.states, state);
}

void ShowAnalogState(AnalogState state, const Prompt &prompt)
{
    ShowPageState(view.states, state, prompt);
}

void ShowAnalogPrompt(const Prompt &prompt)
{
    ShowPrompt(view.states, prompt);
}

AnalogState AnalogStateNow()
{
    return static_cast<AnalogState>(view.states.now);
}

void ShowAnalogChoices(const AnalogChoices &choices)
{
    ShowPointsOfDac(choices.dacType);
    SetOption(view.optDAC.at(static_cast<std::size_t>(choices.dacType)), true);
    for (std::size_t kind = 0; kind < view.optAnaMode.size(); ++kind)
        SetOption(view.optAnaMode[kind], static_cast<int>(kind) == choices.kind);
    SetOption(view.optCalVfy[choices.verify ? 1 : 0], true);
    SetOption(view.optCOffCalibPt[choices.currentPoint == 4000 ? 1 : 0], true);
    ShowAnalogDiagram(choices.kind == kBipolarOutput ? 1 : 0, choices.dacType == kDacDual);
}

void ShowAnalogPoint(const std::string &title, const std::string &enter, const std::string &desired)
{
    view.lblAnalogPoint->setText(Caption(title));
    view.lblEnter->setText(Caption(enter));
    view.lblDesired->setText(Caption(desired));
}

void ShowLastReadings(const std::array<std::string, kAnalogWords> &readings)
{
    for (std::size_t point = 0; point < readings.size(); ++point)
        SetField(view.txtLast[point], readings[point]);
}

void ShowDistance(const std::string &distance, bool inside, const std::string &words)
{
    if (distance.empty())
        ClearReadout(view.lblDistance);
    else
        ShowVerdict(view.lblDistance, distance, inside, words);
}

void ShowCableText(const std::string &text, const std::string &more)
{
    view.lblModal->setText(Caption(text));
    view.lblModalPoint->setText(Caption(more));
    view.lblModalPoint->setVisible(!more.empty());
}

void ClearTypedReading()
{
    SetField(view.txtRead, "");
}

void ClearTypedValue()
{
    SetField(view.txtMeterVal, "");
}

void SelectTyped()
{
    for (QLineEdit *field : {view.txtRead, view.txtMeterVal})
        if (field->hasFocus())
            field->selectAll();
}

}  // namespace ombrix
