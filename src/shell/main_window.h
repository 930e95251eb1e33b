// frmOmbrix: where everything stands. Tab strip on top, step buttons at the left, the page in the middle, what
// belongs beside it to its right, the output panel below, Setup and Quit at the bottom right, the status line.
#pragma once

#include <QString>

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
/// Lets each registered page fill its frame.
void BuildPages();
void DestroyMainWindow();

/// An empty frame beside the page for one of those who draw there. It takes no room while it shows nothing.
QWidget *AddSideFrame(const QString &name);

QFrame *PageFrame(int index);

/// " 1.0", or " 1.0.3" for a revision other than 0.
QString VersionText(int major, int minor, int revision);

}  // namespace ombrix
