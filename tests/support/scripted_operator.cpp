// QTest's mouse goes through the window system, so a modal box stops it as it stops a person.
#define QTEST_QPA_MOUSE_HANDLING
#include <QtTest/QTest>

#include "support/scripted_operator.h"

#include "platform/clock.h"
#include "support/virtual_clock.h"
#include "widgets/key_guard.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTabBar>
#include <QTableView>
#include <QTableWidget>
#include <QTimer>

#include <iostream>
#include <map>
#include <stdexcept>
#include <utility>

namespace ombrix::test {
namespace {

constexpr int kTickMs = 5;                          // real time between two looks at the script
constexpr std::int64_t kGraceMicros = 120'000'000;  // what a started procedure may still take after the last step

// The one in front where several stand.
template <class Dialog> Dialog *Open()
{
    if (auto *active = qobject_cast<Dialog *>(QApplication::activeWindow()))
        return active;
    for (QWidget *window : QApplication::topLevelWidgets()) {
        auto *dialog = qobject_cast<Dialog *>(window);
        if (dialog && dialog->isVisible())
            return dialog;
    }
    return nullptr;
}

QWidget *MainWindow()
{
    for (QWidget *window : QApplication::topLevelWidgets())
        if (qobject_cast<QMainWindow *>(window))
            return window;
    return nullptr;
}

void ClickButton(QWidget *dialog, QDialogButtonBox::StandardButton which, QDialogButtonBox::StandardButton orElse)
{
    auto *box = dialog->findChild<QDialogButtonBox *>();
    QTest::mouseClick(box->button(box->button(which) ? which : orElse), Qt::LeftButton);
    if (!dialog->isVisible())
        QApplication::setActiveWindow(MainWindow());  // as a desktop does; without one nobody does
}

QString Name(const std::string &name)
{
    return QString::fromStdString(name);
}

// A check box and an option react on their indicator and text, not on the whole width.
QPoint ClickPoint(const QWidget *widget)
{
    if (widget->inherits("QRadioButton") || widget->inherits("QCheckBox"))
        return {8, widget->height() / 2};
    return widget->rect().center();
}

}  // namespace

ScriptedOperator::ScriptedOperator(VirtualClock *clock) : m_clock(clock) {}

ScriptedOperator::~ScriptedOperator()
{
    if (m_clock) {
        m_clock->beforeSleep = nullptr;
        m_clock->onEndlessWait = nullptr;
    }
}

ScriptedOperator &ScriptedOperator::Then(const std::string &what, std::function<bool()> ready,
                                         std::function<void()> action)
{
    m_script.push_back({what, std::move(ready), std::move(action)});
    return *this;
}

ScriptedOperator &ScriptedOperator::Clicks(const std::string &name)
{
    return Then(
        "click " + name, [name] { return IsEnabled(name); },
        [name] {
            QWidget *widget = Find(name);
            QTest::mouseClick(widget, Qt::LeftButton, {}, ClickPoint(widget));
        });
}

ScriptedOperator &ScriptedOperator::DoubleClicks(const std::string &name)
{
    return Then(
        "double click " + name, [name] { return Sees(name); },
        [name] {
            QWidget *widget = Find(name);
            QTest::mouseDClick(widget, Qt::LeftButton, {}, widget->rect().center());
        });
}

ScriptedOperator &ScriptedOperator::ClicksTab(int index)
{
    return Then(
        "click tab " + std::to_string(index), [] { return Sees("tabCalib"); },
        [index] {
            auto *tabs = qobject_cast<QTabBar *>(Find("tabCalib"));
            QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(index).center());
        });
}

ScriptedOperator &ScriptedOperator::ClicksCell(const std::string &grid, int row, int column)
{
    return Then(
        "click a cell of " + grid, [grid, row] { return Sees(grid) && Rows(grid) > row; },
        [grid, row, column] {
            auto *table = qobject_cast<QTableWidget *>(Find(grid));
            const QModelIndex cell = table->model()->index(row, column);
            table->scrollTo(cell);
            QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(cell).center());
        });
}

ScriptedOperator &ScriptedOperator::Types(const std::string &name, const std::string &text)
{
    return Then(
        "type into " + name, [name] { return IsEnabled(name); },
        [name, text] {
            auto *field = qobject_cast<QLineEdit *>(Find(name));
            field->setFocus();
            field->selectAll();
            if (text.empty())
                QTest::keyClick(field, Qt::Key_Delete);
            QTest::keyClicks(field, QString::fromStdString(text));
        });
}

ScriptedOperator &ScriptedOperator::Presses(int key)
{
    const bool pressesButtons = key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space;
    return pressesButtons ? Waits(kDeafMs).PressesAtOnce(key) : PressesAtOnce(key);
}

ScriptedOperator &ScriptedOperator::PressesAtOnce(int key)
{
    return Then(
        "press a key", [] { return QApplication::focusWidget() != nullptr; },
        [key] { QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key)); });
}

ScriptedOperator &ScriptedOperator::AnswersBox(const std::string &caption)
{
    return Then(
        "answer the box with " + caption, [] { return Box() != nullptr; },
        [caption] {
            for (QAbstractButton *button : Box()->buttons()) {
                if (button->text().remove('&').toStdString() == caption)
                    return QTest::mouseClick(button, Qt::LeftButton);
            }
            throw std::runtime_error("the box has no button " + caption);
        });
}

ScriptedOperator &ScriptedOperator::ChoosesFile(const std::string &path)
{
    return Then(
        "choose the file " + path, [] { return Open<QFileDialog>() != nullptr; },
        [path] {
            auto *dialog = Open<QFileDialog>();
            dialog->findChild<QLineEdit *>("fileNameEdit")->setText(Name(path));
            ClickButton(dialog, path.empty() ? QDialogButtonBox::Cancel : QDialogButtonBox::Open, QDialogButtonBox::Ok);
        });
}

ScriptedOperator &ScriptedOperator::PrintsTo(const std::string &path)
{
    return Then(
        "print to " + path, [] { return IsEnabled("cmdPrint"); },
        [path] {
            auto *printers = qobject_cast<QComboBox *>(Find("cboPrinter"));
            printers->setCurrentIndex(printers->findText("PDF file"));
            qobject_cast<QLineEdit *>(Find("txtPrintFile"))->setText(Name(path));
            QTest::mouseClick(Find(path.empty() ? "cmdPrintCancel" : "cmdPrint"), Qt::LeftButton);
            if (!Sees("dlgPrint"))
                QApplication::setActiveWindow(MainWindow());
        });
}

ScriptedOperator &ScriptedOperator::WaitsFor(const std::string &name)
{
    return Then(
        "wait for " + name, [name] { return IsEnabled(name); }, nullptr);
}

ScriptedOperator &ScriptedOperator::WaitsForText(const std::string &name, const std::string &text)
{
    return Then(
        "wait until " + name + " says \"" + text + "\"", [name, text] { return Text(name) == text; }, nullptr);
}

ScriptedOperator &ScriptedOperator::WaitsUntil(const std::string &what, std::function<bool()> condition)
{
    return Then("wait until " + what, std::move(condition), nullptr);
}

ScriptedOperator &ScriptedOperator::Waits(int ms)
{
    auto limit = std::make_shared<std::unique_ptr<Deadline>>();
    return Then(
        "wait " + std::to_string(ms) + " ms",
        [limit, ms] {
            if (!*limit) {
                *limit = std::make_unique<Deadline>(ms);
                CallAfter(ms, [] {});
            }
            return (*limit)->Passed();
        },
        nullptr);
}

ScriptedOperator &ScriptedOperator::Does(std::function<void()> action)
{
    return Then(
        "do something", [] { return true; }, std::move(action));
}

ScriptedOperator &ScriptedOperator::Within(int seconds)
{
    m_limitMicros = static_cast<std::int64_t>(seconds) * 1'000'000;
    return *this;
}

std::string ScriptedOperator::Waiting() const
{
    return m_script.empty() ? "the script has ended" : "the script stands at: " + m_script.front().what;
}

void ScriptedOperator::Fails(const std::string &why)
{
    if (m_trouble.empty()) {
        m_trouble = why + "; " + Waiting() + "; status \"" + Text("lblStatus") + "\", box \"" + BoxText() + "\"";
        std::cerr << m_trouble << "\n";
    }
    m_script.clear();
    RequestShutdown();
}

bool ScriptedOperator::ObeysBox()
{
    QMessageBox *box = Box();
    if (!box || !onBox)
        return false;
    onBox(box->windowTitle().toStdString(), box->text().toStdString());
    QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    return true;
}

bool ScriptedOperator::Tick()
{
    if (!m_running)
        return false;
    if (ObeysBox())
        return true;
    const std::int64_t now = NowMicros();
    if (m_script.empty()) {
        m_ending = true;
        if (m_depth > 0 && now - m_stepStart > kGraceMicros)
            RequestShutdown();
        return false;
    }
    if (!m_script.front().ready()) {
        if (now - m_stepStart > m_limitMicros)
            Fails("a step never became possible");
        return false;
    }
    const Step step = std::move(m_script.front());
    m_script.pop_front();
    m_stepStart = now;
    if (step.action) {
        ++m_depth;
        step.action();  // may pump, and the pump comes back here for the next step
        --m_depth;
    }
    return true;
}

// A new timer each time: one that is being served does not fire again inside the handler that its tick has started.
void ScriptedOperator::TicksLater()
{
    QTimer::singleShot(kTickMs, Qt::PreciseTimer, &m_ticks, [this] {
        if (!m_running)
            return;
        TicksLater();
        Tick();
    });
}

bool ScriptedOperator::Runs()
{
    m_running = true;
    m_ending = false;
    m_trouble.clear();
    m_stepStart = NowMicros();
    if (m_clock) {
        m_clock->beforeSleep = [this] { return Tick(); };
        m_clock->onEndlessWait = [this] {
            if (m_script.empty())
                RequestShutdown();  // the script is over: what still waits is unwound
            else
                Fails("nothing will ever happen");
        };
    } else {
        TicksLater();
    }
    try {
        while (!m_script.empty() || m_depth > 0)
            PumpEvents(m_clock ? kForever : kTickMs);
    } catch (const Shutdown &) {
    } catch (const std::exception &fault) {
        Fails(fault.what());
    }
    m_running = false;
    RequestShutdown(false);
    return m_trouble.empty();
}

QWidget *ScriptedOperator::Find(const std::string &name)
{
    static std::map<std::string, QPointer<QWidget>> found;  // a script asks for the same few again and again
    QPointer<QWidget> &widget = found[name];
    if (!widget || widget->objectName() != Name(name))
        widget = Search(name);
    return widget;
}

QWidget *ScriptedOperator::Search(const std::string &name)
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (window->objectName() == Name(name))
            return window;
        if (auto *found = window->findChild<QWidget *>(Name(name)))
            return found;
    }
    return nullptr;
}

bool ScriptedOperator::Sees(const std::string &name)
{
    const QWidget *widget = Find(name);
    return widget && widget->isVisible();
}

bool ScriptedOperator::IsEnabled(const std::string &name)
{
    const QWidget *widget = Find(name);
    return widget && widget->isVisible() && widget->isEnabled();
}

bool ScriptedOperator::HasFocus(const std::string &name)
{
    const QWidget *widget = Find(name);
    return widget && QApplication::focusWidget() == widget;
}

bool ScriptedOperator::IsOn(const std::string &name)
{
    const auto *button = qobject_cast<QAbstractButton *>(Find(name));
    return button && button->isChecked();
}

std::string ScriptedOperator::Text(const std::string &name)
{
    const QWidget *widget = Find(name);
    if (const auto *label = qobject_cast<const QLabel *>(widget))
        return label->text().toStdString();
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
        return button->text().toStdString();
    if (const auto *field = qobject_cast<const QLineEdit *>(widget))
        return field->text().toStdString();
    return "";
}

std::string ScriptedOperator::Cell(const std::string &grid, int row, int column)
{
    const auto *table = qobject_cast<QTableView *>(Find(grid));
    return table ? table->model()->index(row, column).data().toString().toStdString() : "";
}

int ScriptedOperator::Rows(const std::string &grid)
{
    const auto *table = qobject_cast<QTableView *>(Find(grid));
    return table ? table->model()->rowCount() : 0;
}

int ScriptedOperator::Columns(const std::string &grid)
{
    const auto *table = qobject_cast<QTableView *>(Find(grid));
    return table ? table->model()->columnCount() : 0;
}

std::string ScriptedOperator::Fill(const std::string &name)
{
    const QWidget *widget = Find(name);
    if (!widget)
        return "";
    const auto role = qobject_cast<const QAbstractButton *>(widget) ? QPalette::Button : QPalette::Window;
    return widget->palette().color(QPalette::Active, role).name().toStdString();
}

QMessageBox *ScriptedOperator::Box()
{
    return Open<QMessageBox>();
}

std::string ScriptedOperator::BoxText()
{
    const QMessageBox *box = Box();
    return box ? box->text().toStdString() : "";
}

std::string ScriptedOperator::BoxTitle()
{
    const QMessageBox *box = Box();
    return box ? box->windowTitle().toStdString() : "";
}

bool ScriptedOperator::TakesPicture(const QString &file)
{
    QWidget *window = MainWindow();
    return window && window->updatesEnabled() && window->grab().save(file);
}

}  // namespace ombrix::test
