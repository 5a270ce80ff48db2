#ifndef ABOUTPAGE_H
#define ABOUTPAGE_H

#include "Page.h"
#include "UpdateCheck.h"

class QToolButton;

/// The page that says what runs here, and whether there is something newer.
class AboutPage : public Page
{
    Q_OBJECT

public:
    explicit AboutPage(ProgrammerSession *session, QWidget *parent = nullptr);

    /// Where newer versions are asked for: now, and by a button. Nothing is asked, and the button is off, for an empty
    /// one.
    void setUpdateUrl(const QString &url);

private:
    UpdateCheck updateCheck;
    QToolButton *updateButton;
};

#endif // ABOUTPAGE_H
