#include "OperationButtons.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QToolButton>

namespace {

constexpr int ButtonHeight = 34;

} // namespace

OperationButtons::OperationButtons(ProgrammerSession *programmerSession, ProgrammerSession::Subject subject,
                                   QWidget *parent)
    : QWidget(parent)
    , session(programmerSession)
    , row(new QHBoxLayout(this))
{
    row->setContentsMargins(0, 0, 0, 0);
    for (const ProgrammerSession::Description &description : ProgrammerSession::descriptions()) {
        if (description.subject != subject)
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
    row->addWidget(button);
    return button;
}

void OperationButtons::refresh()
{
    for (const auto &[operation, button] : std::as_const(buttons))
        button->setEnabled(session->canStart(operation));
}
