#ifndef COVERPAGE_H
#define COVERPAGE_H

#include "../GalleryPage.h"

class UtilsHidingWidget;

/// A cover over a form, with and without its card.
class CoverPage : public GalleryPage
{
    Q_OBJECT

public:
    CoverPage(EventMonitor *monitor, QWidget *parent);
    ~CoverPage() override;

private:
    Q_DISABLE_COPY_MOVE(CoverPage)

    QList<UtilsHidingWidget *> m_covers;
};

#endif // COVERPAGE_H
