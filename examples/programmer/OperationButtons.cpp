#include "OperationButtons.h"

#include <QCoreApplication>
#include <QGridLayout>
#include <QToolButton>

namespace {

constexpr int ButtonHeight = 34;
constexpr int Columns = 4;

} // namespace

OperationButtons::OperationButtons(ProgrammerSession *programmerSession, ProgrammerSession::Subject subject,
                                   QWidget *parent)
    : QWidget(parent)
    , session(programmerSession)
    , grid(new QGridLayout(this))
{
    grid->setContentsMargins(0, 0, 0, 0);
    for (int column = 0; column < Columns; ++column)
        grid->setColumnStretch(column, 1);
    for (const ProgrammerSession::Description &description : ProgrammerSession::descriptions()) {
        if (description.subject != subject || description.operation == ProgrammerSession::Operation::FetchCapture)
            continue;
        const ProgrammerSession::Operation operation = description.operation;
        QToolButton *button = addButton(QString::fromLatin1(description.name),
                                        QCoreApplication::translate("MainWindow", description.caption));
        connect(button, &QToolButton::clicked, this, [this, operation] { Q_EMIT requested(operation); });
        buttons.append({operation, button});
    }
    connect(session, &ProgrammerSession::imageChanged, this, &OperationButtons::refresh);
    connect(session, &ProgrammerSession::deviceImageChanged, this, &OperationButtons::refresh);
    connect(session, &ProgrammerSession::completed, this, &OperationButtons::refresh);
    refresh();
}

QToolButton *OperationButtons::addButton(const QString &name, const QString &text)
{
    auto *button = new QToolButton(this);
    button->setObjectName(name);
    button->setText(text);
    button->setMinimumHeight(ButtonHeight);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    grid->addWidget(button, grid->count() / Columns, grid->count() % Columns);
    return button;
}

void OperationButtons::refresh()
{
    for (const auto &[operation, button] : std::as_const(buttons))
        button->setEnabled(session->canStart(operation));
}
