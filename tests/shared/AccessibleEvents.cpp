#include "AccessibleEvents.h"

#include <QVariant>
#include <QVector>

#include <algorithm>

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

namespace {

struct Heard
{
    QAccessible::Event type;
    const QObject *object; // compared only
    QAccessible::State changedStates;
    QVariant value;
};

QVector<Heard> &log()
{
    static QVector<Heard> events;
    return events;
}

Heard describe(QAccessibleEvent *event)
{
    Heard heard{event->type(), event->object(), {}, {}};
    if (event->type() == QAccessible::StateChanged)
        heard.changedStates = static_cast<QAccessibleStateChangeEvent *>(event)->changedStates();
    if (event->type() == QAccessible::ValueChanged)
        heard.value = static_cast<QAccessibleValueChangeEvent *>(event)->value();
    return heard;
}

void record(QAccessibleEvent *event)
{
    log().append(describe(event));
}

} // namespace

AccessibleEvents::AccessibleEvents()
{
    setActive(true);
    previousHandler = QAccessible::installUpdateHandler(record);
    clear();
}

AccessibleEvents::~AccessibleEvents()
{
    clear();
    QAccessible::installUpdateHandler(previousHandler);
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
    log().clear();
}

bool AccessibleEvents::contains(QAccessibleEvent *event) const
{
    const Heard wanted = describe(event);
    return std::any_of(log().cbegin(), log().cend(), [&wanted](const Heard &heard) {
        return heard.type == wanted.type && heard.object == wanted.object && heard.changedStates == wanted.changedStates
            && heard.value == wanted.value;
    });
}
