#include "CoverPage.h"

#include <UtilsHidingWidget.h>

#include <QCheckBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>

namespace {

QGroupBox *newForm(QWidget *parent)
{
    auto *form = new QGroupBox(CoverPage::tr("Target"), parent);
    auto *layout = new QFormLayout(form);
    layout->addRow(CoverPage::tr("Name:"), new QLineEdit(CoverPage::tr("Board 7")));
    layout->addRow(CoverPage::tr("Clock:"), new QLineEdit(CoverPage::tr("48 MHz")));
    layout->addRow(new QCheckBox(CoverPage::tr("Reset after a write")));
    return form;
}

} // namespace

CoverPage::CoverPage(EventMonitor *events, QWidget *parent)
    : GalleryPage(events, parent)
{
    addSample(tr("Not covered"), &newForm);
    addSample(tr("With a message"), [this](QWidget *page) {
        QWidget *form = newForm(page);
        auto *cover = new UtilsHidingWidget(form);
        cover->SetInfoText(tr("No device is connected"));
        m_covers.append(cover);
        return form;
    });
    addSample(tr("Without a card"), [this](QWidget *page) {
        QWidget *form = newForm(page);
        auto *cover = new UtilsHidingWidget(form);
        cover->SetInfoVisible(false);
        m_covers.append(cover);
        return form;
    });

    addButton(tr("Cover"), [this] {
        for (UtilsHidingWidget *cover : std::as_const(m_covers))
            cover->show();
    });
    addButton(tr("Uncover"), [this] {
        for (UtilsHidingWidget *cover : std::as_const(m_covers))
            cover->hide();
    });
}

CoverPage::~CoverPage() = default;
