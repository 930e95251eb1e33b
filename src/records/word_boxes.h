// The boxes in which words are shown and edited: name, address and digits of each field, in columns of a page.
#pragma once

#include "model/nvm_fields.h"

#include <functional>
#include <string>
#include <vector>

class QFrame;
class QGridLayout;
class QLabel;
class QLineEdit;
class QWidget;

namespace ombrix {

/// What Quit asks about while a change is pending.
constexpr const char *kUnsavedWords = "Changed words are not written to the meter yet.";

struct WordBox {
    QLabel *lblNVM = nullptr;
    QLabel *lblAddr = nullptr;
    QLineEdit *txtNVM = nullptr;
};

/// What the operator does in the box of a field.
struct WordBoxEvents {
    std::function<void(int field, const std::string &text)> edited;
    std::function<void(int field)> left;  ///< after an edit
};

/// The boxes of fields `first` to `last`, so many to a column.
QGridLayout *BuildWordBoxColumns(QFrame *page, int first, int last, int rows, const WordBoxEvents &events,
                                 std::vector<WordBox> &boxes);

/// Name, address and width of a field; hidden where the board has none.
void ShowWordBox(const WordBox &box, const NvmField &field);

enum class WordMark {
    None,
    Changed,  ///< cyan: not what the meter holds
    Refused,  ///< red: the meter holds something else than was written
};
/// `hint` is the tooltip.
void MarkWordBox(QLineEdit *field, WordMark mark, const std::string &hint = "");

/// Digits of one width, room for so many.
void MakeDigits(QLineEdit *field, int digits);

}  // namespace ombrix
