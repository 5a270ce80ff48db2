#include "LabelsPage.h"

#include "../EventMonitor.h"

#include <UtilsConstants.h>
#include <UtilsHelpAssistant.h>
#include <UtilsHelpContextMenu.h>
#include <UtilsLabel.h>
#include <UtilsMisc.h>

namespace {

UtilsLabel *newLabel(const QString &text, const char *property, const QVariant &value, QWidget *parent)
{
    auto *label = new UtilsLabel(parent);
    label->setText(text);
    UtilsMisc::SetProperty(label, property, value);
    return label;
}

} // namespace

LabelsPage::LabelsPage(EventMonitor *events, QWidget *parent)
    : GalleryPage(events, parent)
{
    addSample(tr("Mouse"), [this](QWidget *page) {
        UtilsLabel *label
            = newLabel(tr("Point at me, click me"), "frame-border-color", QStringLiteral("gray_level3"), page);
        monitor()->watch(label, &UtilsLabel::signalEnter, QStringLiteral("signalEnter"));
        monitor()->watch(label, &UtilsLabel::signalLeave, QStringLiteral("signalLeave"));
        monitor()->watch(label, &UtilsLabel::signalClicked, QStringLiteral("signalClicked"));
        return label;
    });
    for (const QString &level :
         {QStringLiteral("level1"), QStringLiteral("level2"), QStringLiteral("level3"), QStringLiteral("level4")})
        addSample(tr("Text of %1").arg(level),
                  [level](QWidget *page) { return newLabel(tr("Erase and write"), "font-size", level, page); });
    addSample(tr("Title"), [](QWidget *page) { return newLabel(tr("Speed:"), "title", true, page); });
    addSample(tr("Warning"), [](QWidget *page) {
        UtilsLabel *label
            = newLabel(UtilsConstants::WARNING_NO_WIFI_FUNCTIONALITY, "log-type", QStringLiteral("warning"), page);
        label->setWordWrap(true);
        return label;
    });
    addSample(tr("Help"), [](QWidget *page) {
        UtilsLabel *label
            = newLabel(tr("Right click opens the help"), "frame-border-color", QStringLiteral("gray_level3"), page);
        new UtilsHelpContextMenu(label, QStringLiteral("gallery.html"));
        return label;
    });
    monitor()->watch(UtilsHelpAssistant::getInstance(), &UtilsHelpAssistant::signalOpenHelpKeyword,
                     QStringLiteral("signalOpenHelpKeyword"));
}

LabelsPage::~LabelsPage() = default;
