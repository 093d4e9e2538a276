#include "LatePicture.h"

#include <algorithm>

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QWidget>

namespace {

QColor SelectedTextOn(const QPaintDevice* paper) {
    const bool isWidget = paper != nullptr && paper->devType() == QInternal::Widget;
    const QPalette palette = isWidget ? static_cast<const QWidget*>(paper)->palette() : QApplication::palette();
    return palette.color(QPalette::HighlightedText);
}

class LatePicture final : public QIconEngine {
public:
    explicit LatePicture(const char* name)
        : m_name(QLatin1String(name)) {}

    void paint(QPainter* painter, const QRect& place, QIcon::Mode mode, QIcon::State state) override {
        if (mode != QIcon::Selected)
            Picture().paint(painter, place, Qt::AlignCenter, mode, state);
        else
            painter->drawPixmap(place.topLeft(), Shadow(place.size(), *painter->device()));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        if (mode != QIcon::Selected)
            return Picture().pixmap(size, mode, state);
        return Shadow(size, QPixmap());
    }
    QIconEngine* clone() const override { return new LatePicture(*this); }

private:
    const QIcon& Picture() {
        if (m_picture.isNull())
            m_picture = QIcon(m_name);
        return m_picture;
    }
    /// The picture's shape in one colour.
    QPixmap Shadow(const QSize& size, const QPaintDevice& paper) {
        const qreal ratio = std::max(paper.devicePixelRatioF(), 1.0);
        QPixmap shadow(size * ratio);
        shadow.setDevicePixelRatio(ratio);
        shadow.fill(Qt::transparent);
        const QRect all(QPoint(), size);
        QPainter painter(&shadow);
        Picture().paint(&painter, all);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(all, SelectedTextOn(&paper));
        return shadow;
    }

    const QString m_name;
    QIcon m_picture;
};

} // namespace

QIcon LatePictureOf(const char* name) {
    return QIcon(new LatePicture(name));
}
