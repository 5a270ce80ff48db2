#ifndef UTILSSTACKEDWIDGET_H
#define UTILSSTACKEDWIDGET_H

#include "uniprogutils_export.h"

#include <QPointer>
#include <QStackedWidget>

class UtilsFade;

/// A stack of pages that can fade the current page out and the next one in.
///
/// \image html containers.png
///
/// setCurrentIndex() and setCurrentWidget() hide the slots of QStackedWidget, which are not virtual: through a
/// QStackedWidget pointer the plain ones are called and nothing fades. Connections made by name reach the ones here.
///
/// A fade takes the place of a graphics effect that the page may have. GUI thread only; owned by its Qt parent, and the
/// pages by the stack.
///
///     auto *pages = new UtilsStackedWidget(this, true);
///     pages->addWidget(devicePage);
///     pages->addWidget(targetPage);
///     connect(targetButton, &QToolButton::clicked, pages, [=] { pages->setCurrentWidget(targetPage); });
class UNIPROGUTILS_EXPORT UtilsStackedWidget : public QStackedWidget
{
    Q_OBJECT

public:
    /// An empty stack. \a animated: page changes fade (90 ms out, then 200 ms in); otherwise they happen at once.
    explicit UtilsStackedWidget(QWidget *parent = nullptr, bool animated = false);
    ~UtilsStackedWidget() override;

public Q_SLOTS:
    /// Changes to the page at \a index; nothing happens when there is none.
    void setCurrentIndex(int index);

    /// Changes to the page \a widget; nothing happens when it is null or not in the stack. An animated stack emits
    /// currentChanged() when the page it leaves has faded out. A change requested before that takes the place of the
    /// one that is running, so the page requested last is the one that stays. When that page is removed or deleted
    /// meanwhile, the stack keeps the page it has.
    void setCurrentWidget(QWidget *widget);

    /// Completes the change: makes the page requested last current and, when the stack is animated, fades it in. Called
    /// by the fade-out; nobody else needs to.
    void slotEndChangeCurrent();

private:
    Q_DISABLE_COPY_MOVE(UtilsStackedWidget)

    UtilsFade *createFade(QWidget *page);

    QPointer<QWidget> targetPage;
    bool animatedFlag;
    const UtilsFade *fadeOut = nullptr; ///< the change waits for it; compared only, it deletes itself
};

#endif // UTILSSTACKEDWIDGET_H
