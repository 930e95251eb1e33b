#include "shell/trace_window.h"

#include "links/wire_text.h"
#include "platform/clock.h"
#include "platform/fault.h"
#include "platform/safe_file.h"
#include "session/outlets.h"
#include "session/procedure.h"
#include "session/state.h"
#include "shell/input_gate.h"
#include "shell/main_window.h"
#include "shell/trace_start.h"
#include "widgets/widgets.h"

#include <QAbstractTableModel>
#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QHideEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <deque>
#include <optional>
#include <utility>

namespace ombrix {
namespace {

constexpr std::size_t kRecords = std::size_t{4} * kTraceRows;  // looked through for the rows of an opening
constexpr int kLookMs = 100;
constexpr std::size_t kNone = SIZE_MAX;

enum Column { kTime, kLine, kWay, kBytes, kMeaning, kColumns };
enum LineChoice { kBothLines, kMeterLine, kCalibratorLine };

// The rows that the window shows, the oldest first.
class TraceRows : public QAbstractTableModel
{
public:
    using QAbstractTableModel::QAbstractTableModel;

    int rowCount(const QModelIndex &parent) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(rows.size());
    }
    int columnCount(const QModelIndex &parent) const override { return parent.isValid() ? 0 : kColumns; }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        static const char *const kHeads[kColumns] = {"Time (UTC)", "Line", "Way", "What passed", "What it means"};
        return orientation == Qt::Horizontal && role == Qt::DisplayRole ? kHeads[section] : QVariant();
    }
    QVariant data(const QModelIndex &index, int role) const override
    {
        const WireRow &row = rows[static_cast<std::size_t>(index.row())];
        if (role == Qt::DisplayRole || (role == Qt::ToolTipRole && index.column() >= kBytes))  // it may be cut
            return QString::fromStdString(Text(row, index.column()));
        if (row.way != ByteWay::Mark)
            return {};
        if (role == Qt::BackgroundRole)
            return Red();
        return role == Qt::ForegroundRole ? QVariant(QColor(Qt::white)) : QVariant();
    }

    void Fill(std::vector<WireRow> all)
    {
        beginResetModel();
        const std::size_t over = all.size() - std::min<std::size_t>(all.size(), kTraceRows);
        rows.assign(std::make_move_iterator(all.begin() + static_cast<std::ptrdiff_t>(over)),
                    std::make_move_iterator(all.end()));
        endResetModel();
    }

    void Add(std::vector<WireRow> more)
    {
        if (more.empty())
            return;
        if (more.size() >= kTraceRows)
            return Fill(std::move(more));
        const int first = static_cast<int>(rows.size());
        beginInsertRows({}, first, first + static_cast<int>(more.size()) - 1);
        std::move(more.begin(), more.end(), std::back_inserter(rows));
        endInsertRows();
        const int over = static_cast<int>(rows.size()) - kTraceRows;
        if (over <= 0)
            return;
        beginRemoveRows({}, 0, over - 1);
        rows.erase(rows.begin(), rows.begin() + over);
        endRemoveRows();
    }

    std::deque<WireRow> rows;

private:
    static std::string Text(const WireRow &row, int column)
    {
        switch (column) {
        case kTime:
            return MomentText(row.micros, false);
        case kLine:
            return std::string(NameOfLine(row.line));
        case kWay:
            return row.way == ByteWay::Mark ? "" : std::string(NameOfWay(row.way));
        case kBytes:
            return row.way == ByteWay::Mark ? row.bytes : ShownBytes(row.bytes);
        default:
            return row.meaning;
        }
    }
};

// What the window knows.
struct TraceView {
    TraceRows *rows = nullptr;
    bool oldRun = false;
    bool paused = false;
    int line = kBothLines;
    WireReader reader;
    std::vector<WireRow> fresh;  // complete since the last look
    int follower = 0;            // 0: nothing is followed
    bool lookPlanned = false;
    bool saving = false;
};
TraceView view;

QPointer<QWidget> dlgTrace;
QTableView *tblTrace = nullptr;
QComboBox *cboTraceRun = nullptr;
QComboBox *cboTraceLine = nullptr;
QCheckBox *chkTracePause = nullptr;
QLineEdit *txtTraceFind = nullptr;
QLabel *lblTraceFound = nullptr;
QLabel *lblTraceFailure = nullptr;
QPushButton *cmdTraceFailure = nullptr;
QPushButton *cmdTraceSave = nullptr;

bool IsChosen(const WireRow &row)
{
    return view.line == kBothLines || (view.line == kMeterLine) == (row.line == TraceLine::Meter);
}

std::vector<TraceRecord> RecordsOfRun(std::size_t most)
{
    return view.oldRun ? ReadTraceBytes(ReadFile(OldTracePath()).value_or(""), most) : LastTraceRecords(most);
}

// ---- what is shown ----

// The row of the last mark, kNone without one.
std::size_t LastFailure()
{
    const auto &rows = view.rows->rows;
    for (std::size_t at = rows.size(); at > 0; --at)
        if (rows[at - 1].way == ByteWay::Mark)
            return at - 1;
    return kNone;
}

void ShowFailure()
{
    const std::size_t at = LastFailure();
    cmdTraceFailure->setEnabled(at != kNone);
    if (at == kNone)
        return lblTraceFailure->clear();
    const WireRow &row = view.rows->rows[at];
    const QString words = QString::fromStdString(MomentText(row.micros, false) + "  " + row.bytes);
    lblTraceFailure->setText(words);
    lblTraceFailure->setToolTip(words);
}

void GoTo(std::size_t row)
{
    tblTrace->selectRow(static_cast<int>(row));
    tblTrace->scrollTo(view.rows->index(static_cast<int>(row), kTime), QAbstractItemView::PositionAtCenter);
}

// All anew from the ring or from the file of the run before.
void FillRows()
{
    view.reader = {};
    view.fresh.clear();
    std::vector<WireRow> rows;
    for (const TraceRecord &record : RecordsOfRun(kRecords))
        view.reader.Take(record, rows);
    if (view.oldRun)
        view.reader.TakeRest(rows);
    std::erase_if(rows, [](const WireRow &row) { return !IsChosen(row); });
    view.rows->Fill(std::move(rows));
    tblTrace->scrollToBottom();
    ShowFailure();
}

void AddFresh()
{
    if (view.fresh.empty())
        return;
    const QScrollBar *bar = tblTrace->verticalScrollBar();
    const bool atEnd = bar->value() == bar->maximum();
    const bool failed =
        std::any_of(view.fresh.begin(), view.fresh.end(), [](const WireRow &row) { return row.way == ByteWay::Mark; });
    view.rows->Add(std::exchange(view.fresh, {}));
    if (atEnd)
        tblTrace->scrollToBottom();
    if (failed)
        ShowFailure();
}

void PlanLook()
{
    if (std::exchange(view.lookPlanned, true))
        return;
    CallAfter(kLookMs, [window = dlgTrace] {
        if (!window)
            return;
        view.lookPlanned = false;
        AddFresh();
    });
}

void TakeRecord(const TraceRecord &record)
{
    std::vector<WireRow> rows;
    view.reader.Take(record, rows);
    for (WireRow &row : rows)
        if (IsChosen(row))
            view.fresh.push_back(std::move(row));
    if (view.fresh.size() > kTraceRows)
        view.fresh.erase(view.fresh.begin(), view.fresh.end() - kTraceRows);
    if (!view.fresh.empty())
        PlanLook();
}

// Follows what is said while the window is seen, shows this run and isn't paused.
void FollowOrNot(bool seen)
{
    const bool wanted = seen && !view.oldRun && !view.paused;
    if (wanted == (view.follower != 0))
        return;
    if (!wanted) {
        StopFollowingTrace(std::exchange(view.follower, 0));
        return;
    }
    FillRows();
    view.follower = FollowTrace(TakeRecord);
}

// ---- find ----

bool Holds(const WireRow &row, const QString &text)
{
    return QString::fromStdString(ShownBytes(row.bytes)).contains(text, Qt::CaseInsensitive) ||
           QString::fromStdString(row.meaning).contains(text, Qt::CaseInsensitive);
}

// From the row behind the chosen one, and on from the first.
void FindNext()
{
    const QString text = txtTraceFind->text();
    const auto &rows = view.rows->rows;
    const QModelIndex chosen = tblTrace->currentIndex();
    const std::size_t begin = chosen.isValid() ? static_cast<std::size_t>(chosen.row()) + 1 : 0;
    lblTraceFound->clear();
    for (std::size_t i = 0; !text.isEmpty() && i < rows.size(); ++i)
        if (const std::size_t at = (begin + i) % rows.size(); Holds(rows[at], text))
            return GoTo(at);
    if (!text.isEmpty())
        lblTraceFound->setText("not found");
}

// ---- the handlers ----

void cmdTraceFailure_Click()
{
    if (view.paused && !view.oldRun)
        FillRows();  // it may have come since
    else
        AddFresh();
    if (const std::size_t at = LastFailure(); at != kNone)
        GoTo(at);
}

void cboTraceLine_Change(int index)
{
    view.line = index;
    FillRows();
}

void cboTraceRun_Change(int index)
{
    view.oldRun = index == 1;
    chkTracePause->setEnabled(!view.oldRun);
    FollowOrNot(true);
    if (view.oldRun || view.paused)
        FillRows();
}

void chkTracePause_Click()
{
    view.paused = chkTracePause->isChecked();
    AddFresh();
    FollowOrNot(true);
}

void cmdTraceSave_Click()
{
    if (view.saving)
        return;
    const ScopedFlag saving(view.saving);
    const std::string title = "Save trace";
    const std::string path = outlets.nameFile(title, "Text (*.txt)", "trace.txt");
    if (path.empty() || (QFileInfo::exists(QString::fromStdString(path)) &&
                         !outlets.askOperator(path + " is there already.\r\nReplace it?", title)))
        return;
    std::string text;
    for (const WireRow &row : WireRows(RecordsOfRun(SIZE_MAX)))
        text += WireText(row) + "\n";
    const std::string trouble = WriteFile(path, text);
    if (!trouble.empty())
        outlets.warnOperator("The trace is not saved: " + trouble, title);
}

// ---- the window ----

class TraceWindow : public QWidget
{
public:
    using QWidget::QWidget;
    ~TraceWindow() override { StopFollowingTrace(std::exchange(view.follower, 0)); }

protected:
    void hideEvent(QHideEvent *event) override
    {
        QWidget::hideEvent(event);
        if (event->spontaneous())
            return;  // to the task bar: it comes back without being opened
        FollowOrNot(false);
        view.rows->Fill({});
    }
};

QComboBox *Choice(QWidget *parent, const char *name, const QStringList &choices, void (*change)(int))
{
    auto *box = new QComboBox(parent);
    box->setObjectName(name);
    box->addItems(choices);
    QObject::connect(box, &QComboBox::activated, box,
                     [change](int index) { RunHandler([change, index] { change(index); }); });
    return box;
}

void BuildTable(QWidget *parent)
{
    view.rows = new TraceRows(parent);
    tblTrace = new QTableView(parent);
    tblTrace->setObjectName("tblTrace");
    tblTrace->setModel(view.rows);
    tblTrace->setSelectionBehavior(QAbstractItemView::SelectRows);
    tblTrace->setSelectionMode(QAbstractItemView::SingleSelection);
    tblTrace->setShowGrid(false);
    tblTrace->setAlternatingRowColors(true);
    tblTrace->setWordWrap(false);
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(parent->font().pointSizeF());
    tblTrace->setFont(font);
    tblTrace->setTabKeyNavigation(false);
    const QFontMetrics letters(font);
    tblTrace->verticalHeader()->hide();
    tblTrace->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);  // rows are never measured one by one
    tblTrace->verticalHeader()->setDefaultSectionSize(letters.height() + 4);
    tblTrace->horizontalHeader()->setStretchLastSection(true);
    tblTrace->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    constexpr int kLetters[] = {14, 12, 10, 44};
    for (int column = kTime; column < kMeaning; ++column)
        tblTrace->setColumnWidth(column, kLetters[column] * letters.horizontalAdvance('0'));
}

QHBoxLayout *BuildChoices(QWidget *parent)
{
    cboTraceRun = Choice(parent, "cboTraceRun", {"This run", "A run without goodbye"}, cboTraceRun_Change);
    cboTraceLine = Choice(parent, "cboTraceLine", {"Both lines", "Meter", "Calibrator"}, cboTraceLine_Change);
    chkTracePause = Check(parent, "chkTracePause", "Pause", chkTracePause_Click);
    txtTraceFind = new QLineEdit(parent);
    txtTraceFind->setObjectName("txtTraceFind");
    txtTraceFind->setPlaceholderText("Find (Enter: the next)");
    txtTraceFind->setClearButtonEnabled(true);
    QObject::connect(txtTraceFind, &QLineEdit::returnPressed, txtTraceFind, [] { RunHandler(FindNext); });
    lblTraceFound = Label(parent, "lblTraceFound");
    auto *row = new QHBoxLayout;
    row->addWidget(cboTraceRun);
    row->addWidget(cboTraceLine);
    row->addWidget(chkTracePause);
    row->addWidget(txtTraceFind, 1);
    row->addWidget(lblTraceFound);
    return row;
}

QHBoxLayout *BuildCommands(QWidget *parent)
{
    cmdTraceFailure = Button(parent, "cmdTraceFailure", "Last failure", cmdTraceFailure_Click, "Alt+L");
    lblTraceFailure = Label(parent, "lblTraceFailure");
    lblTraceFailure->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);  // never widens the window
    auto *row = new QHBoxLayout;
    row->addWidget(cmdTraceFailure);
    row->addWidget(lblTraceFailure, 1);
    cmdTraceSave = Button(parent, "cmdTraceSave", "Save...", cmdTraceSave_Click, "Alt+S");
    row->addWidget(cmdTraceSave);
    row->addWidget(Button(parent, "cmdTraceClose", "Close", [] { dlgTrace->hide(); }));
    return row;
}

void BuildWindow()
{
    view = {};
    dlgTrace = new TraceWindow(frmOmbrix, Qt::Window);
    dlgTrace->setObjectName("dlgTrace");
    dlgTrace->setWindowTitle("What is said on the lines");
    KeepOpen(dlgTrace);
    auto *column = new QVBoxLayout(dlgTrace);
    column->addLayout(BuildChoices(dlgTrace));
    BuildTable(dlgTrace);
    column->addWidget(tblTrace, 1);
    column->addLayout(BuildCommands(dlgTrace));
    QObject::connect(new QShortcut(Qt::Key_Escape, dlgTrace), &QShortcut::activated, dlgTrace, &QWidget::hide);
    BarSave(ProcedureRunning());
    dlgTrace->resize(980, 560);
}

}  // namespace

void ShowTraceWindow()
{
    if (!dlgTrace)
        BuildWindow();
    if (!dlgTrace->isVisible()) {
        const bool old = !OldTracePath().empty();
        view.oldRun = old && OldTraceIsNews() && LastTraceRecords(1).empty();
        cboTraceRun->setVisible(old);
        cboTraceRun->setCurrentIndex(view.oldRun ? 1 : 0);
        chkTracePause->setEnabled(!view.oldRun);
        chkTracePause->setChecked(false);
        view.paused = false;
        dlgTrace->show();
        if (view.oldRun)
            FillRows();
        else
            FollowOrNot(true);
    }
    dlgTrace->raise();
    dlgTrace->activateWindow();
}

void BarSave(bool procedureStands)
{
    if (!dlgTrace)
        return;
    cmdTraceSave->setEnabled(!procedureStands);
    cmdTraceSave->setToolTip(procedureStands ? "Save when the procedure has ended" : "Alt+S");
}

}  // namespace ombrix
