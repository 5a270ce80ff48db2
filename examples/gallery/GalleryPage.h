#ifndef GALLERYPAGE_H
#define GALLERYPAGE_H

#include <QList>
#include <QString>
#include <QWidget>

#include <functional>

class EventMonitor;
class QGridLayout;
class QHBoxLayout;

/// One page of the gallery: a row for each sample, enabled on the one side and disabled on the other, and a button for
/// each dialog.
class GalleryPage : public QWidget
{
    Q_OBJECT

public:
    /// A dialog or window that the page can open.
    struct Popup
    {
        QString name; ///< part of the picture's file name
        QString caption;
        std::function<QWidget *()> open; ///< shows it, and returns at once
        std::function<void(QWidget *)> end = {}; ///< ends what the user cannot close; called a while after a click
    };

    GalleryPage(EventMonitor *monitor, QWidget *parent);
    ~GalleryPage() override;

    const QList<Popup> &popups() const;

protected:
    using Factory = std::function<QWidget *(QWidget *parent)>;

    EventMonitor *monitor() const;
    /// Adds a row with two widgets made by \a create, the second one of them disabled.
    void addSample(const QString &caption, const Factory &create);
    /// Adds a button that opens a dialog or window.
    void addPopup(const Popup &popup);
    /// Adds a button that does something with the samples.
    void addButton(const QString &caption, const std::function<void()> &action);

private:
    Q_DISABLE_COPY_MOVE(GalleryPage)

    EventMonitor *m_monitor;
    QGridLayout *m_samples;
    QHBoxLayout *m_buttons = nullptr; // of the row that is being filled
    int m_buttonCount = 0;
    QList<Popup> m_popups;
};

#endif // GALLERYPAGE_H
