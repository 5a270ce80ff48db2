#include "LoggerPage.h"

#include "../EventMonitor.h"

#include <UtilsLogger.h>

namespace {

constexpr int LineDuration = 150; // milliseconds
constexpr int MostLines = 200;
constexpr int LogHeight = 190;
constexpr int ManyLines = 30;

void addEveryType(UtilsLogger *log)
{
    log->addMessage(LoggerPage::tr("Connecting..."), LOGGER_MESSAGE_DEFAULT);
    log->addMessage(LoggerPage::tr("The target runs at 3.3 V"), LOGGER_MESSAGE_INFO);
    log->addMessage(LoggerPage::tr("The flash is not empty"), LOGGER_MESSAGE_WARNING);
    log->addMessage(LoggerPage::tr("Written and verified"), LOGGER_MESSAGE_SUCCESS);
    log->addMessage(LoggerPage::tr("The link is broken"), LOGGER_MESSAGE_ERROR);
}

} // namespace

LoggerPage::LoggerPage(EventMonitor *events, QWidget *parent)
    : GalleryPage(events, parent)
{
    addSample(tr("A line of\nevery type"), [this](QWidget *page) {
        auto *log = new UtilsLogger(page, LineDuration, MostLines);
        log->setFixedHeight(LogHeight);
        addEveryType(log);
        monitor()->watch(log, &UtilsLogger::signalLoggerAnimationsCompleted,
                         QStringLiteral("signalLoggerAnimationsCompleted"));
        m_logs.append(log);
        return log;
    });
    addSample(tr("Empty"), [](QWidget *page) {
        auto *log = new UtilsLogger(page);
        log->setFixedHeight(LogHeight / 4);
        return log;
    });

    addButton(tr("Every type"), [this] {
        for (UtilsLogger *log : std::as_const(m_logs))
            addEveryType(log);
    });
    addButton(tr("Append to the last line"), [this] {
        for (UtilsLogger *log : std::as_const(m_logs))
            log->appendToLastLineMessage(tr(" - done"));
    });
    addButton(tr("Many lines"), [this] {
        for (UtilsLogger *log : std::as_const(m_logs))
            for (int line = 1; line <= ManyLines; ++line)
                log->addMessage(tr("Block %1").arg(line), LOGGER_MESSAGE_DEFAULT);
    });
    addButton(tr("Clear"), [this] {
        for (UtilsLogger *log : std::as_const(m_logs))
            log->clear();
    });
}

LoggerPage::~LoggerPage() = default;
