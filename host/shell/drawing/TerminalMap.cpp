#include "host/shell/drawing/TerminalMap.h"

#include "host/maps/classes/Palettes.h"
#include "platform/utils/VisibleText.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <map>

namespace orvane::shell {

namespace {

constexpr int dotsAcross = 2; ///< of a character
constexpr int dotsDown = 4;
constexpr QRgb none = 0;

/// The dots of a braille character, row for row, as bits above U+2800.
constexpr int brailleBits[dotsDown][dotsAcross] = {{0x01, 0x08}, {0x02, 0x10}, {0x04, 0x20}, {0x40, 0x80}};
/// Thresholds of Bayer's for patterns of 16 densities.
constexpr int bayer[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};

/// Writes characters with the colours that they need, changing them only where they change.
class ColourText {
public:
    explicit ColourText(const TerminalSpace& space) : space_(space) {}

    void setColours(QRgb foreground, QRgb background) {
        if (!space_.hasColours || (foreground == foreground_ && background == background_)) {
            return;
        }
        text_ += "\033[0";
        addColour("38", foreground);
        addColour("48", background);
        text_ += 'm';
        foreground_ = foreground;
        background_ = background;
    }
    /// A character of the plane of braille and blocks.
    void add(char32_t character) {
        text_ += static_cast<char>(0xE0 | (character >> 12));
        text_ += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
        text_ += static_cast<char>(0x80 | (character & 0x3F));
    }
    void add(const std::string& text) { text_ += text; }
    void endLine() {
        setColours(none, none);
        while (!text_.empty() && text_.back() == ' ') {
            text_.pop_back();
        }
        text_ += '\n';
    }
    const std::string& text() const { return text_; }

private:
    void addColour(const char* where, QRgb colour) {
        if (colour == none) {
            return;
        }
        if (space_.hasAllColours) {
            text_ += ';' + std::string(where) + ";2;" + std::to_string(qRed(colour)) + ';' +
                     std::to_string(qGreen(colour)) + ';' + std::to_string(qBlue(colour));
            return;
        }
        const auto level = [](int value) { return (value * 5 + 127) / 255; }; // the cube of six by six by six
        const int index = 16 + 36 * level(qRed(colour)) + 6 * level(qGreen(colour)) + level(qBlue(colour));
        text_ += ';' + std::string(where) + ";5;" + std::to_string(index);
    }

    TerminalSpace space_;
    std::string text_;
    QRgb foreground_ = none;
    QRgb background_ = none;
};

QImage drawn(maps::Map& map, QSize size, maps::Map::Pass pass) {
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    map.draw(painter, pass);
    return image;
}

/// The colour that most of a character's dots have; none when fewer than half have any.
QRgb majority(const QImage& image, int left, int top, int least) {
    std::array<std::pair<QRgb, int>, dotsAcross * dotsDown> found{};
    std::size_t count = 0;
    int coloured = 0;
    for (int y = top; y < top + dotsDown; ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = left; x < left + dotsAcross; ++x) {
            if (qAlpha(line[x]) == 0) {
                continue;
            }
            ++coloured;
            const auto end = found.begin() + static_cast<std::ptrdiff_t>(count);
            const auto known =
                std::find_if(found.begin(), end, [&](const auto& each) { return each.first == line[x]; });
            known == end ? void(found[count++] = {line[x], 1}) : void(++known->second);
        }
    }
    const auto end = found.begin() + static_cast<std::ptrdiff_t>(count);
    const auto most = std::max_element(found.begin(), end,
                                       [](const auto& a, const auto& b) { return a.second < b.second; });
    return coloured >= least && most != end ? most->first : none;
}

QRgb readableOn(QRgb background) {
    return qGray(background) > 120 ? qRgb(0, 0, 0) : qRgb(255, 255, 255);
}

/// How dense the pattern of each class is, of 16; nothing for what has no value.
std::map<QRgb, int> densities(maps::Map& map) {
    std::map<QRgb, int> all;
    for (const auto& [title, classes] : map.classes()) {
        const auto count = static_cast<int>(classes->classes().size());
        int number = 0;
        for (const auto& each : classes->classes()) {
            const int density =
                each.colour == maps::noValueColour() ? 0 : 1 + 13 * number++ / std::max(1, count - 1);
            all.emplace(each.colour.rgba(), density);
        }
    }
    return all;
}

void addLegend(maps::Map& map, const TerminalSpace& space, const std::map<QRgb, int>& patterns,
               ColourText& out) {
    for (const auto& [title, classes] : map.classes()) {
        out.add(utils::visibleText(title.toStdString()));
        out.endLine();
        for (const auto& each : classes->classes()) {
            const QRgb colour = each.colour.rgba();
            out.setColours(none, colour);
            for (int column = 0; column < 3; ++column) {
                int bits = 0;
                for (int y = 0; y < dotsDown && !space.hasColours; ++y) {
                    for (int x = 0; x < dotsAcross; ++x) {
                        bits |= patterns.at(colour) > bayer[y][(dotsAcross * column + x) % 4]
                                    ? brailleBits[y][x]
                                    : 0;
                    }
                }
                space.hasColours ? out.add(" ") : out.add(char32_t(0x2800 + bits));
            }
            out.setColours(none, none);
            out.add(' ' + each.title.toStdString());
            out.endLine();
        }
    }
}

/// Columns and rows with the map's own proportions.
QSize charactersFor(maps::Map& map, const TerminalSpace& space) {
    const geometry::Envelope extent = map.extent();
    const double width = extent.maxX - extent.minX;
    const double height = extent.maxY - extent.minY;
    const int columns = std::clamp(space.columns, 10, 500);
    const int most = std::clamp(space.rows, 4, 500);
    const double rows = width > 0 ? height / width * columns * dotsAcross / dotsDown : most;
    return {columns, std::clamp(static_cast<int>(std::ceil(rows)), 4, most)};
}

} // namespace

std::string terminalMap(maps::Map& map, const TerminalSpace& space) {
    const QSize characters = charactersFor(map, space);
    const QSize dots(characters.width() * dotsAcross, characters.height() * dotsDown);
    map.setSize(dots);
    const QImage areas = drawn(map, dots, maps::Map::Pass::Areas);
    const QImage lines = drawn(map, dots, maps::Map::Pass::Lines);
    const auto patterns = densities(map);
    const QRgb outline = maps::LayerStyle().outline.rgba();
    ColourText out(space);
    for (int top = 0; top < dots.height(); top += dotsDown) {
        for (int left = 0; left < dots.width(); left += dotsAcross) {
            int bits = 0;
            for (int y = 0; y < dotsDown; ++y) {
                const auto* line = reinterpret_cast<const QRgb*>(lines.constScanLine(top + y));
                const auto* area = reinterpret_cast<const QRgb*>(areas.constScanLine(top + y));
                for (int x = 0; x < dotsAcross; ++x) {
                    bool isSet = qAlpha(line[left + x]) != 0;
                    if (!space.hasColours && !isSet && qAlpha(area[left + x]) != 0) {
                        const auto pattern = patterns.find(area[left + x]);
                        isSet = pattern != patterns.end() && pattern->second > bayer[y][(left + x) % 4];
                    }
                    bits |= isSet ? brailleBits[y][x] : 0;
                }
            }
            const QRgb background = majority(areas, left, top, dotsAcross * dotsDown / 2);
            const QRgb ink = bits == 0 ? none : majority(lines, left, top, 1);
            out.setColours(ink == outline ? (background == none ? none : readableOn(background)) : ink,
                           background);
            bits == 0 ? out.add(" ") : out.add(char32_t(0x2800 + bits));
        }
        out.endLine();
    }
    addLegend(map, space, patterns, out);
    return out.text();
}

} // namespace orvane::shell
