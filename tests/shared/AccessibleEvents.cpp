#include "AccessibleEvents.h"

#include <QTestAccessibility>

#ifdef UNIPROG_HAS_QPA
#include <private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

static void setActive(bool active)
{
    QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(active);
}
#else
static void setActive(bool) { }
#endif

AccessibleEvents::AccessibleEvents()
{
    setActive(true);
    QTestAccessibility::initialize();
    clear();
}

AccessibleEvents::~AccessibleEvents()
{
    clear();
    QTestAccessibility::cleanup();
    setActive(false);
}

bool AccessibleEvents::isAvailable()
{
#ifdef UNIPROG_HAS_QPA
    return true;
#else
    return false;
#endif
}

void AccessibleEvents::clear()
{
    QTestAccessibility::clearEvents();
}

bool AccessibleEvents::contains(QAccessibleEvent *event) const
{
    return QTestAccessibility::containsEvent(event);
}
