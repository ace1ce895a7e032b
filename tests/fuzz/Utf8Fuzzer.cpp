// Any bytes as UTF-8: read forwards and backwards, in memory of their own size, as Qt reads them; the order
// of the locale takes them as the collator takes what was read.
#include "platform/utils/Utf8.h"
#include <orvane/engine/Collator.h>
#include <orvane/engine/LocaleOrder.h>

#include <QLocale>

#include <cstdlib>
#include <vector>

using namespace orvane;

namespace {

void expect(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void expectSameReading(std::string_view text) {
    const auto* const begin = reinterpret_cast<const unsigned char*>(text.data());
    std::vector<std::size_t> starts;
    QString characters;
    for (std::size_t at = 0; at < text.size();) {
        starts.push_back(at);
        const uint character = utf8::nextCharacter(text, at);
        const QString written = QString::fromUcs4(&character, 1);
        characters += character == 0xFEFF ? QString(QChar(0xFEFF)) : written;
    }
    expect(characters == utf8::decode(text));
    for (const unsigned char* at = begin + text.size(); at != begin; starts.pop_back()) {
        at = utf8::previousCharacter(begin, at);
        expect(begin + starts.back() == at);
    }
    std::vector<char> written(static_cast<std::size_t>(characters.size()) * utf8::mostBytesOfUnit + 1);
    const std::string_view again(written.data(), utf8::encode(characters, written.data()));
    expect(utf8::findIllFormed(again) == again.size());
    expect((utf8::findIllFormed(text) == text.size()) == (again == text));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    const std::vector<char> bytes(data, data + size);
    const std::string_view text(bytes.data(), bytes.size());
    expectSameReading(text);

    static const auto order = [] {
        QLocale::setDefault(QLocale(QStringLiteral("ru")));
        return engine::LocaleOrder::current();
    }();
    const auto sign = [](int number) { return (number > 0) - (number < 0); };
    const std::string_view a = text.substr(0, text.size() / 2), b = text.substr(text.size() / 2);
    static const QCollator collator = engine::collator();
    expect(sign(order->compare(a, b)) == sign(collator.compare(utf8::decode(a), utf8::decode(b))));
    return 0;
}
