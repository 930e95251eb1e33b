#include "shell/operator_boxes.h"

#include "platform/clock.h"
#include "session/procedure.h"
#include "session/state.h"
#include "shell/main_window.h"
#include "widgets/widgets.h"

#include <QMainWindow>
#include <QMessageBox>
#include <QShortcut>

#include <vector>

namespace ombrix {
namespace {

std::vector<QMessageBox *> openBoxes;
bool silenced = false;

class OpenBox
{
public:
    explicit OpenBox(QMessageBox *box) { openBoxes.push_back(box); }
    ~OpenBox() { openBoxes.pop_back(); }
    OpenBox(const OpenBox &) = delete;
    OpenBox &operator=(const OpenBox &) = delete;
};

// Shown and pumped, never run in a loop of its own: the program's one way to wait stays the only one.
bool AskForOk(QMessageBox::Icon icon, const std::string &text, const std::string &title)
{
    if (silenced)
        return false;
    QMessageBox box(icon, Caption(title), Caption(text), QMessageBox::Ok, frmOmbrix);
    box.setTextFormat(Qt::PlainText);
    box.setWindowModality(Qt::ApplicationModal);
    // Esc says no: it takes the box away, but what was asked for counts as not done.
    QShortcut esc(Qt::Key_Escape, &box);
    QObject::connect(&esc, &QShortcut::activated, &box, [&box] {
        Abort = Abort || ProcedureRunning();
        box.hide();
    });
    const OpenBox scope(&box);
    box.show();
    while (box.isVisible())
        PumpEvents(kForever);
    return box.clickedButton() != nullptr;
}

}  // namespace

bool PromptOperator(const std::string &text, const std::string &title)
{
    return AskForOk(QMessageBox::Warning, text, title);
}

void WarnOperator(const std::string &text, const std::string &title)
{
    AskForOk(QMessageBox::Critical, text, title);
}

void CloseBoxes()
{
    for (QMessageBox *box : openBoxes)
        box->hide();
}

void SilenceBoxes(bool on)
{
    silenced = on;
}

}  // namespace ombrix
