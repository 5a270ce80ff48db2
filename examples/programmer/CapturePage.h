#ifndef CAPTUREPAGE_H
#define CAPTUREPAGE_H

#include "Page.h"

#include <QTimer>

class QPlainTextEdit;

/// The page for what the target sends over SWO: started and stopped by hand, shown as text while it comes.
class CapturePage : public Page
{
    Q_OBJECT

public:
    explicit CapturePage(ProgrammerSession *session, QWidget *parent = nullptr);

private:
    void completed(ProgrammerSession::Operation operation, int status);

    QPlainTextEdit *output;
    QTimer fetchTimer;
};

#endif // CAPTUREPAGE_H
