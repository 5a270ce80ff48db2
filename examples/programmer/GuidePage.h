#ifndef GUIDEPAGE_H
#define GUIDEPAGE_H

#include "Page.h"

/// The page that tells a new user where things are, and how to get there without a mouse.
class GuidePage : public Page
{
    Q_OBJECT

public:
    explicit GuidePage(ProgrammerSession *session, QWidget *parent = nullptr);
};

#endif // GUIDEPAGE_H
