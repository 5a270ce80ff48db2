#ifndef OPERATIONBUTTONS_H
#define OPERATIONBUTTONS_H

#include "ProgrammerSession.h"

#include <QList>
#include <QPair>
#include <QWidget>

class QGridLayout;
class QToolButton;

/// Buttons side by side, one an operation on the same subject. A button is enabled while its operation can be started.
class OperationButtons : public QWidget
{
    Q_OBJECT

public:
    OperationButtons(ProgrammerSession *session, ProgrammerSession::Subject subject, QWidget *parent);

    /// Adds a button for something else, in the same look. The widget owns it.
    QToolButton *addButton(const QString &name, const QString &text);

    /// Enables the buttons whose operations can be started.
    void refresh();

Q_SIGNALS:
    void requested(ProgrammerSession::Operation operation);

private:
    ProgrammerSession *session;
    QGridLayout *grid;
    QList<QPair<ProgrammerSession::Operation, QToolButton *>> buttons;
};

#endif // OPERATIONBUTTONS_H
