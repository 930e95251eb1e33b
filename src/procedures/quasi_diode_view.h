// What the quasi-diode page shows: its widgets and how they are built.
#pragma once

#include "calibration/quasi_diode.h"
#include "widgets/page_states.h"

#include <array>
#include <functional>
#include <string>

class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace ombrix {

struct QuasiDiodeView {
    QLabel *title;
    std::array<QRadioButton *, kDiodeGroups> types;
    QFrame *lblQDReading, *lblQDDistance, *shpQDError;
    QLabel *lblQDGain, *lblQDOffset, *lblQDPrevGain, *lblQDPrevOffset;
    std::array<QLineEdit *, 2> txtQDTarget;
    std::array<QFrame *, 2> shpQDTarget;
    struct Buttons {
        QPushButton *ready, *gain, *offset, *accept, *cancel, *done;
    } buttons;
    PageStates states;
};

/// What a click or a typed target does on the page.
struct QuasiDiodeHandlers {
    std::function<void(int type)> pick;
    std::function<void()> ready, gain, offset;
    std::function<void(int index)> stop;  ///< 0 "Accept", 1 "Cancel"
    std::function<void()> done;
    std::function<void(const std::string &text)> target;
};

/// Everything of the page but the table of its states.
QuasiDiodeView BuildQuasiDiodeView(QFrame *frame, const QuasiDiodeHandlers &handlers);

}  // namespace ombrix
