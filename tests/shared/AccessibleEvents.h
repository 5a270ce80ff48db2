#ifndef ACCESSIBLEEVENTS_H
#define ACCESSIBLEEVENTS_H

#include <QAccessible>

/// What assistive technology hears while this object lives.
///
/// Qt says nothing as long as nobody listens, and only a private header lets a test listen without a real screen
/// reader. Where that header is missing, isAvailable() is false and nothing is heard.
class AccessibleEvents
{
public:
    AccessibleEvents();
    ~AccessibleEvents();

    static bool isAvailable();

    void clear();
    /// Whether an event like \a event, with the same states or value, came since the last clear().
    bool contains(QAccessibleEvent *event) const;

private:
    Q_DISABLE_COPY_MOVE(AccessibleEvents)

    QAccessible::UpdateHandler previousHandler;
};

#endif // ACCESSIBLEEVENTS_H
