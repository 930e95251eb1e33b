// The cards on which diagrams stand: white paper, all of one width, in a list that scrolls where the window is too low.
#pragma once

#include <QFont>
#include <QString>

#include <string>

class QFontMetrics;
class QFrame;
class QLabel;
class QScrollArea;
class QVBoxLayout;
class QWidget;

namespace ombrix {

constexpr int kCardEdge = 6;  ///< free above and below what a card shows

/// Natural width inside the line of a card: the widest input connector fills it.
int CardRoom(const QFontMetrics &metrics);

/// Makes the list of cards in `parent`, which has no layout yet, hidden. Cards stand in its widget.
QScrollArea *BuildCardList(QWidget *parent);

/// Adds a card to the list's widget, hidden. It is as wide as the list allows, within its own limits.
QFrame *AddCard(QWidget *list, const QString &name);

/// What a frame shows stands one below the other, `edge` free above and below.
QVBoxLayout *Stack(QFrame *frame, int edge);

QFont BoldFont(const QFont &font);

/// A label in the middle of its place, in the card's colours.
QLabel *PaperLabel(QWidget *parent, const QString &name);
QLabel *BoldLabel(QWidget *parent, const QString &name);

/// Adds a caption over the whole width of a stacked frame; it grows with the pictures below it, which are `room` wide.
QLabel *AddHeading(QFrame *frame, const QString &name);
void ShowHeading(QLabel *caption, const std::string &text, int room);

}  // namespace ombrix
