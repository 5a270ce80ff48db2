#ifndef LOGGERTEST_H
#define LOGGERTEST_H

#include <UtilsLogger.h>

#include <UniProgTest.h>

#include <UtilsLoggerLine.h>

#include <QAction>
#include <QApplication>
#include <QListWidget>
#include <QPropertyAnimation>
#include <QSignalSpy>

/// What the tests of UtilsLogger share.
namespace LoggerTest {

inline constexpr int Short = 30; // ms
inline constexpr int Endless = 600'000; // ms, longer than any test

inline QListWidget *listOf(const UtilsLogger &logger)
{
    return logger.findChild<QListWidget *>(QStringLiteral("listWidget"));
}

inline QStringList textsOf(const UtilsLogger &logger)
{
    QStringList texts;
    const QList<UtilsLoggerLine *> lines = logger.getChildrenWidgets();
    for (const UtilsLoggerLine *line : lines)
        texts << line->getText();
    return texts;
}

inline void addLines(UtilsLogger &logger, int count)
{
    for (int i = 0; i < count; ++i)
        logger.addSingleLineMessage(QString::number(i), LOGGER_MESSAGE_DEFAULT);
}

inline QAction *actionOf(const UtilsLogger &logger, const char *text)
{
    const QList<QAction *> actions = logger.findChildren<QAction *>();
    for (QAction *action : actions) {
        if (action->text() == QLatin1String(text))
            return action;
    }
    return nullptr;
}

inline void layOut(UtilsLogger &logger)
{
    logger.show();
    QCoreApplication::processEvents();
}

} // namespace LoggerTest

#endif // LOGGERTEST_H
