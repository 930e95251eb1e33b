// Widgets made in one line, named as the system names them, their handlers joined through one guarded edge.
#pragma once

#include <QString>

#include <functional>
#include <string>

class QAbstractButton;
class QButtonGroup;
class QCheckBox;
class QColor;
class QFrame;
class QGroupBox;
class QLabel;
class QPalette;
class QPushButton;
class QRadioButton;
class QWidget;

namespace ombrix {

using Handler = std::function<void()>;

/// Text of the system for a widget: CR LF becomes a line break.
QString Caption(const std::string &text);

/// Name of one widget of an array: "cmdCalib", 3 is "cmdCalib(3)".
QString Indexed(const char *name, int index);

/// `shortcut` as "Alt+R": it clicks the button while that is seen and on. The tooltip tells it, the caption doesn't.
QPushButton *Button(QWidget *parent, const QString &name, const std::string &caption, Handler click,
                    const char *shortcut = "");
QRadioButton *Option(QWidget *parent, const QString &name, const std::string &caption, Handler click);
QCheckBox *Check(QWidget *parent, const QString &name, const std::string &caption, Handler click);
QLabel *Label(QWidget *parent, const QString &name, const std::string &text = "");
/// A frame that is filled with its colour (a "shp").
QFrame *Shape(QWidget *parent, const QString &name);
QGroupBox *Group(QWidget *parent, const QString &name, const std::string &caption);

/// Calls `handler` at each double click with the left button.
void OnDoubleClick(QWidget *widget, Handler handler);
/// The same at each single press, for what is no button.
void OnClick(QWidget *widget, Handler handler);

/// Fills a shape, label or button with a colour; text on it takes black or white, whichever reads better. Disabled it
/// is dull in colour and text.
void SetFill(QWidget *widget, const QColor &colour);
/// Back to the page's own colours.
void ClearFill(QWidget *widget);

/// Sets or clears an option of an exclusive group without its handler; clearing leaves none set.
void SetOption(QAbstractButton *option, bool on);

/// `share` (0..1) of one colour and the rest of the other.
QColor Mix(const QColor &one, const QColor &other, double share);
/// An idle item (the system's information background), a service item (its scroll bar), an item not in use (its
/// button face): taken from the palette in force, so that they are told apart in light and in dark.
QColor InfoBackground();
QColor ScrollBarColour();
QColor ButtonFace();
bool IsDark(const QPalette &palette);

/// What an item of a page is at this moment, told by its colour: cyan, information background, button face.
enum class Use { InWork, Idle, NotInUse };
void ShowUse(QWidget *widget, Use use);

/// Keys of the system's colours.
QColor Cyan();
QColor Red();
QColor Green();
QColor Yellow();

}  // namespace ombrix
