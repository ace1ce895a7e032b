#pragma once

#include <QCoreApplication>
#include <QString>

#include <stdexcept>

namespace orvane::geometry {

/// What is thrown where a user asked for something that cannot be: the translated text, in UTF-8. The source
/// text is marked for this context with QT_TRANSLATE_NOOP; %0 and %1 in it stand for the arguments.
template<typename... Texts>
std::runtime_error failure(const char* text, const Texts&... arguments) {
    QString message = QCoreApplication::translate("orvane::geometry", text);
    if constexpr (sizeof...(arguments) > 0) {
        message = message.arg(arguments...);
    }
    return std::runtime_error(message.toStdString());
}

} // namespace orvane::geometry
