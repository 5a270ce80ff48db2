#ifndef UTILSSIDEBARITEM_H
#define UTILSSIDEBARITEM_H

#include "uniprogutils_export.h"

#include <QIcon>
#include <QMap>
#include <QPointer>
#include <QString>
#include <QWidget>

class QButtonGroup;
class QGraphicsDropShadowEffect;
class QPropertyAnimation;
class QToolButton;
class UtilsSidebarListWidget;
class UtilsSidebarWidget;

/// One section of the sidebar: a large button with an icon, and child buttons that slide open below it. A section
/// without children is selected by its main button, one with children by a child.
///
/// Thread: GUI thread only. Ownership: by its Qt parent. UtilsSidebarWidget creates the sections of a column, where
/// others are reset when one is selected; alone, a section is a button group that folds.
///
///     auto *section = new UtilsSidebarItem(nullptr, this);
///     section->setUp(tr("POWER"), ":/images/power_light.svg", ":/images/power_yellow.svg");
///     section->addChild(tr("Supply"), 0);
class UNIPROGUTILS_EXPORT UtilsSidebarItem : public QWidget
{
    Q_OBJECT

public:
    /// \a receiver, which may be null, hears of SignalItemToggled() on its slot SlotItemToggled().
    explicit UtilsSidebarItem(UtilsSidebarWidget *receiver, QWidget *parent = nullptr);
    ~UtilsSidebarItem() override;

    /// Gives the main button its caption, icons and look. The icons are files or resources; an SVG is sharp at every
    /// scale of the screen.
    void setUp(const QString &caption, const QString &uncheckedIcon, const QString &checkedIcon);
    /// The text of the main button, which shows a blank before it.
    void setCaption(const QString &caption);

    /// Adds a child button at the \a row, counted from 0 and limited to those there are. Returns its id: 1, 2, 3 ...,
    /// never one that another child had.
    int addChild(const QString &caption, int row);
    /// Unknown ids are ignored, here and below. The button is deleted later.
    void removeChild(int childId);
    void setChildCaption(int childId, const QString &caption);
    /// Checks the main button, which opens the section, and then the child button.
    void checkChild(int childId);

    /// Closes the section and unchecks all its buttons.
    void reset();

Q_SIGNALS:
    /// The section was selected or is no longer: a child button was toggled, or the main button of a section without
    /// children. Opening a section that has some is no selection and emits nothing; closing one emits false.
    void SignalItemToggled(UtilsSidebarItem *item, bool checked);
    /// A child button was toggled; after SignalItemToggled().
    void SignalChildToggled(int childId, bool checked);

public Q_SLOTS:
    /// Opens or closes the section, within 150 ms.
    void on_toolButton_main_toggled(bool checked);
    /// For the toggled() of a child button; the id is that of the sender, or -1.
    void SlotChildButtonToggled(bool checked);

private:
    Q_DISABLE_COPY_MOVE(UtilsSidebarItem)

    void setupForm();
    QToolButton *createChildButton(const QString &caption);
    int rowOf(const QToolButton *button) const;
    int targetHeight() const;
    void animateHeight(int target);
    bool sayToggled(bool checked);

    QString m_checkedIcon;
    QString m_uncheckedIcon;
    QToolButton *m_mainButton = nullptr;
    UtilsSidebarListWidget *m_childList = nullptr;
    QButtonGroup *m_childGroup;
    QPointer<UtilsSidebarWidget> m_receiver;
    int m_childrenHeight = 0; // in pixels
    int m_childCount = 0; // of all that were ever added
    QMap<int, QToolButton *> m_childButtons;
    QGraphicsDropShadowEffect *m_shadow;
    QPointer<QPropertyAnimation> m_heightAnimation;
    QIcon m_checkedPicture;
    QIcon m_uncheckedPicture;
    int m_openSignals = 0; // whose receivers have not returned
};

#endif // UTILSSIDEBARITEM_H
