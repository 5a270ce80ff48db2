#ifndef LOGGERPAGE_H
#define LOGGERPAGE_H

#include "../GalleryPage.h"

class UtilsLogger;

/// A log with a line of every type, and what fills it.
class LoggerPage : public GalleryPage
{
    Q_OBJECT

public:
    LoggerPage(EventMonitor *monitor, QWidget *parent);
    ~LoggerPage() override;

private:
    Q_DISABLE_COPY_MOVE(LoggerPage)

    QList<UtilsLogger *> m_logs;
};

#endif // LOGGERPAGE_H
