#ifndef UTILSTABWIDGET_H
#define UTILSTABWIDGET_H

#include "uniprogutils_export.h"

#include <QTabWidget>

/// A tab widget whose tab bar always spans the whole width, so that the tabs share it evenly.
///
/// \image html containers.png
///
/// GUI thread only; owned by its Qt parent. Fill it like any QTabWidget:
///
///     auto *tabs = new UtilsTabWidget(this);
///     tabs->addTab(new ReadPage, tr("READ"));
///     tabs->addTab(new WritePage, tr("WRITE"));
class UNIPROGUTILS_EXPORT UtilsTabWidget : public QTabWidget
{
    Q_OBJECT

public:
    /// An empty tab widget of 400 x 300 pixels with no current tab, named "UtilsTabWidget" and titled "TabWidget".
    explicit UtilsTabWidget(QWidget *parent = nullptr);
    ~UtilsTabWidget() override;

protected:
    /// Fixes the width of the tab bar to the width of the widget.
    void resizeEvent(QResizeEvent *event) override;
    /// Tells the style that the tab bar is as wide as the widget.
    void initStyleOption(QStyleOptionTabWidgetFrame *option) const override;

private:
    Q_DISABLE_COPY_MOVE(UtilsTabWidget)

    void setupForm();
};

#endif // UTILSTABWIDGET_H
