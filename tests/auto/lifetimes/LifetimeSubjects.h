#ifndef LIFETIMESUBJECTS_H
#define LIFETIMESUBJECTS_H

#include <QList>
#include <QObject>
#include <QString>

#include <functional>

class QWidget;

/// Something an application does with an object of the library, and when that is over. Neither may need anything else
/// than the object: whatever hears of it may have deleted the rest.
struct LifetimeStep
{
    std::function<void(QObject *)> act;
    std::function<bool(QObject *)> isDone;
};

/// A class of the library in a situation: how to get an object, and its life in steps. The second step is one that
/// sets something in motion.
struct LifetimeSubject
{
    const char *name;
    /// Makes the object in a window, which is not shown yet. What is no widget works on that window.
    std::function<QObject *(QWidget *window)> create;
    QList<LifetimeStep> steps;
};

/// Each widget, each dialog in each way it can end, logger lines, animations, and the services with signals.
const QList<LifetimeSubject> &lifetimeSubjects();

#endif // LIFETIMESUBJECTS_H
