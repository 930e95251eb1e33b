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
class QPushButton;
class QRadioButton;
class QWidget;

namespace ombrix
{

using Handler = std::function<void()>;

/// Text of the system for a widget: CR LF becomes a line break.
QString Caption(const std::string &text);

/// Name of one widget of an array: "cmdCalib", 3 is "cmdCalib(3)".
QString Indexed(const char *name, int index);

QPushButton *Button(QWidget *parent, const QString &name, const std::string &caption, Handler click);
QRadioButton *Option(QWidget *parent, const QString &name, const std::string &caption, Handler click);
QCheckBox *Check(QWidget *parent, const QString &name, const std::string &caption, Handler click);
QLabel *Label(QWidget *parent, const QString &name, const std::string &text = "");
/// A frame that is filled with its colour (a "shp").
QFrame *Shape(QWidget *parent, const QString &name);
QGroupBox *Group(QWidget *parent, const QString &name, const std::string &caption);

/// Fills a shape or label with a colour; text on it takes black or white, whichever reads better.
void SetFill(QWidget *widget, const QColor &colour);
/// Back to the page's own colours.
void ClearFill(QWidget *widget);

/// Sets or clears an option of an exclusive group without its handler; clearing leaves none set.
void SetOption(QAbstractButton *option, bool on);

/// Keys of the system's colours.
QColor Cyan();
QColor Red();
QColor Green();
QColor Yellow();

} // namespace ombrix
