#include "procedures/ratio_view.h"

#include "widgets/page_grid.h"
#include "widgets/page_kit.h"
#include "widgets/readout.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <array>

namespace ombrix {
namespace {

constexpr std::size_t kRanges = 5;
constexpr int kFirstReading = 2;  // column; before it stand the number and the word

// What stands on the page for one of the two words.
struct Side {
    QLabel *stored;
    QTableWidget *grid;
    QPushButton *start;
};

struct View {
    std::array<Side, 2> sides;
    std::array<QRadioButton *, kRanges> optRange;
    QLineEdit *txtReading;
    QLabel *lblRatioProgress;
    QFrame *lblRatioReading;
    struct Buttons {
        QPushButton *select, *save, *done;
    } buttons;
    PageStates states;
};
View view;

const Side &Of(RatioSide side)
{
    return view.sides[static_cast<std::size_t>(side)];
}

const Prompt kPromptFresh = {"Set jumpers and apply input as shown.  Remove the b,c,d,e,f\r\n"
                             "jumpers from the power supply board before connecting the\r\n"
                             "calibrator as an excitation source.  Click \"Start\" to begin.",
                             false, Tone::Works};
const Prompt kPromptSilent = {"The meter did not answer:\r\ncheck its line, then click the step again", true};

std::vector<PageState> TableOfStates()
{
    const auto [select, save, done] = view.buttons;
    QPushButton *const offset = Of(RatioSide::Offset).start;
    QPushButton *const gain = Of(RatioSide::Gain).start;
    std::vector<QWidget *> fresh = {offset, done, view.txtReading};
    fresh.insert(fresh.end(), view.optRange.begin(), view.optRange.end());
    std::vector<QWidget *> tried = fresh;
    tried.push_back(gain);
    std::vector<QWidget *> chosen = tried;
    chosen.push_back(select);
    const auto held = Navigation::Held;
    return {
        // clang-format off
        // state         on      keys to  prompt         not seen  captions  navigation
        {kRatioOpening, {},     nullptr, kPromptFresh,  {select}, {},       held},
        {kRatioSilent,  {done}, nullptr, kPromptSilent, {select}},
        {kRatioFresh,   fresh,  offset,  kPromptFresh,  {select}, {{offset, "Start"}, {gain, "Start"}}, held},
        {kRatioWorking, {},     nullptr, {},            {select}, {},       held},
        {kRatioTried,   tried,  nullptr, {},            {select}, {},       held},
        {kRatioChosen,  chosen, select,  {},            {},       {},       held},
        // clang-format on
    };
}

const std::vector<GridColumn> kOffsetColumns = {{"", 5}, {"CALBGND", 11}, {"+11V", 11}, {"+5.5V", 11}};
const std::vector<GridColumn> kGainColumns = {{"", 5}, {"CALBRDN", 11}, {"+10V", 11}};

QGroupBox *BuildConditions(QFrame *frame, const RatioHandlers &handlers)
{
    QGroupBox *group = Group(frame, "fraRatioConditions", "Conditions");
    auto *row = new QHBoxLayout(group);
    for (std::size_t i = 0; i < kRanges; ++i) {
        const auto index = static_cast<int>(i);
        view.optRange[i] =
            Option(group, Indexed("optRange", index), "", [index, range = handlers.range] { range(index); });
        row->addWidget(view.optRange[i]);
    }
    row->addStretch();
    row->addWidget(Label(group, "lblReadingCaption", "Target, +10 V"));
    view.txtReading = Field(
        group, "txtReading", NumberKeys(), [](const std::string &, CommitBy) {}, handlers.reading);
    view.txtReading->setToolTip("Reading that the gain trial is to reach at +10 V");
    view.txtReading->setMaximumWidth(view.txtReading->fontMetrics().horizontalAdvance("88888888"));
    row->addWidget(view.txtReading);
    view.buttons.save = Button(group, "cmdRatioSave", "Save", handlers.save);
    view.buttons.save->setToolTip("Keeps range and reading for the next meter of this family");
    row->addWidget(view.buttons.save);
    return group;
}

// `name` as in msgOffset and cmdOffset, `word` as in lblCALBGND.
QGroupBox *BuildSide(QFrame *frame, RatioSide which, const char *name, const char *word, const RatioHandlers &handlers)
{
    Side &side = view.sides[static_cast<std::size_t>(which)];
    QGroupBox *group = Group(frame, QString("fra") + name, name);
    side.stored = Title(group, QString("lbl") + word);
    side.grid = Grid(group, QString("msg") + name, [which, choose = handlers.row](int row) { choose(which, row); });
    side.start = Button(group, QString("cmd") + name, "Start", [which, start = handlers.start] { start(which); });
    side.start->setMinimumHeight(side.start->fontMetrics().height() * 5 / 2);
    auto *head = new QHBoxLayout;
    head->addWidget(Label(group, QString("lbl%1Caption").arg(word), std::string(word) + " ="));
    head->addWidget(side.stored);
    head->addStretch();
    head->addWidget(side.start);
    auto *column = new QVBoxLayout(group);
    column->addLayout(head);
    column->addWidget(side.grid, 1);
    return group;
}

QHBoxLayout *BuildEnd(QFrame *frame, const RatioHandlers &handlers)
{
    view.buttons.select = Button(frame, "cmdRatioSelect", "Select", handlers.select, "Alt+S");
    view.buttons.done = Button(frame, "cmdRatioDone", "Done", handlers.done, "Alt+D");
    KeepPlace(view.buttons.select);
    auto *row = new QHBoxLayout;
    for (QPushButton *button : {view.buttons.select, view.buttons.done}) {
        MakeLarge(button);
        row->addWidget(button);
    }
    view.lblRatioProgress = Label(frame, "lblRatioProgress");
    view.lblRatioReading = Readout(frame, "lblRatioReading");
    row->addStretch();
    row->addWidget(view.lblRatioProgress);
    row->addWidget(view.lblRatioReading);
    return row;
}

}  // namespace

void BuildRatioView(QFrame *frame, const RatioHandlers &handlers)
{
    LivesWith(frame, view);
    auto *column = new QVBoxLayout(frame);
    QLabel *title = Title(frame, "lblRatioTitle");
    title->setText("RATIO");
    column->addWidget(title);
    column->addWidget(BuildConditions(frame, handlers));
    auto *trials = new QHBoxLayout;
    trials->addWidget(BuildSide(frame, RatioSide::Offset, "Offset", "CALBGND", handlers), 4);
    trials->addWidget(BuildSide(frame, RatioSide::Gain, "Gain", "CALBRDN", handlers), 3);
    column->addLayout(trials, 1);
    QFrame *instruction = Instruction(frame, 6, 3);
    KeepPlace(instruction);
    column->addWidget(instruction);
    column->addLayout(BuildEnd(frame, handlers));
    SetGridColumns(Of(RatioSide::Offset).grid, kOffsetColumns);
    SetGridColumns(Of(RatioSide::Gain).grid, kGainColumns);
    view.states = {frame, instruction, TableOfStates()};
    ShowPageState(view.states, kRatioOpening);
}

void ShowRatioState(RatioState state)
{
    ShowPageState(view.states, state);
}

void ShowRatioState(RatioState state, const Prompt &prompt)
{
    ShowPageState(view.states, state, prompt);
}

void ShowRatioPrompt(const Prompt &prompt)
{
    ShowPrompt(view.states, prompt);
}

RatioState RatioStateNow()
{
    return static_cast<RatioState>(view.states.now);
}

void EnableRatioSave(bool on)
{
    view.buttons.save->setEnabled(on);
}

void ShowRatioConditions(const std::vector<std::string> &ranges, int chosen, const std::string &reading)
{
    for (std::size_t i = 0; i < kRanges; ++i) {
        view.optRange[i]->setVisible(i < ranges.size());
        if (i < ranges.size())
            view.optRange[i]->setText(Caption(ranges[i]));
        SetOption(view.optRange[i], static_cast<int>(i) == chosen);
    }
    SetField(view.txtReading, reading);
}

void ShowStoredWord(RatioSide side, const std::string &word)
{
    Of(side).stored->setText(Caption(word));
}

void ClearTrials(RatioSide side)
{
    ClearGrid(Of(side).grid);
}

void AddTrial(RatioSide side, int number, const std::string &word)
{
    QTableWidget *grid = Of(side).grid;
    MarkGridRow(grid, AddGridRow(grid, {std::to_string(number), word}, 1));
}

void MarkTrial(RatioSide side, int row)
{
    MarkGridRow(Of(side).grid, row);
}

void ShowTrialReading(RatioSide side, int excitation, const std::string &text)
{
    QTableWidget *grid = Of(side).grid;
    SetGridCell(grid, grid->rowCount() - 1, kFirstReading + excitation, text);
}

void OfferRepeat(RatioSide side)
{
    Of(side).start->setText("Repeat");
    EnableAndFocus(Of(side).start);
}

void ShowRatioProgress(const std::string &words)
{
    view.lblRatioProgress->setText(Caption(words));
}

void ShowRatioReading(const std::string &text)
{
    ShowLive(view.lblRatioReading, text);
}

void FreezeRatioReading()
{
    Freeze(view.lblRatioReading);
}

void ClearRatioReading()
{
    ClearReadout(view.lblRatioReading);
}

}  // namespace ombrix
