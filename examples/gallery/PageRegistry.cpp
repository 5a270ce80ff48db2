#include "PageRegistry.h"

#include "pages/ButtonsPage.h"
#include "pages/ContainersPage.h"
#include "pages/CoverPage.h"
#include "pages/DialogsPage.h"
#include "pages/InputsPage.h"
#include "pages/LabelsPage.h"
#include "pages/LoggerPage.h"
#include "pages/ProcessingPage.h"
#include "pages/ProgressPage.h"
#include "pages/SidebarPage.h"
#include "pages/StandardPage.h"
#include "pages/WindowPage.h"

#include <QCoreApplication>

namespace {

template <typename Page>
GalleryPage *create(EventMonitor *monitor, QWidget *parent)
{
    return new Page(monitor, parent);
}

} // namespace

const QList<PageRegistry::Entry> &PageRegistry::entries()
{
    static const QList<Entry> all{
        {"buttons", QT_TRANSLATE_NOOP("PageRegistry", "Buttons and switches"), &create<ButtonsPage>},
        {"inputs", QT_TRANSLATE_NOOP("PageRegistry", "Inputs and read-outs"), &create<InputsPage>},
        {"labels", QT_TRANSLATE_NOOP("PageRegistry", "Labels and help"), &create<LabelsPage>},
        {"progress", QT_TRANSLATE_NOOP("PageRegistry", "Progress and waiting"), &create<ProgressPage>},
        {"logger", QT_TRANSLATE_NOOP("PageRegistry", "Log"), &create<LoggerPage>},
        {"containers", QT_TRANSLATE_NOOP("PageRegistry", "Tabs and stacks"), &create<ContainersPage>},
        {"cover", QT_TRANSLATE_NOOP("PageRegistry", "Cover"), &create<CoverPage>},
        {"dialogs", QT_TRANSLATE_NOOP("PageRegistry", "Dialogs"), &create<DialogsPage>},
        {"processing", QT_TRANSLATE_NOOP("PageRegistry", "Processing dialog"), &create<ProcessingPage>},
        {"window", QT_TRANSLATE_NOOP("PageRegistry", "Window and title bar"), &create<WindowPage>},
        {"sidebar", QT_TRANSLATE_NOOP("PageRegistry", "Sidebar"), &create<SidebarPage>},
        {"standard", QT_TRANSLATE_NOOP("PageRegistry", "Standard widgets"), &create<StandardPage>},
    };
    return all;
}

QStringList PageRegistry::names()
{
    QStringList names;
    for (const Entry &entry : entries())
        names.append(QString::fromLatin1(entry.name));
    return names;
}
