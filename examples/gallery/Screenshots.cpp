#include "Screenshots.h"

#include "EventMonitor.h"
#include "GalleryPage.h"
#include "GalleryWindow.h"
#include "PageRegistry.h"

#include <UtilsDialogFrame.h>
#include <UtilsProgressBar.h>
#include <WaitingSpinnerWidget.h>

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QPointer>
#include <QTemporaryDir>
#include <QTimer>
#include <QVariantAnimation>

#include <functional>

namespace {

constexpr int LookInterval = 120; // milliseconds between two looks at something that may still move
constexpr int LooksAlike = 3; // after which it stands still
constexpr int LongestMovement = 15'000; // milliseconds
constexpr int SpinnerLines = 11;
constexpr int FirstPage = 0;
constexpr int Surroundings = 30; // pixels of the dimmed window around a dialog

void wait(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Brings what turns as long as it is shown to its beginning.
void rewind(QWidget *root)
{
    for (WaitingSpinnerWidget *spinner : root->findChildren<WaitingSpinnerWidget *>())
        spinner->setNumberOfLines(SpinnerLines);
    for (UtilsProgressBar *bar : root->findChildren<UtilsProgressBar *>())
        if (bar->minimum() == 0 && bar->maximum() == 0)
            for (QAbstractAnimation *animation : bar->findChildren<QAbstractAnimation *>())
                if (!qobject_cast<QVariantAnimation *>(animation))
                    delete animation; // the style's, which begins anew with the next picture
}

/// The picture that \a take gives as soon as it changes no more.
QImage settledPicture(const std::function<QImage()> &take)
{
    QImage latest = take();
    const QDeadlineTimer deadline(LongestMovement);
    for (int alike = 1; alike < LooksAlike && !deadline.hasExpired(); ++alike) {
        wait(LookInterval);
        const QImage next = take();
        if (next != latest)
            alike = 0;
        latest = next;
    }
    return latest;
}

QImage picture(QWidget *widget, const QRect &area = QRect(QPoint(), QSize(-1, -1)))
{
    rewind(widget);
    return widget->grab(area).toImage();
}

} // namespace

void Screenshots::prepareEnvironment()
{
    qputenv("QT_QPA_PLATFORM", "offscreen");

    static const QTemporaryDir folder;
    QFile configuration(folder.filePath(QStringLiteral("fonts.conf")));
    if (!configuration.open(QIODevice::WriteOnly))
        return;
    configuration.write("<?xml version=\"1.0\"?><fontconfig><cachedir>" + QFile::encodeName(folder.path())
                        + "</cachedir></fontconfig>");
    qputenv("FONTCONFIG_FILE", QFile::encodeName(configuration.fileName()));
}

void Screenshots::prepareApplication()
{
    QFont font = QApplication::font();
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(QFont::StyleStrategy(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    QApplication::setFont(font);
    QApplication::setCursorFlashTime(0);
}

Screenshots::Screenshots(GalleryWindow *window, const QString &folder)
    : m_window(window)
    , m_folder(folder)
{ }

bool Screenshots::save(const QStringList &pages, QString *error)
{
    m_error.clear();
    if (!QDir().mkpath(m_folder))
        m_error = QStringLiteral("%1 cannot be made.").arg(m_folder);

    const QStringList names = pages.isEmpty() ? PageRegistry::names() : pages;
    bool isSaved = m_error.isEmpty();
    if (isSaved && pages.isEmpty()) {
        m_window->showPage(names.at(FirstPage));
        m_window->monitor()->clear();
        isSaved = savePicture(settledPicture([this] { return picture(m_window); }), QStringLiteral("gallery"));
    }
    for (const QString &name : names)
        isSaved = isSaved && savePage(name);
    *error = m_error;
    return isSaved;
}

bool Screenshots::savePage(const QString &name)
{
    GalleryPage *page = m_window->showPage(name);
    m_window->monitor()->clear();
    if (QWidget *focused = QApplication::focusWidget())
        focused->clearFocus();
    const QRect area(page->mapTo(m_window, QPoint()), page->size());
    if (!savePicture(settledPicture([this, area] { return picture(m_window, area); }), name))
        return false;

    for (const GalleryPage::Popup &popup : page->popups()) {
        const QPointer<QWidget> opened = popup.open();
        const QImage taken = settledPicture([this, opened] { return opened ? popupPicture(opened) : QImage(); });
        if (opened)
            opened->close();
        m_window->monitor()->clear();
        wait(LookInterval); // closed dialogs delete themselves
        if (!savePicture(taken, name + QLatin1Char('-') + popup.name))
            return false;
    }
    return true;
}

bool Screenshots::savePicture(const QImage &picture, const QString &name)
{
    const QString path = QDir(m_folder).filePath(name + QStringLiteral(".png"));
    // Without the resolution of the screen, which says nothing about the picture.
    if (picture.convertToFormat(QImage::Format_RGB32).save(path))
        return true;
    m_error = QStringLiteral("%1 cannot be written.").arg(path);
    return false;
}

QImage Screenshots::popupPicture(QWidget *popup) const
{
    QImage taken = picture(popup);
    if (!qobject_cast<UtilsDialogFrame *>(popup))
        return taken;
    // A frame lies over the window, which is seen through it.
    QImage whole = m_window->grab().toImage();
    QPainter(&whole).drawImage(QPoint(), taken);
    const QWidget *card = popup->findChild<QWidget *>(QStringLiteral("frame_dialog"));
    const QRectF area(QPointF(card->mapTo(popup, QPoint(-Surroundings, -Surroundings))),
                      card->size() + 2 * QSize(Surroundings, Surroundings));
    const qreal ratio = whole.devicePixelRatio();
    return whole.copy(QRectF(area.topLeft() * ratio, area.size() * ratio).toRect());
}
