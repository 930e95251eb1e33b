// What stands on the page Verify: made, and shown. It remembers nothing.
#pragma once

#include "model/verify_file.h"
#include "widgets/widgets.h"

#include <array>
#include <functional>
#include <string>

class QCheckBox;
class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;

namespace ombrix {

struct VerifyView {
    std::array<QPushButton *, kVerifyRanges> cmdVfyRng{};
    std::array<QFrame *, kVerifySlots> shpVfyRdg{};
    std::array<QLabel *, kVerifySlots> lblVfyRdg{};
    QLineEdit *txtDpmID = nullptr;
    QLabel *lblFileSpec = nullptr;
    QCheckBox *chkTempFile = nullptr;
    QPushButton *cmdFileSpec = nullptr;
    QPushButton *cmdVfyReady = nullptr;
    QPushButton *cmdVfyOK = nullptr;
    QPushButton *cmdVfyDone = nullptr;
    QPushButton *cmdVfyPrint = nullptr;
    QFrame *instruction = nullptr;  ///< shpInst(8)
};

/// What the operator does.
struct VerifyEvents {
    std::function<void(int button)> range;
    std::function<void(const std::string &text)> dpmId;
    Handler tempFile, fileSpec, ready, ok, done, print;
};

VerifyView BuildVerifyView(QFrame *page, const VerifyEvents &events);

/// Captions and colours of a board that has just been opened: nothing taken, nothing in work.
void ShowVerifyRanges(const VerifyView &view, int board);
void ShowVerifyReadings(const VerifyView &view, const std::array<std::string, kVerifySlots> &readings);
/// A reading that stands on the page and not in the file.
void ShowUnsavedReading(const VerifyView &view, int slot, const std::string &reading);

}  // namespace ombrix
