// LIKE and glob patterns: "pattern NUL text", any bytes. The matcher and the regular expressions answer
// alike.
#include "support/PatternExpression.h"

#include <orvane/engine/functions/PatternMatch.h>

#include <cstdlib>

namespace {

void expectSame(const orvane::engine::PatternMatch& match, const QRegularExpression& regular,
                const QByteArray& text) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.constData());
    const auto expected = regular.match(QString::fromUtf8(text));
    // A run that the regular expressions give up has no answer.
    if (regular.isValid() && expected.isValid() && expected.hasMatch() != match.matches(bytes)) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    const QByteArray input(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const int separator = input.indexOf('\0');
    const QByteArray pattern = input.left(separator);
    const QByteArray text = separator < 0 ? QByteArray() : QByteArray(input.constData() + separator + 1);
    // Qt takes a byte order mark at the front away.
    if (pattern.startsWith("\xEF\xBB\xBF") || text.startsWith("\xEF\xBB\xBF") || pattern.size() > 1000) {
        return 0;
    }
    using orvane::engine::PatternMatch;
    using orvane::tests::PatternExpression;
    const auto* bytes = reinterpret_cast<const unsigned char*>(pattern.constData());
    const QString characters = QString::fromUtf8(pattern);
    expectSame(PatternMatch::like(bytes, 0), PatternExpression::like(characters, 0), text);
    expectSame(PatternMatch::like(bytes, '!'), PatternExpression::like(characters, '!'), text);
    expectSame(PatternMatch::glob(bytes), PatternExpression::glob(characters), text);
    return 0;
}
