#pragma once

#include <algorithm>
#include <cmath>

#include <QColor>

/// How well two colours stand out from each other, from 1 to 21: the contrast ratio of WCAG 2.1, which wants 4.5 for texts.
inline double Contrast(const QColor& left, const QColor& right) {
    const auto luminance = [](const QColor& color) {
        const auto part = [](double value) {
            return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) + 0.0722 * part(color.blueF());
    };
    const double light = std::max(luminance(left), luminance(right));
    const double dark = std::min(luminance(left), luminance(right));
    return (light + 0.05) / (dark + 0.05);
}
