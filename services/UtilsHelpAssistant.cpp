#include "UtilsHelpAssistant.h"

#include <QCoreApplication>
#include <QProcess>

namespace {

constexpr int ViewerStartTimeoutMs = 30'000;

// Both beside the application's executable.
constexpr QLatin1String ViewerProgram("/assistant");
constexpr QLatin1String HelpCollection("/resources/help/help_settings_1.4.0.qhc");
/// Fixed when the library is built: the pages' addresses in the collection start with it.
constexpr QLatin1String HelpNamespace(UNIPROG_HELP_NAMESPACE);

} // namespace

QPointer<UtilsHelpAssistant> UtilsHelpAssistant::instance;

UtilsHelpAssistant::UtilsHelpAssistant()
    : viewerProcess(new QProcess)
{
    connect(this, &UtilsHelpAssistant::signalOpenHelpKeyword, this, &UtilsHelpAssistant::slotOpenHelpKeyword);
}

UtilsHelpAssistant::~UtilsHelpAssistant()
{
    delete viewerProcess;
}

UtilsHelpAssistant *UtilsHelpAssistant::getInstance()
{
    if (!instance)
        instance = new UtilsHelpAssistant;
    return instance;
}

void UtilsHelpAssistant::slotOpenHelpKeyword(QString keyword)
{
    const QString folder = QCoreApplication::applicationDirPath();
    // A running viewer is not asked for here: the process refuses a second start, and there is one viewer a run.
    viewerProcess->start(
        folder + ViewerProgram,
        {QStringLiteral("-collectionFile"), folder + HelpCollection, QStringLiteral("-enableRemoteControl")},
        QIODevice::ReadWrite);
    if (!viewerProcess->waitForStarted(ViewerStartTimeoutMs))
        return;
    const QString command = QStringLiteral("setSource qthelp://%1/doc/%2\n").arg(HelpNamespace, keyword);
    viewerProcess->write(command.toLocal8Bit());
}
