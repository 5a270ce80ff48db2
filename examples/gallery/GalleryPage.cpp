#include "GalleryPage.h"

#include <UtilsMisc.h>

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

namespace {

enum Column { Caption, Enabled, Disabled };
constexpr int Spacing = 12;
constexpr int ButtonsInARow = 4;
constexpr int TimeToLook = 4000; // milliseconds

QLabel *newHeader(const QString &text, QWidget *parent)
{
    auto *header = new QLabel(text, parent);
    UtilsMisc::SetProperty(header, "font-size", QStringLiteral("level2"));
    UtilsMisc::SetProperty(header, "title", true);
    return header;
}

} // namespace

GalleryPage::GalleryPage(EventMonitor *monitor, QWidget *parent)
    : QWidget(parent)
    , m_monitor(monitor)
    , m_samples(new QGridLayout)
{
    auto *layout = new QVBoxLayout(this);
    layout->setSpacing(Spacing);
    m_samples->setHorizontalSpacing(2 * Spacing);
    m_samples->setVerticalSpacing(Spacing);
    m_samples->setColumnStretch(Enabled, 1);
    m_samples->setColumnStretch(Disabled, 1);
    layout->addLayout(m_samples);
    layout->addStretch(1);
}

GalleryPage::~GalleryPage() = default;

const QList<GalleryPage::Popup> &GalleryPage::popups() const
{
    return m_popups;
}

EventMonitor *GalleryPage::monitor() const
{
    return m_monitor;
}

void GalleryPage::addSample(const QString &caption, const Factory &create)
{
    if (m_samples->isEmpty()) {
        m_samples->addWidget(newHeader(tr("Enabled"), this), 0, Enabled);
        m_samples->addWidget(newHeader(tr("Disabled"), this), 0, Disabled);
    }
    const int row = m_samples->rowCount();
    m_samples->addWidget(new QLabel(caption, this), row, Caption);
    for (const Column column : {Enabled, Disabled}) {
        QWidget *sample = create(this);
        if (sample->accessibleName().isEmpty())
            sample->setAccessibleName(caption);
        sample->setEnabled(column == Enabled);
        m_samples->addWidget(sample, row, column);
    }
}

void GalleryPage::addPopup(const Popup &popup)
{
    m_popups.append(popup);
    addButton(popup.caption, [popup] {
        QWidget *opened = popup.open();
        if (popup.end)
            QTimer::singleShot(TimeToLook, opened, [opened, end = popup.end] { end(opened); });
    });
}

void GalleryPage::addButton(const QString &caption, const std::function<void()> &action)
{
    if (m_buttonCount % ButtonsInARow == 0) {
        m_buttons = new QHBoxLayout;
        m_buttons->addStretch();
        auto *pageLayout = static_cast<QVBoxLayout *>(layout());
        pageLayout->insertLayout(pageLayout->count() - 1, m_buttons); // above the stretch
    }
    auto *button = new QPushButton(caption, this);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, action);
    m_buttons->insertWidget(m_buttonCount % ButtonsInARow, button);
    ++m_buttonCount;
}
