#include "host/providers/reading/ArrowReader.h"

#include "host/providers/datasets/SqliteConfinement.h"
#include <algorithm>
#include <cstring>

namespace orvane::files {

namespace {

/// The format letter of the Arrow C data interface.
const char* arrowFormat(ColumnKind kind) {
    switch (kind) {
    case ColumnKind::Int16: return "s";
    case ColumnKind::Int32: return "i";
    case ColumnKind::Int64: return "l";
    case ColumnKind::Double: return "g";
    case ColumnKind::Text: return "u";
    case ColumnKind::Bytes:
    case ColumnKind::Wkb: return "z";
    }
    return "";
}

std::size_t rowBytes(ColumnKind kind) {
    switch (kind) {
    case ColumnKind::Int16: return 2;
    case ColumnKind::Int64:
    case ColumnKind::Double: return 8;
    default: return 4;
    }
}

/// The order of the columns in the stream: fields as in the layer, then the geometry.
int streamOrder(const LayerColumn& column) {
    return column.source == LayerColumn::Source::Geometry ? std::numeric_limits<int>::max() : column.field;
}

/// `capacity` is the number of rows for which the driver took memory.
ColumnChunk makeChunk(ColumnKind kind, const ArrowArray& array, std::int64_t capacity,
                      const std::shared_ptr<const void>& owner) {
    ColumnChunk chunk;
    chunk.kind = kind;
    chunk.first = array.offset;
    if (array.null_count != 0) {
        chunk.validity = static_cast<const std::uint8_t*>(array.buffers[0]);
    }
    chunk.values = array.buffers[1];
    chunk.bytes = static_cast<std::size_t>(capacity) * rowBytes(kind);
    if (kind >= ColumnKind::Text) {
        chunk.data = static_cast<const char*>(array.buffers[2]);
        chunk.bytes += static_cast<std::size_t>(
            static_cast<const std::int32_t*>(chunk.values)[array.offset + array.length]);
    }
    chunk.owner = owner;
    return chunk;
}

void releaseArray(ArrowArray* array) {
    if (array->release) {
        array->release(array);
    }
    delete array;
}

} // namespace

bool ArrowReader::suits(const LayerScan& scan) {
    // FlatGeobuf's stream of no rows never ends; it does not count them either.
    const char* driver = GDALGetDriverShortName(GDALGetDatasetDriver(scan.lease.dataset()));
    const bool isEmpty = EQUAL(driver, "FlatGeobuf") && scan.promisedRows <= 0;
    return !isEmpty && OGR_L_TestCapability(scan.layer, OLCFastGetArrowStream) &&
           std::all_of(scan.columns.begin(), scan.columns.end(),
                       [](const LayerColumn* column) { return column->isArrowExact; });
}

std::unique_ptr<ArrowReader> ArrowReader::start(LayerScan& scan) {
    std::unique_ptr<ArrowReader> reader(new ArrowReader);
    reader->failures_ = failuresOutsideScopes().count;
    const auto batchOption = "MAX_FEATURES_IN_BATCH=" + std::to_string(scan.batchRows);
    const char* const options[] = {"INCLUDE_FID=YES", batchOption.c_str(), nullptr};
    const GdalErrorScope errors;
    if (!OGR_L_GetArrowStream(scan.layer, &reader->stream_, const_cast<char**>(options)) ||
        !reader->hasExpectedLayout(scan)) {
        return nullptr;
    }
    reader->scan_ = std::move(scan);
    return reader;
}

ArrowReader::~ArrowReader() {
    if (stream_.release) {
        stream_.release(&stream_);
    }
    if (scan_.layer) {
        OGR_L_ResetReading(scan_.layer); // an unfinished query would keep the file locked for writers
    }
}

bool ArrowReader::hasExpectedLayout(const LayerScan& scan) {
    std::vector<const LayerColumn*> fields;
    for (const auto* column : scan.columns) {
        if (column->source != LayerColumn::Source::FeatureId) {
            fields.push_back(column);
        }
    }
    std::sort(fields.begin(), fields.end(),
              [](const LayerColumn* a, const LayerColumn* b) { return streamOrder(*a) < streamOrder(*b); });

    ArrowSchema schema{};
    if (stream_.get_schema(&stream_, &schema) != 0) {
        return false;
    }
    const std::unique_ptr<ArrowSchema, void (*)(ArrowSchema*)> owner(
        &schema, [](ArrowSchema* released) { released->release(released); });
    if (schema.n_children != static_cast<std::int64_t>(fields.size()) + 1 ||
        std::strcmp(schema.children[0]->format, "l") != 0) {
        return false;
    }
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (std::strcmp(schema.children[i + 1]->format, arrowFormat(fields[i]->arrowKind)) != 0) {
            return false;
        }
    }
    for (const auto* column : scan.columns) {
        const auto found = std::find(fields.begin(), fields.end(), column);
        children_.push_back(found == fields.end() ? 0 : static_cast<std::size_t>(found - fields.begin()) + 1);
    }
    return true;
}

bool ArrowReader::next(ColumnBatch& batch) {
    constexpr int mostEmpty = 1000;
    const std::shared_ptr<ArrowArray> array(new ArrowArray{}, releaseArray);
    const Confinement confinement = confine(scan_.lease);
    for (int i = 0; array->length == 0; ++i) {
        const GdalErrorScope errors;
        if (array->release) {
            array->release(array.get());
        }
        *array = {};
        const bool hasFailed = stream_.get_next(&stream_, array.get()) != 0;
        const char* reason = hasFailed ? stream_.get_last_error(&stream_) : nullptr;
        // Without a second connection to read ahead GDAL goes on with this one.
        const bool hasError = !errors.error().isEmpty() && !saysUnconfined(errors.error());
        if (hasFailed || hasError || i == mostEmpty) {
            scan_.raise(errors, QString::fromUtf8(reason));
        }
        // The driver may read in threads of its own, and go on after failures.
        if (const auto failures = failuresOutsideScopes(); failures.count != failures_) {
            scan_.raise(errors, failures.last);
        }
        if (!array->release) {
            scan_.requireRows(errors);
            return false;
        }
    }

    batch.rows = array->length;
    scan_.rows += batch.rows;
    batch.fids = makeChunk(ColumnKind::Int64, *array->children[0], scan_.batchRows, array);
    batch.columns.clear();
    for (std::size_t i = 0; i < children_.size(); ++i) {
        const auto kind = children_[i] == 0 ? ColumnKind::Int64 : scan_.columns[i]->arrowKind;
        batch.columns.push_back(makeChunk(kind, *array->children[children_[i]], scan_.batchRows, array));
    }
    return true;
}

} // namespace orvane::files
