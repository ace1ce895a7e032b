#pragma once

#include <QTranslator>

namespace orvane::desk {

/// The language of the program, after the system's locale: Russian, and English for all others. For as long
/// as it lives; made behind the application.
class Language {
public:
    Language();
    ~Language();
    Language(const Language&) = delete;
    Language& operator=(const Language&) = delete;

private:
    QTranslator texts_;
    QTranslator dialogs_; ///< of Qt's own
};

} // namespace orvane::desk
