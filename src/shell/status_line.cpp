#include "shell/status_line.h"

#include "platform/clock.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QLabel>
#include <QStatusBar>

namespace ombrix {
namespace {

constexpr int kLookMs = 1000;

QFrame *shpBusy = nullptr;  // the busy mark
QLabel *lblWait = nullptr;
QLabel *lblRemark = nullptr;
QLabel *lblKeptRemark = nullptr;

std::string waitText;
std::int64_t waitStart = 0;
bool lookPlanned = false;
int lineNumber = 0;  // tells a look planned for an earlier window

void ShowWaitText()
{
    QString text = QString::fromStdString(waitText);
    const auto seconds = (NowMicros() - waitStart) / 1'000'000;
    if (!waitText.empty() && seconds > 0)
        text += QString("  %1 s").arg(seconds);
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
        if (!waitText.empty())
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
    line->addWidget(shpBusy);
    line->addWidget(lblWait);
    line->addWidget(lblRemark, 1);
    line->addWidget(lblKeptRemark);
    waitText.clear();
    lookPlanned = false;
    ++lineNumber;
}

void DropStatusLine()
{
    lblWait = lblRemark = lblKeptRemark = nullptr;
    shpBusy = nullptr;
}

void ShowWait(const std::string &text)
{
    if (!lblWait)
        return;
    waitText = text;
    waitStart = NowMicros();
    if (text.empty())
        return;  // the planned look takes it away
    ShowWaitText();
    PlanLook();
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
