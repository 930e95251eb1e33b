#include "widgets/fields.h"

#include "platform/clock.h"
#include "platform/fault.h"
#include "session/procedure.h"
#include "widgets/widgets.h"

#include <QClipboard>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>

#include <cctype>
#include <utility>

namespace ombrix {
namespace {

constexpr int kLookAgainMs = 50;

// Every way in passes Take: keys and pastes. The menu, drops and input methods, which would go round it, are closed.
class FilteredField : public QLineEdit
{
public:
    FilteredField(QWidget *parent, KeyFilter filter, Commit commit, Edited edited)
        : QLineEdit(parent), m_filter(std::move(filter)), m_commit(std::move(commit)), m_edited(std::move(edited))
    {
        setContextMenuPolicy(Qt::NoContextMenu);
        setDragEnabled(false);
        setAcceptDrops(false);
        setAttribute(Qt::WA_InputMethodEnabled, false);
        QObject::connect(this, &QLineEdit::textEdited, this, [this] { NoteEdit(); });
    }

    void Put(const std::string &text)
    {
        m_pending = false;
        setText(QString::fromStdString(text));
    }

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab)
            return event->ignore();
        if (ProcedureRunning())
            return event->accept();
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            if (!event->isAutoRepeat())
                CommitText(CommitBy::Enter);
            return event->accept();
        }
        if (event->matches(QKeySequence::Paste))
            return Take(QGuiApplication::clipboard()->text());
        const bool typed = !event->text().isEmpty() && event->text().at(0).isPrint();
        const bool plain = (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == 0;
        if (typed && plain)
            return Take(event->text());
        QLineEdit::keyPressEvent(event);
    }

    void mouseReleaseEvent(QMouseEvent *event) override
    {
        if (event->button() != Qt::MiddleButton)
            return QLineEdit::mouseReleaseEvent(event);
        if (QGuiApplication::clipboard()->supportsSelection() && !ProcedureRunning())
            Take(QGuiApplication::clipboard()->text(QClipboard::Selection));
    }

    void focusOutEvent(QFocusEvent *event) override
    {
        QLineEdit::focusOutEvent(event);
        if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
            CommitPending();
    }

    void changeEvent(QEvent *event) override
    {
        QLineEdit::changeEvent(event);
        if (event->type() == QEvent::EnabledChange && isEnabled() && !hasFocus())
            CommitPending();
    }

private:
    void Take(const QString &text)
    {
        if (isReadOnly())
            return;
        for (const QChar character : text) {
            QString rest = this->text();
            if (hasSelectedText())
                rest.remove(selectionStart(), selectionLength());
            if (const char passed = m_filter(character.toLatin1(), rest.toStdString()))
                insert(QString(QLatin1Char(passed)));
        }
    }

    void NoteEdit()
    {
        m_pending = true;
        if (m_edited)
            RunHandler([this] { m_edited(text().toStdString()); });
    }

    // A procedure that runs is not disturbed; a field that it has put off asks when it is on again.
    void CommitPending()
    {
        if (!m_pending || !isEnabled())
            return;
        if (!ProcedureRunning())
            return CommitText(CommitBy::Leaving);
        CallAfter(kLookAgainMs, [field = QPointer<FilteredField>(this)] {
            if (field && !field->hasFocus())
                field->CommitPending();
        });
    }

    void CommitText(CommitBy by)
    {
        m_pending = false;
        if (m_commit)
            RunHandler([this, by] { m_commit(text().toStdString(), by); });
    }

    KeyFilter m_filter;
    Commit m_commit;
    Edited m_edited;
    bool m_pending = false;  // edited, and not committed since
};

}  // namespace

KeyFilter AnyOf(const std::string &characters)
{
    return
        [characters](char key, const std::string &) { return characters.find(key) != std::string::npos ? key : '\0'; };
}

KeyFilter HexKeys()
{
    return [](char key, const std::string &) {
        const auto byte = static_cast<unsigned char>(key);
        return std::isxdigit(byte) != 0 ? static_cast<char>(std::toupper(byte)) : '\0';
    };
}

KeyFilter NumberKeys()
{
    return [](char key, const std::string &text) {
        if (key >= '0' && key <= '9')
            return key;
        const bool once = (key == '-' || key == '.') && text.find(key) == std::string::npos;
        return once ? key : '\0';
    };
}

QLineEdit *Field(QWidget *parent, const QString &name, KeyFilter filter, Commit commit, Edited edited)
{
    auto *field = new FilteredField(parent, std::move(filter), std::move(commit), std::move(edited));
    field->setObjectName(name);
    return field;
}

void SetField(QLineEdit *field, const std::string &text)
{
    static_cast<FilteredField *>(field)->Put(text);
}

QLineEdit *FreeText(QWidget *parent, const QString &name, Edited edited)
{
    auto *field = new QLineEdit(parent);
    field->setObjectName(name);
    QObject::connect(field, &QLineEdit::textEdited, field, [edited = std::move(edited)](const QString &text) {
        RunHandler([&] { edited(text.toStdString()); });
    });
    return field;
}

void FillField(QLineEdit *field, const QColor &colour)
{
    SetFill(field, colour);
    QPalette palette = field->palette();
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        palette.setColor(group, QPalette::Base, palette.color(group, QPalette::Window));
        palette.setColor(group, QPalette::Text, palette.color(group, QPalette::WindowText));
    }
    field->setPalette(palette);
}

}  // namespace ombrix
