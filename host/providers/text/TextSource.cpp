#include "host/providers/text/TextSource.h"

#include "host/providers/datasets/GdalErrors.h"
#include "host/providers/reading/SampleReader.h"
#include "host/providers/text/RecordReader.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace orvane::files {

namespace {

void appendPoint(std::string_view x, std::string_view y, bool takesComma, ColumnBuilder& builder) {
    const auto realX = realInText(x, takesComma), realY = realInText(y, takesComma);
    if (!realX || !realY) {
        builder.appendNull();
        return;
    }
    constexpr std::string_view start("\1\1\0\0\0", 5); // little-endian, a point
    std::array<char, 21> wkb;
    std::memcpy(wkb.data(), start.data(), start.size());
    std::memcpy(wkb.data() + 5, &*realX, sizeof(double));
    std::memcpy(wkb.data() + 13, &*realY, sizeof(double));
    builder.append(std::string_view(wkb.data(), wkb.size()));
}

/// Well-known text, GeoJSON, or well-known binary in hexadecimal digits; null for any other text.
GeometryHandle geometryInText(const std::string& text) {
    const GdalErrorScope errors;
    if (text.find('{') == 0) {
        return GeometryHandle(OGR_G_CreateGeometryFromJson(text.c_str()));
    }
    OGRGeometryH geometry = nullptr;
    if (text.find('0') == 0) {
        int size = 0;
        const CplString wkb(reinterpret_cast<char*>(CPLHexToBinary(text.c_str(), &size)));
        OGR_G_CreateFromWkb(wkb.get(), nullptr, &geometry, size);
    } else {
        std::string copy = text;
        char* start = copy.data();
        OGR_G_CreateFromWkt(&start, nullptr, &geometry);
    }
    return GeometryHandle(geometry);
}

void appendGeometry(const std::string& text, ColumnBuilder& builder) {
    const GeometryHandle geometry = text.empty() ? nullptr : geometryInText(text);
    if (!geometry) {
        builder.appendNull();
        return;
    }
    auto* wkb = builder.appendSpace(static_cast<std::size_t>(OGR_G_WkbSize(geometry.get())));
    if (OGR_G_ExportToIsoWkb(geometry.get(), wkbNDR, reinterpret_cast<unsigned char*>(wkb)) != OGRERR_NONE) {
        builder.replaceLastByNull();
    }
}

class TextReader final : public BatchReader {
public:
    using Places = std::vector<TextPlace>;

    /// All rows, or those with these numbers, ascending, with some places on the way to them; or some rows
    /// from each of these places on.
    TextReader(std::shared_ptr<const TextTable> table, std::vector<int> attributes, std::int64_t batchRows,
               std::optional<std::vector<std::int64_t>> ids, std::shared_ptr<const Places> places = nullptr)
        : table_(std::move(table)), attributes_(std::move(attributes)), batchRows_(batchRows),
          ids_(std::move(ids)), places_(std::move(places)),
          records_(table_->currentPath(), table_->form().encoding, table_->form().separator) {
        if (table_->form().hasNames) {
            records_.next();
        }
    }

    bool next(ColumnBatch& batch) override {
        std::vector<ColumnKind> kinds;
        for (const int attribute : attributes_) {
            kinds.push_back(isGeometry(attribute) ? ColumnKind::Wkb : column(attribute).kind());
        }
        BatchBuilder builder(kinds);
        while (builder.takesRow(batchRows_) && nextRecord()) {
            for (std::size_t i = 0; i < attributes_.size(); ++i) {
                append(attributes_[i], builder.columns[i]);
            }
            builder.endRow(row_);
        }
        return std::move(builder).finish(batch);
    }

private:
    bool isGeometry(int attribute) const { return attribute == static_cast<int>(table_->columns().size()); }
    const ColumnForm& column(int attribute) const {
        return table_->columns()[static_cast<std::size_t>(attribute)];
    }

    /// Of a sample.
    bool nextOfPlace() {
        while (row_ == endOfPlace_ || !records_.next()) {
            if (nextPlace_ == places_->size()) {
                return false;
            }
            jumpTo((*places_)[nextPlace_++]);
            endOfPlace_ = row_ + TextTable::rowsBetweenPlaces;
        }
        ++row_;
        return true;
    }

    bool nextRecord() {
        if (ids_) {
            return nextOfIds();
        }
        if (places_) {
            return nextOfPlace();
        }
        ++row_;
        return records_.next();
    }

    bool nextOfIds() {
        while (nextId_ < ids_->size()) {
            const auto wanted = (*ids_)[nextId_];
            if (wanted <= row_) {
                ++nextId_; // there is no such row, or it came already
                continue;
            }
            jumpTowards(wanted);
            do {
                if (!records_.next()) {
                    return false;
                }
            } while (++row_ < wanted);
            ++nextId_;
            return true;
        }
        return false;
    }

    /// To the last place before a row, unless that lies behind.
    void jumpTowards(std::int64_t row) {
        const auto behind =
            std::upper_bound(places_->begin(), places_->end(), row,
                             [](std::int64_t wanted, const TextPlace& place) { return wanted < place.row; });
        if (behind != places_->begin() && (behind - 1)->row > row_ + 1) {
            jumpTo(*(behind - 1));
        }
    }

    void jumpTo(const TextPlace& place) {
        records_.jumpTo(place.offset);
        row_ = place.row - 1;
    }

    void append(int attribute, ColumnBuilder& builder) {
        if (isGeometry(attribute)) {
            const TextGeometry& geometry = table_->geometry();
            if (geometry.text >= 0) {
                text_ = value(geometry.text);
                appendGeometry(text_, builder);
            } else {
                text_ = value(geometry.x);
                appendPoint(text_, value(geometry.y), column(geometry.x).takesComma, builder);
            }
            return;
        }
        const auto field = static_cast<std::size_t>(attribute);
        if (field < records_.size()) {
            column(attribute).read(records_.value(field), records_.isQuoted(field), builder);
        } else {
            builder.appendNull();
        }
    }

    std::string_view value(int column) {
        const auto field = static_cast<std::size_t>(column);
        return field < records_.size() ? records_.value(field) : std::string_view();
    }

    const std::shared_ptr<const TextTable> table_;
    const std::vector<int> attributes_;
    const std::int64_t batchRows_;
    const std::optional<std::vector<std::int64_t>> ids_;
    const std::shared_ptr<const Places> places_;
    RecordReader records_;
    std::int64_t row_ = 0;
    std::size_t nextId_ = 0;
    std::size_t nextPlace_ = 0;
    std::int64_t endOfPlace_ = 0; ///< its last row
    std::string text_;
};

} // namespace

ValueClass TextSource::valueClass(int attribute) const {
    if (attribute == static_cast<int>(table_->columns().size())) {
        return ValueClass::Other;
    }
    switch (table_->columns()[static_cast<std::size_t>(attribute)].kind()) {
    case ColumnKind::Int64: return ValueClass::Integer;
    case ColumnKind::Double: return ValueClass::Real;
    default: return ValueClass::Text;
    }
}

std::unique_ptr<BatchReader> TextSource::scan(const std::vector<int>& attributes, std::int64_t batchRows,
                                              const std::string&) {
    table_->rowCount(); // refuses a file that is another table now
    return std::make_unique<TextReader>(table_, attributes, batchRows, std::nullopt);
}

std::unique_ptr<BatchReader> TextSource::lookUp(const std::vector<int>& attributes,
                                                std::vector<std::int64_t> ids) {
    table_->rowCount();
    return std::make_unique<TextReader>(table_, attributes, rowsPerBatch, std::move(ids), table_->places());
}

std::unique_ptr<BatchReader> TextSource::sample(const std::vector<int>& attributes, std::int64_t rows) {
    table_->rowCount();
    const auto places = table_->places();
    if (places->empty()) {
        return RowSource::sample(attributes, rows);
    }
    const auto wanted = static_cast<double>(rows / TextTable::rowsBetweenPlaces);
    const double step = std::max(1.0, static_cast<double>(places->size()) / wanted);
    std::vector<TextPlace> chosen;
    std::vector<IdRange> runs;
    for (double at = 0; at < static_cast<double>(places->size()); at += step) {
        const auto& place = (*places)[static_cast<std::size_t>(at)];
        chosen.push_back(place);
        runs.push_back({place.row, place.row + TextTable::rowsBetweenPlaces - 1});
    }
    return std::make_unique<RunReader>(
        std::make_unique<TextReader>(table_, attributes, rowsPerBatch, std::nullopt,
                                     std::make_shared<const std::vector<TextPlace>>(std::move(chosen))),
        std::move(runs));
}

} // namespace orvane::files
