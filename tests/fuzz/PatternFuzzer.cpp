// LIKE and glob patterns: "pattern NUL text". The prepared matcher and the regular expressions answer alike.
#include "engine/functions/PatternMatch.h"
#include "platform/utils/Patterns.h"

#include <QRegularExpression>

#include <cstdlib>

namespace {

bool isComparable(const QString& text) {
    // SQLite gives U+FFFE and U+FFFF to the entry points as U+FFFD. Very long expressions do not compile.
    return !text.contains(QChar(0xFFFE)) && !text.contains(QChar(0xFFFF)) && text.size() < 1000;
}

void expectSame(const orvane::engine::PatternMatch& match, const QString& expression, const QString& text) {
    const QRegularExpression regular(expression, QRegularExpression::CaseInsensitiveOption);
    const QByteArray utf8 = text.toUtf8();
    if (!regular.isValid() || regular.match(text).hasMatch() !=
                                  match.matches(reinterpret_cast<const unsigned char*>(utf8.constData()))) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    const QByteArray input(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const int separator = input.indexOf('\0');
    const QString pattern = QString::fromUtf8(input.left(separator));
    const QString text = separator < 0 ? QString() : QString::fromUtf8(input.mid(separator + 1).constData());
    if (!isComparable(pattern) || !isComparable(text)) {
        return 0;
    }
    using orvane::engine::PatternMatch;
    const QByteArray utf8 = pattern.toUtf8();
    const auto* bytes = reinterpret_cast<const unsigned char*>(utf8.constData());
    expectSame(PatternMatch::like(bytes, 0), orvane::utils::likeToRegular(pattern, QChar()), text);
    expectSame(PatternMatch::like(bytes, '!'), orvane::utils::likeToRegular(pattern, QLatin1Char('!')), text);
    expectSame(PatternMatch::glob(bytes), orvane::utils::globToRegular(pattern), text);
    return 0;
}
