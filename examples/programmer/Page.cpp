#include "Page.h"

#include "OperationButtons.h"

#include <UtilsHelpContextMenu.h>

#include <QLabel>
#include <QVBoxLayout>

namespace {

constexpr int Margin = 16;
constexpr int Spacing = 12;

} // namespace

Page::Page(ProgrammerSession *session, const QString &name, const QString &title, const QString &help, QWidget *parent)
    : QWidget(parent)
    , programmerSession(session)
    , column(new QVBoxLayout(this))
{
    setObjectName(name);
    setWindowTitle(title);
    setAccessibleName(title);
    new UtilsHelpContextMenu(this, help);
    column->setContentsMargins(Margin, Margin, Margin, Margin);
    column->setSpacing(Spacing);
    auto *heading = new QLabel(title, this);
    heading->setProperty("font-size", QStringLiteral("level4"));
    heading->setProperty("title", true);
    column->addWidget(heading);
}

Page::~Page() = default;

void Page::focusFirstControl()
{
    for (QWidget *next = nextInFocusChain(); next != this; next = next->nextInFocusChain()) {
        if (isAncestorOf(next) && next->isVisibleTo(this) && next->isEnabled()
            && (next->focusPolicy() & Qt::TabFocus) != 0) {
            next->setFocus(Qt::ShortcutFocusReason);
            return;
        }
    }
    setFocus(Qt::ShortcutFocusReason);
}

ProgrammerSession *Page::session() const
{
    return programmerSession;
}

QVBoxLayout *Page::body() const
{
    return column;
}

void Page::addText(const QString &text)
{
    auto *label = new QLabel(text, this);
    label->setWordWrap(true);
    column->addWidget(label);
}

OperationButtons *Page::addOperations(ProgrammerSession::Subject subject)
{
    auto *buttons = new OperationButtons(programmerSession, subject, this);
    connect(buttons, &OperationButtons::requested, this, &Page::requested);
    column->addWidget(buttons);
    return buttons;
}
