#include <orvane/engine/Collator.h>

namespace orvane::engine {

QCollator collator() {
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    collator.setIgnorePunctuation(false);
    return collator;
}

int collatorCompare(const QCollator& collator, int length1, const void* text1, int length2,
                    const void* text2) {
    constexpr int unit = static_cast<int>(sizeof(QChar));
    // The strings only wrap SQLite's buffers: a comparison takes no memory of ours.
    return collator.compare(QString::fromRawData(static_cast<const QChar*>(text1), length1 / unit),
                            QString::fromRawData(static_cast<const QChar*>(text2), length2 / unit));
}

} // namespace orvane::engine
