// A number to be watched from where the wires are: as large as the output panel's, and never in doubt whether it lives.
#pragma once

#include <QString>

#include <string>

class QFrame;
class QHBoxLayout;
class QLabel;
class QWidget;

namespace ombrix {

/// What an operator reads across a room.
constexpr int kRoomPoints = 30;

/// The number is a label `name`, the word beside it a label `name` + "Mark". Empty at first.
QFrame *Readout(QWidget *parent, const QString &name);

/// A plain label of the same size, for a number that stands beside such a reading.
QLabel *RoomLabel(QWidget *parent, const QString &name);
/// What a trimmer is turned to and how far off it is, in such labels: lbl<name>Target and lbl<name>Distance, which are
/// given back.
QHBoxLayout *AimRow(QWidget *parent, const QString &name, QLabel *&target, QLabel *&distance);

/// The number as it is at this moment, marked "live".
void ShowLive(QFrame *readout, const std::string &number);
/// The number stays, dim and marked "frozen"; nothing when there is none.
void Freeze(QFrame *readout);
/// In red why no number lives here: "silent", "over range". The last number stays, dim.
void ShowTrouble(QFrame *readout, const std::string &words);
/// A number that was judged, with the word of the verdict: green when it is good, yellow when not.
void ShowVerdict(QFrame *readout, const std::string &number, bool good, const std::string &words);
/// No number, no word.
void ClearReadout(QFrame *readout);

}  // namespace ombrix
