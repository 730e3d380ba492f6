#pragma once

#include <QColor>
#include <QString>

#include <string>
#include <string_view>

#include "platform/Text.h"

// What the window shows of the form and gives back to it: menu text is Windows-1252 bytes,
// Qt's text is Unicode.
namespace vkl::gui {

inline QString fromCp1252(std::string_view s) {
    return QString::fromStdString(text::cp1252ToUtf8(s));
}

inline std::string toCp1252(const QString& s) {
    return text::utf8ToCp1252(s.toStdString());
}

// a laid over b with the given share of a (0 to 1).
inline QColor mix(const QColor& a, const QColor& b, double share) {
    return QColor::fromRgbF(static_cast<float>(a.redF() * share + b.redF() * (1 - share)),
                            static_cast<float>(a.greenF() * share + b.greenF() * (1 - share)),
                            static_cast<float>(a.blueF() * share + b.blueF() * (1 - share)));
}

}  // namespace vkl::gui
