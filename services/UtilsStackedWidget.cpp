#include "UtilsStackedWidget.h"

#include "UtilsFade.h"

#include <QGraphicsOpacityEffect>

#include <utility>

namespace {

constexpr int FadeInDuration = 200;
constexpr int FadeOutDuration = 90;
constexpr double FadedOpacity = 0.3;
constexpr double FullOpacity = 1.0;

} // namespace

UtilsStackedWidget::UtilsStackedWidget(QWidget *parent, bool animated)
    : QStackedWidget(parent)
    , animatedFlag(animated)
{ }

UtilsStackedWidget::~UtilsStackedWidget() = default;

void UtilsStackedWidget::setCurrentIndex(int index)
{
    if (QWidget *page = widget(index))
        setCurrentWidget(page);
}

void UtilsStackedWidget::setCurrentWidget(QWidget *widget)
{
    if (indexOf(widget) < 0)
        return;

    targetPage = widget;
    if (!animatedFlag) {
        slotEndChangeCurrent();
        return;
    }
    UtilsFade *fade = createFade(currentWidget());
    fadeOut = fade;
    fade->Out(SLOT(slotEndChangeCurrent()));
}

void UtilsStackedWidget::slotEndChangeCurrent()
{
    const bool wasFadingOut = std::exchange(fadeOut, nullptr) != nullptr;
    const QPointer<UtilsStackedWidget> self(this);
    QPointer<QWidget> page;
    if (indexOf(targetPage) >= 0) {
        page = targetPage;
        QStackedWidget::setCurrentWidget(page);
    } else if (wasFadingOut) {
        page = currentWidget(); // its successor is gone: it comes back
    }
    // A receiver of currentChanged() may have deleted the stack or the page, or asked for another.
    if (self && animatedFlag && page && !fadeOut)
        createFade(page)->In(nullptr);
}

UtilsFade *UtilsStackedWidget::createFade(QWidget *page)
{
    auto *fade = new UtilsFade(page, this, FadeInDuration, FadeOutDuration);
    fade->SetOpacity(FadedOpacity, FullOpacity);
    fade->SelfDestroyEnabled(true);

    // A widget has one graphics effect: a later fade, the application or the page's end may take away the one that is
    // being animated, and such a fade never finishes. It always destroys itself, though, and then the change it stood
    // for still happens, and the page it leaves is opaque for whoever shows it again.
    const QPointer<QGraphicsOpacityEffect> effect = qobject_cast<QGraphicsOpacityEffect *>(page->graphicsEffect());
    connect(fade, &QObject::destroyed, this, [this, fade, effect] {
        if (effect)
            effect->setOpacity(FullOpacity);
        if (fadeOut == fade)
            slotEndChangeCurrent();
    });
    return fade;
}
