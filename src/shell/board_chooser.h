// fraTabSelect: picks a board of the open tab's family when the tab isn't the meter's own.
#pragma once

class QWidget;

namespace ombrix {

QWidget *BuildBoardChooser(QWidget *parent);
void ShowBoardChooser(bool on);
void EnableBoardChooser(bool on);

}  // namespace ombrix
