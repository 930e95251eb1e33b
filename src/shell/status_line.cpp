#include "shell/status_line.h"

#include "platform/clock.h"
#include "shell/summary_window.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QStatusBar>

#include <algorithm>
#include <vector>

namespace ombrix {
namespace {

constexpr int kLookMs = 1000;

QLabel *lblProgress = nullptr;
QFrame *shpBusy = nullptr;  // the busy mark
QLabel *lblWait = nullptr;
QLabel *lblRemark = nullptr;
QLabel *lblKeptRemark = nullptr;

struct Wait {
    std::string text;
    std::int64_t start;
};
std::vector<Wait> waits;  // the one in front last, behind it those that stand around it
bool lookPlanned = false;
int lineNumber = 0;  // tells a look planned for an earlier window

void ShowWaitText()
{
    QString text;
    if (!waits.empty()) {
        text = QString::fromStdString(waits.back().text);
        if (const auto seconds = (NowMicros() - waits.back().start) / 1'000'000; seconds > 0)
            text += QString("  %1 s").arg(seconds);
    }
    if (lblWait->text() == text)
        return;
    lblWait->setText(text);
    shpBusy->setVisible(!text.isEmpty());
}

void Say(QLabel *label, const std::string &text)
{
    if (!label)
        return;
    label->setText(Caption(text));
    label->setToolTip(Caption(text));
}

void PlanLook()
{
    if (lookPlanned)
        return;
    lookPlanned = true;
    CallAfter(kLookMs, [number = lineNumber] {
        if (number != lineNumber || !lblWait)
            return;
        lookPlanned = false;
        ShowWaitText();
        if (!waits.empty())
            PlanLook();
    });
}

}  // namespace

void BuildStatusLine(QStatusBar *line)
{
    line->setSizeGripEnabled(false);
    line->setContentsMargins(6, 0, 8, 0);
    shpBusy = Shape(line, "shpBusy");
    shpBusy->setFixedSize(12, 12);
    SetFill(shpBusy, Cyan());
    shpBusy->hide();
    lblWait = Label(line, "lblWait");
    lblRemark = Label(line, "lblRemark");
    lblRemark->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);  // a long remark never widens the window
    lblRemark->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    lblKeptRemark = Label(line, "lblKeptRemark");
    lblKeptRemark->setMinimumWidth(1);  // nor does this one
    lblKeptRemark->setContentsMargins(16, 0, 0, 0);
    lblProgress = Label(line, "lblProgress");
    lblProgress->setContentsMargins(0, 0, 16, 0);
    lblProgress->hide();
    line->addWidget(lblProgress);
    line->addWidget(shpBusy);
    line->addWidget(lblWait);
    line->addWidget(lblRemark, 1);
    line->addWidget(lblKeptRemark);
    line->addPermanentWidget(BuildSummaryButton(line));
    waits.clear();
    lookPlanned = false;
    ++lineNumber;
}

void DropStatusLine()
{
    lblProgress = lblWait = lblRemark = lblKeptRemark = nullptr;
    shpBusy = nullptr;
}

void ShowWait(const std::string &text)
{
    if (!lblWait)
        return;
    if (text.empty())
        return waits.clear();  // the planned look takes it away
    const auto known = std::find_if(waits.begin(), waits.end(), [&](const Wait &wait) { return wait.text == text; });
    if (known == waits.end())
        waits.push_back({text, NowMicros()});
    else
        waits.erase(known + 1, waits.end());
    ShowWaitText();
    PlanLook();
}

void ShowProgress(const std::string &text)
{
    if (!lblProgress)
        return;
    lblProgress->setText(Caption(text));
    lblProgress->setVisible(!text.empty());
}

void ShowRemark(const std::string &text)
{
    Say(lblRemark, text);
}

void KeepRemark(const std::string &text)
{
    Say(lblKeptRemark, text);
}

}  // namespace ombrix
