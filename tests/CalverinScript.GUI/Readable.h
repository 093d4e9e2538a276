#pragma once

#include <algorithm>
#include <map>
#include <string>

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>

#include <gtest/gtest.h>

#include "Contrast.h"

/// How well the text of a control stands out as it is drawn: the pixel that is farthest from the most frequent one. The frame of the
/// control is left out.
inline double DrawnContrast(QWidget& part) {
    if (auto* field = qobject_cast<QLineEdit*>(&part))
        field->deselect(); // the colours of a selection are the desktop's
    const int frame = part.inherits("QLabel") ? 0 : 5;
    const QImage picture = part.grab(part.rect().adjusted(frame, frame, -frame, -frame)).toImage();
    std::map<QRgb, int> pixels;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            ++pixels[picture.pixel(x, y)];
    const auto rarer = [](const auto& left, const auto& right) { return left.second < right.second; };
    const QColor ground(std::max_element(pixels.begin(), pixels.end(), rarer)->first);
    double best = 1;
    for (const auto& [pixel, count] : pixels)
        best = std::max(best, Contrast(QColor(pixel), ground));
    return best;
}

inline QString ShownText(const QWidget& part) {
    if (const auto* editor = qobject_cast<const QPlainTextEdit*>(&part))
        return editor->toPlainText();
    if (const auto* choice = qobject_cast<const QComboBox*>(&part))
        return choice->currentText();
    return part.property("text").toString();
}

/// Whether each control's text can be read, on whatever ground it stands.
inline void ExpectReadable(QWidget& window, const std::string& theme) {
    QApplication::processEvents();
    for (QWidget* part : window.findChildren<QWidget*>()) {
        const bool isSeen = part->isVisible() && part->isEnabled() && !part->visibleRegion().isEmpty();
        EXPECT_TRUE(!isSeen || ShownText(*part).isEmpty() || DrawnContrast(*part) >= 4.5)
            << window.objectName().toStdString() << ": " << part->metaObject()->className() << " "
            << part->objectName().toStdString() << " of " << theme;
    }
}
