#include "shell/summary_window.h"

#include "shell/input_gate.h"
#include "shell/main_window.h"
#include "widgets/widgets.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QShortcut>

#include <utility>

namespace ombrix {
namespace {

std::function<std::string()> summarySource;
QPointer<QPushButton> cmdSummary;
QPointer<QWidget> dlgSummary;
QPlainTextEdit *txtSummary = nullptr;

void BuildWindow()
{
    dlgSummary = new QWidget(frmOmbrix, Qt::Window);
    dlgSummary->setObjectName("dlgSummary");
    dlgSummary->setWindowTitle("Summary");
    KeepOpen(dlgSummary);
    txtSummary = new QPlainTextEdit(dlgSummary);
    txtSummary->setObjectName("txtSummary");
    txtSummary->setReadOnly(true);
    txtSummary->setLineWrapMode(QPlainTextEdit::NoWrap);
    QFont font("Courier New");
    font.setStyleHint(QFont::Monospace);
    txtSummary->setFont(font);
    QPushButton *copy = Button(dlgSummary, "cmdSummaryCopy", "Copy",
                               [] { QGuiApplication::clipboard()->setText(txtSummary->toPlainText()); });
    QPushButton *close = Button(dlgSummary, "cmdSummaryClose", "Close", [] { dlgSummary->hide(); });
    QObject::connect(new QShortcut(Qt::Key_Escape, dlgSummary), &QShortcut::activated, dlgSummary, &QWidget::hide);
    auto *row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(copy);
    row->addWidget(close);
    auto *column = new QVBoxLayout(dlgSummary);
    column->addWidget(txtSummary, 1);
    column->addLayout(row);
    dlgSummary->resize(640, 420);
}

void cmdSummary_Click()
{
    if (!dlgSummary)
        BuildWindow();
    txtSummary->setPlainText(Caption(summarySource()));
    dlgSummary->show();
    dlgSummary->raise();
    dlgSummary->activateWindow();
}

}  // namespace

void SetSummarySource(std::function<std::string()> source)
{
    summarySource = std::move(source);
    if (cmdSummary)
        cmdSummary->setVisible(static_cast<bool>(summarySource));
}

QPushButton *BuildSummaryButton(QWidget *parent)
{
    cmdSummary = Button(parent, "cmdSummary", "Summary", cmdSummary_Click);
    cmdSummary->setFocusPolicy(Qt::NoFocus);  // the work keeps its keys
    cmdSummary->setFlat(true);
    cmdSummary->setToolTip("What was done with this meter, to read and to copy");
    KeepOpen(cmdSummary);
    cmdSummary->setVisible(static_cast<bool>(summarySource));
    return cmdSummary;
}

}  // namespace ombrix
