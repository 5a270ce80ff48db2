#ifndef TOGGLESWITCHTEST_H
#define TOGGLESWITCHTEST_H

#include <UtilsToggleSwitch.h>

#include <QImage>
#include <QPainter>
#include <QPropertyAnimation>
#include <QTest>

/// What the tests of UtilsToggleSwitch share: a switch of the usual size, its animation and its look.
namespace ToggleSwitchTest {

constexpr QSize Size(40, 20);
constexpr int Off = 10; // of a switch of that size
constexpr int On = 30;

class ShownSwitch : public UtilsToggleSwitch
{
public:
    ShownSwitch()
    {
        resize(Size);
        show();
    }
};

inline QPropertyAnimation *animationOf(const UtilsToggleSwitch &toggle)
{
    return toggle.findChild<QPropertyAnimation *>();
}

inline bool isAtRest(const UtilsToggleSwitch &toggle)
{
    return QTest::qWaitFor([&toggle] { return animationOf(toggle)->state() == QAbstractAnimation::Stopped; }, 10000);
}

inline QImage imageOf(UtilsToggleSwitch &toggle)
{
    QImage image(toggle.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    toggle.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image.convertToFormat(QImage::Format_ARGB32);
}

} // namespace ToggleSwitchTest

#endif // TOGGLESWITCHTEST_H
