// Fields that take a value from the operator: which keys pass, and when what stands there counts.
#pragma once

#include <QString>

#include <functional>
#include <string>

class QColor;
class QLineEdit;
class QWidget;

namespace ombrix {

/// What a key puts into a field that holds `text`; 0 when the field refuses it.
using KeyFilter = std::function<char(char key, const std::string &text)>;

/// One of these characters.
KeyFilter AnyOf(const std::string &characters);
/// "0123456789ABCDEF"; a small letter counts as its capital.
KeyFilter HexKeys();
/// Digits, one "-" and one ".".
KeyFilter NumberKeys();

enum class CommitBy { Enter, Leaving };
using Commit = std::function<void(const std::string &text, CommitBy by)>;
using Edited = std::function<void(const std::string &text)>;

/// A line of text. Pasted characters pass the filter one by one, as typed ones do. What stands there counts by Enter,
/// or by leaving the field when it was edited since; another window in front doesn't leave it. `edited` is told each
/// change that the operator makes. While a procedure runs no key passes, and what was edited before is committed when
/// the field is on again and the procedure has ended.
QLineEdit *Field(QWidget *parent, const QString &name, KeyFilter filter, Commit commit, Edited edited = nullptr);

/// A change by the program: silent, and what the operator had begun there is gone.
void SetField(QLineEdit *field, const std::string &text);

/// A line of free text that nothing waits for, so it takes keys also while a procedure runs. `edited` is told each change
/// that the operator makes.
QLineEdit *FreeText(QWidget *parent, const QString &name, Edited edited);

/// Fills a field with a colour, its text black or white; ClearFill takes it off.
void FillField(QLineEdit *field, const QColor &colour);

}  // namespace ombrix
