// SPDX-License-Identifier: MIT
#include "app/image_problem_bar.h"

#include "model/morph_document.h"
#include "platform/notification_center.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>

namespace plyra {

ImageProblemBar::ImageProblemBar(MorphDocument& document, QWidget* parent)
    : QFrame(parent)
    , m_document(document)
{
    setObjectName(QStringLiteral("imageProblemBar"));
    setAccessibleName(tr("Image problems"));
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    QPalette warning = palette();
    warning.setColor(QPalette::Window, QColor(255, 236, 179));
    warning.setColor(QPalette::WindowText, QColor(60, 40, 0));
    setPalette(warning);
    auto* layout = new QHBoxLayout(this);
    auto* icon = new QLabel(this);
    const int side = style()->pixelMetric(QStyle::PM_SmallIconSize);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(side, side));
    icon->setAlignment(Qt::AlignTop);
    m_text = new QLabel(this);
    m_text->setObjectName(QStringLiteral("imageProblemText"));
    m_text->setWordWrap(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(icon);
    layout->addWidget(m_text, 1);
    for (const char* name : {kObjectsUpdatedNotification, kEditedStateChangedNotification})
        NotificationCenter::defaultCenter().addObserver(name, [this](const Notification&) { refresh(); }, this,
            m_document.notificationObject());
    refresh();
}

ImageProblemBar::~ImageProblemBar()
{
    NotificationCenter::defaultCenter().removeObserversOwnedBy(this);
}

QString ImageProblemBar::message() const
{
    return isHidden() ? QString() : m_text->text();
}

void ImageProblemBar::refresh()
{
    QStringList lines;
    QStringList paths;
    for (unsigned track : {0u, 1u}) {
        const QString location = m_document.imageURLInTrack(track);
        if (location.isEmpty() || m_document.imageInTrack(track))
            continue;
        const std::optional<ImageLoadFailure> failure = m_document.imageFailureInTrack(track);
        const QString reason = failure ? failure->reason : tr("it could not be read");
        const QString name = QFileInfo(location).fileName();
        paths << location;
        lines << (track == 0 ? tr("The first image “%1” could not be shown: %2.") : tr("The last image “%1” could not be shown: %2."))
                     .arg(name, reason);
    }
    if (!lines.isEmpty())
        lines << tr("Plyra keeps the file in the document as it is.");
    m_text->setText(lines.join(QLatin1Char('\n')));
    setToolTip(paths.join(QLatin1Char('\n')));
    setVisible(!lines.isEmpty());
}

} // namespace plyra
