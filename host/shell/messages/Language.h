#pragma once

#include <QTranslator>

namespace orvane::shell {

/// The user's language, for as long as the object lives: the default locale, by which texts are compared and
/// numbers are written for people, and the language of the messages, Russian or else English.
class Language {
public:
    /// A locale name such as "ru_RU"; empty for that of the environment. An unknown name counts as "C".
    explicit Language(const QString& localeName);

private:
    QTranslator translator_;
};

} // namespace orvane::shell
