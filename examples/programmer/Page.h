#ifndef PAGE_H
#define PAGE_H

#include "ProgrammerSession.h"

#include <QWidget>

class OperationButtons;
class QVBoxLayout;

/// A page of the window: a heading, what the page is about below it, and help in its context menu. Its window title is
/// what the sidebar and assistive technology call it.
class Page : public QWidget
{
    Q_OBJECT

public:
    /// @p help is the page of the help collection.
    Page(ProgrammerSession *session, const QString &name, const QString &title, const QString &help,
         QWidget *parent = nullptr);
    ~Page() override;

    /// Moves the keyboard focus to the first control of the page that takes it, to the page where there is none.
    void focusFirstControl();

Q_SIGNALS:
    /// The user wants @p operation.
    void requested(ProgrammerSession::Operation operation);
    /// Something went as wanted, or failed; @p message says what.
    void succeeded(const QString &message);
    void failed(const QString &message);

protected:
    ProgrammerSession *session() const;
    /// What is below the heading.
    QVBoxLayout *body() const;
    /// A paragraph that explains something.
    void addText(const QString &text);
    /// The buttons of the operations on @p subject.
    OperationButtons *addOperations(ProgrammerSession::Subject subject);

private:
    ProgrammerSession *programmerSession;
    QVBoxLayout *column;
};

#endif // PAGE_H
