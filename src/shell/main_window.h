// frmOmbrix: where everything stands. Tab strip on top, step buttons at the left, the page in the middle, what
// belongs beside it to its right; below, over the whole width, the alert, the output panel with Setup and Quit, and the
// status line. The window fits any screen from 960 by 540 on: what finds no room scrolls.
#pragma once

#include <QSize>
#include <QString>

#include <string>

class QFrame;
class QLabel;
class QMainWindow;
class QPushButton;
class QStackedWidget;
class QWidget;

namespace ombrix {

// Null as long as no window stands.
extern QMainWindow *frmOmbrix;
extern QPushButton *cmdSetup;
extern QPushButton *cmdQuit;
extern QLabel *lblRev;
extern QStackedWidget *pageStack;  ///< fraCalib(0..18), each in a place that scrolls when the window is too small

/// Makes the window and all it holds, but fills no page and shows nothing.
void BuildMainWindow();
/// Lets a registered page fill its frame, if it hasn't yet.
void FillPageFrame(int index);
void DestroyMainWindow();

/// An empty frame beside the page for one of those who draw there. It takes no room while it shows nothing.
QWidget *AddSideFrame(const QString &name);

QFrame *PageFrame(int index);

/// On page 0: that this version has no page for a step; blank for "".
void ShowNoPage(const std::string &step);

/// How large the window opens where a screen leaves so much room.
QSize FirstSize(const QSize &room);

/// " 1.0", or " 1.0.3" for a revision other than 0.
QString VersionText(int major, int minor, int revision);

}  // namespace ombrix
