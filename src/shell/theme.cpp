#include "shell/theme.h"

#include "session/kept_remarks.h"
#include "widgets/widgets.h"

#include <QApplication>
#include <QPalette>

namespace ombrix {
namespace {

struct Tones {
    QColor window, base, alternate, button, text, dim, highlight, highlightedText, link;
};

const Tones kLight = {QColor(240, 240, 240), QColor(255, 255, 255), QColor(246, 246, 246),
                      QColor(232, 232, 232), QColor(0, 0, 0),       QColor(96, 96, 96),
                      QColor(32, 96, 176),   QColor(255, 255, 255), QColor(0, 70, 160)};
// Fields and the rings of options stand out from the ground in the dark as well.
const Tones kDark = {QColor(40, 40, 43),   QColor(72, 72, 78),    QColor(64, 64, 70),
                     QColor(62, 62, 66),   QColor(240, 240, 240), QColor(175, 175, 175),
                     QColor(64, 128, 208), QColor(255, 255, 255), QColor(130, 180, 255)};

QPalette PaletteOf(const Tones &tones)
{
    QPalette palette(tones.button, tones.window);
    palette.setColor(QPalette::Window, tones.window);
    palette.setColor(QPalette::Base, tones.base);
    palette.setColor(QPalette::AlternateBase, tones.alternate);
    palette.setColor(QPalette::Button, tones.button);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, tones.text);
        palette.setColor(QPalette::Disabled, role, Mix(tones.dim, tones.window, 0.7));
    }
    palette.setColor(QPalette::PlaceholderText, tones.dim);
    palette.setColor(QPalette::ToolTipBase, tones.base);
    palette.setColor(QPalette::Highlight, tones.highlight);
    palette.setColor(QPalette::HighlightedText, tones.highlightedText);
    palette.setColor(QPalette::Disabled, QPalette::Base, tones.window);
    palette.setColor(QPalette::Link, tones.link);
    return palette;
}

}  // namespace

void ApplyTheme(const std::string &name)
{
    if (name == "light")
        QApplication::setPalette(PaletteOf(kLight));
    else if (name == "dark")
        QApplication::setPalette(PaletteOf(kDark));
    else
        QApplication::setPalette(QPalette());  // none of its own: the desktop's shows through
    const bool unknown = !name.empty() && name != "light" && name != "dark";
    KeepRemarkOn(Subject::Theme,
                 unknown ? "Ombrix.ini: the Theme \"" + name +
                               "\" is unknown. There are light and dark, and without a Theme the desktop's colours."
                         : "");
    QCoreApplication::sendPostedEvents();  // what stands already takes it over now, not at the next pump
}

}  // namespace ombrix
