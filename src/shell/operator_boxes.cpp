#include "shell/operator_boxes.h"

#include "model/range_names.h"
#include "platform/clock.h"
#include "shell/input_gate.h"
#include "shell/main_window.h"
#include "widgets/key_guard.h"
#include "widgets/readout.h"
#include "widgets/widgets.h"

#include <QAbstractButton>
#include <QMainWindow>
#include <QMessageBox>
#include <QRegularExpression>
#include <QShortcut>

#include <vector>

namespace ombrix {
namespace {

std::vector<QDialog *> openBoxes;
bool silenced = false;

class OpenBox
{
public:
    explicit OpenBox(QDialog *box) : m_gate(box) { openBoxes.push_back(box); }
    // Not every desktop gives the keys back to the window behind.
    ~OpenBox()
    {
        openBoxes.pop_back();
        if (frmOmbrix && openBoxes.empty())
            frmOmbrix->activateWindow();
    }
    OpenBox(const OpenBox &) = delete;
    OpenBox &operator=(const OpenBox &) = delete;

private:
    InputGate m_gate;
};

// The first quantity in a text, "" when there is none: "-200 mV", "2 mV, 300 Hz", "2 KOHM", "0 CEL".
QString QuantityIn(const QString &text)
{
    static const QRegularExpression quantity("[-+]?\\d*\\.?\\d+ ?(?:[mk]?(?:V|A|Hz|Ohms?)|K?OHM|CEL|FAR|°?[CF])\\b"
                                             "(?:, ?\\d*\\.?\\d+ ?k?Hz\\b)?");
    return quantity.match(text).captured();
}

bool AskForButton(QMessageBox::Icon icon, const std::string &text, const std::string &title,
                  QMessageBox::StandardButtons buttons, const QString &below)
{
    QMessageBox box(icon, Caption(title), Caption(text), buttons, frmOmbrix);
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(below);
    for (QAbstractButton *button : box.buttons())
        GuardKeys(button);
    // The box itself takes Esc and its close box for its only button. What counts here is a click on OK.
    QShortcut esc(Qt::Key_Escape, &box);
    esc.setAutoRepeat(false);
    QObject::connect(&esc, &QShortcut::activated, &box, &QMessageBox::hide);
    bool confirmed = false;
    QObject::connect(box.button(QMessageBox::Ok), &QAbstractButton::clicked, &box, [&confirmed] { confirmed = true; });
    ShowAndWait(&box);
    return confirmed;
}

}  // namespace

bool PromptOperator(const std::string &text, const std::string &title)
{
    QString below = "Esc: not done";
    const std::string quantity = QuantityIn(Caption(text)).toStdString();
    if (const QString value = Caption(ValueAsWritten(quantity)); !value.isEmpty())
        below = QString("<p style=\"font-size:%1pt; font-weight:bold; white-space:nowrap\">%2</p><p>%3</p>")
                    .arg(kRoomPoints)
                    .arg(value.toHtmlEscaped(), below);
    return AskForButton(QMessageBox::Warning, text, title, QMessageBox::Ok, below);
}

void WarnOperator(const std::string &text, const std::string &title)
{
    AskForButton(QMessageBox::Critical, text, title, QMessageBox::Ok, "");
}

bool AskOperator(const std::string &text, const std::string &title)
{
    return AskForButton(QMessageBox::Question, text, title, QMessageBox::Ok | QMessageBox::Cancel, "");
}

bool ShowAndWait(QDialog *dialog)
{
    if (silenced)
        return false;
    const OpenBox scope(dialog);
    dialog->setWindowModality(Qt::NonModal);  // the gate bars the window, all but what is always open
    dialog->setResult(QDialog::Rejected);
    dialog->show();
    while (dialog->isVisible())
        PumpEvents(kForever);
    return dialog->result() == QDialog::Accepted;
}

void CloseBoxes()
{
    for (QDialog *box : openBoxes)
        box->hide();
}

void SilenceBoxes(bool on)
{
    silenced = on;
}

}  // namespace ombrix
