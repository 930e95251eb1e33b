#include "shell/alert_bar.h"

#include "widgets/page_kit.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QLabel>
#include <QPointer>

namespace ombrix {
namespace {

constexpr int kAlertPoints = 18;  // the whole of it in three lines on the narrowest screen

QPointer<QFrame> shpAlert;

}  // namespace

QWidget *BuildAlertBar(QWidget *parent)
{
    shpAlert = StatusBar(parent, "Alert", 1);
    auto *label = shpAlert->findChild<QLabel *>();
    QFont font = label->font();
    font.setPointSize(kAlertPoints);
    font.setBold(true);
    label->setFont(font);
    return shpAlert;
}

void ShowAlert(const std::string &text)
{
    if (shpAlert)
        ShowStatusBar(shpAlert, text, Red());
}

}  // namespace ombrix
