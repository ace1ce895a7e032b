#include "host/providers/text/TextEditor.h"

#include "host/providers/datasets/Archive.h"
#include "host/providers/text/RecordReader.h"
#include "host/providers/writing/FeatureWriter.h"
#include "platform/dp/Table.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/forms/TextFormats.h"

#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <array>
#include <cstring>

namespace orvane::files {

namespace {

QString fileName(const TextTable& table) {
    return pathOnDisk(QString::fromUtf8(table.path()));
}

/// The coordinates of a point in the plane; nothing for any other geometry.
std::optional<std::array<double, 2>> coordinatesOf(const std::shared_ptr<const geometry::Geometry>& shape) {
    constexpr std::string_view start("\1\1\0\0\0", 5);
    std::array<double, 2> coordinates;
    const QByteArray wkb = geometry::GeometryFactory::toWkb(shape, QSysInfo::LittleEndian);
    if (wkb.size() != 21 || std::memcmp(wkb.constData(), start.data(), start.size()) != 0) {
        return std::nullopt;
    }
    std::memcpy(coordinates.data(), wkb.constData() + start.size(), sizeof coordinates);
    return coordinates;
}

} // namespace

/// Gathers what is written.
class TextEditor::Output {
public:
    Output(QIODevice& file, QString name) : file_(file), name_(std::move(name)) {}

    void append(std::string_view text) {
        constexpr std::size_t enough = std::size_t{1} << 20;
        text_ += text;
        if (!text.empty()) {
            last_ = text.back();
        }
        if (text_.size() > enough) {
            flush();
        }
    }
    void flush() {
        if (file_.write(text_.data(), static_cast<qint64>(text_.size())) !=
            static_cast<qint64>(text_.size())) {
            throw dp::EditError(
                tr("Не удалось записать «%1»: %2").arg(name_, file_.errorString()).toStdString());
        }
        text_.clear();
    }
    bool isInLine() const { return last_ != '\n' && last_ != '\r'; }

    bool hasRow = false;

private:
    QIODevice& file_;
    QString name_;
    std::string text_;
    char last_ = '\n';
};

bool TextEditor::isReadOnly() {
    try {
        requireWritable();
        return false;
    } catch (const dp::EditError&) {
        return true;
    }
}

void TextEditor::requireWritable() const {
    const QString name = fileName(*table_);
    if (isInArchive(QString::fromUtf8(table_->path()))) {
        throw dp::EditError(tr("Архив «%1» можно только читать").arg(name).toStdString());
    }
    if (!table_->form().encoding.isEmpty()) {
        throw dp::EditError(tr("Файл «%1» не в UTF-8, его можно только читать").arg(name).toStdString());
    }
    if (!QFileInfo(name).isWritable()) {
        throw dp::EditError(tr("Файл «%1» можно только читать").arg(name).toStdString());
    }
}

/// The group of edits of the one table of the file.
class TextEditor::Group final : public FileEdit {
public:
    explicit Group(TextEditor& editor) : FileEdit(fileName(*editor.table_)), editor_(editor) {
        makeCopy({path(), besideFile(path(), "csvt"), besideFile(path(), "prj")});
    }
    ~Group() override { rollback(); }

private:
    static QString besideFile(const QString& path, const char* ending) {
        const QFileInfo file(path);
        return file.path() + QLatin1Char('/') + file.completeBaseName() + QLatin1Char('.') +
               QLatin1String(ending);
    }
    void writeOut() override { editor_.writeOut(path()); }
    void reopen() override { editor_.rows_ = editor_.table_->rowCount(); }
    void close() noexcept override { editor_.forget(); }
    void abandon() noexcept override { editor_.table_->follow(editor_.table_->path()); }
    void finish() override {
        FileEdit::finish();
        abandon();
    }

    TextEditor& editor_;
};

std::shared_ptr<FileEdit> TextEditor::startEdit() {
    requireWritable();
    rows_ = table_->rowCount();
    return std::make_shared<Group>(*this);
}

void TextEditor::writeOut(const QString& path) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        throw dp::EditError(
            tr("Не удалось записать «%1»: %2").arg(fileName(*table_), file.errorString()).toStdString());
    }
    try {
        write(file);
    } catch (...) {
        file.cancelWriting();
        throw;
    }
    const bool isWritten = file.flush();
    const QString reason = file.errorString(); // QSaveFile forgets it
    if (!isWritten || !file.commit()) {
        throw dp::EditError(tr("Не удалось записать «%1»: %2").arg(fileName(*table_), reason).toStdString());
    }
    forget();
    table_->follow(path.toUtf8());
    rows_ = table_->rowCount();
}

void TextEditor::forget() {
    insertedRows_ = 0;
    nextChange_ = 0;
    changes_ = {};
    texts_ = {};
    inserted_ = {};
}

std::int64_t TextEditor::insert(const dp::Feature& feature) {
    return inGroup([&] {
        std::vector<Value> values(table_->columns().size());
        for (int position = feature.numAttributes() - 1; position >= 0; --position) { // the geometry first
            if (!feature.getAttribute(position).isNull()) {
                forEachColumn(feature, position, [&](int column, const Value& value) {
                    values[static_cast<std::size_t>(column)] = value;
                });
            }
        }
        const std::size_t start = inserted_.size();
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (i > 0) {
                inserted_ += table_->form().separator;
            }
            const auto value = values[i] ? std::optional<std::string_view>(*values[i]) : std::nullopt;
            appendValue(static_cast<int>(i), value, table_->columns()[i].quotesAll, inserted_);
        }
        if (inserted_.size() == start) { // an empty line is no record
            inserted_ += "\"\"";
        }
        inserted_ += table_->form().lineEnd;
        return rows_ + ++insertedRows_;
    });
}

void TextEditor::update(const dp::Feature& feature, const std::vector<int>& positions) {
    inGroup([&] {
        const std::int64_t row = rowOf(feature.id());
        for (const int position : positions) {
            forEachColumn(feature, position,
                          [&](int column, const Value& value) { addChange(row, column, value); });
        }
        return true;
    });
}

void TextEditor::remove(const dp::FeatureId& id) {
    inGroup([&] {
        changes_.push_back({rowOf(id)});
        return true;
    });
}

std::int64_t TextEditor::rowOf(const dp::FeatureId& id) const {
    bool isNumber = false;
    const qlonglong row = id.value().toLongLong(&isNumber);
    if (!isNumber || row < 1 || row > rows_ + insertedRows_) {
        throw dp::EditError(
            tr("В «%1» нет записи %2").arg(fileName(*table_), id.value().toString()).toStdString());
    }
    return row;
}

template<class Set>
void TextEditor::forEachColumn(const dp::Feature& feature, int position, Set set) const {
    if (position < static_cast<int>(table_->columns().size())) {
        set(position, textOf(feature, position));
        return;
    }
    const TextGeometry& geometry = table_->geometry();
    const std::vector<Value> texts = textsOfGeometry(feature, position);
    set(geometry.text >= 0 ? geometry.text : geometry.x, texts[0]);
    if (geometry.text < 0) {
        set(geometry.y, texts[1]);
    }
}

TextEditor::Value TextEditor::textOf(const dp::Feature& feature, int position) const {
    const QVariant value = feature.getAttribute(position);
    if (value.isNull()) {
        return std::nullopt;
    }
    auto text = table_->columns()[static_cast<std::size_t>(position)].write(value);
    if (!text) {
        raiseUnfit(*table_->schema()->at(position), value);
    }
    return text;
}

std::vector<TextEditor::Value> TextEditor::textsOfGeometry(const dp::Feature& feature, int position) const {
    const auto& attribute = *table_->schema()->at(position);
    const QVariant value = feature.getAttribute(position);
    if (value.isNull()) {
        return {std::nullopt, std::nullopt};
    }
    const auto shape = geometryFor(attribute, value);
    const TextGeometry& geometry = table_->geometry();
    if (geometry.text >= 0) {
        std::string text;
        geometry::appendWkt(*shape, text);
        return {text};
    }
    const auto coordinates = coordinatesOf(shape);
    const auto textIn = [&](int column, std::size_t axis) {
        return coordinates ? table_->columns()[static_cast<std::size_t>(column)].write((*coordinates)[axis])
                           : std::nullopt;
    };
    std::vector<Value> texts{textIn(geometry.x, 0), textIn(geometry.y, 1)};
    if (!texts[0] || !texts[1]) {
        raiseUnfit(attribute, value);
    }
    return texts;
}

void TextEditor::addChange(std::int64_t row, int column, const Value& value) {
    Change change{row, column, !value, texts_.size(), value ? value->size() : 0};
    texts_ += value.value_or(std::string());
    changes_.push_back(change);
}

void TextEditor::appendValue(int column, const std::optional<std::string_view>& value, bool isQuoted,
                             std::string& text) const {
    const ColumnForm& form = table_->columns()[static_cast<std::size_t>(column)];
    if (!value) {
        text += form.missing;
        return;
    }
    const char special[] = {table_->form().separator, '"', '\r', '\n'};
    const bool needsQuotes = isQuoted || value->empty() ||
                             value->find_first_of(special, 0, sizeof special) != std::string_view::npos;
    if (!needsQuotes) {
        text += *value;
        return;
    }
    text += '"';
    for (const char character : *value) {
        text.append(character == '"' ? 2 : 1, character);
    }
    text += '"';
}

void TextEditor::write(QIODevice& file) {
    const auto isEarlier = [](const Change& a, const Change& b) {
        return a.row != b.row ? a.row < b.row : a.column < b.column;
    };
    if (!std::is_sorted(changes_.begin(), changes_.end(), isEarlier)) {
        std::stable_sort(changes_.begin(), changes_.end(), isEarlier);
    }
    const TextForm& form = table_->form();
    Output output(file, fileName(*table_));
    RecordReader records(table_->currentPath(), {}, form.separator);
    if (form.hasNames && records.next()) {
        output.append(records.whole());
    }
    std::int64_t row = 0;
    nextChange_ = 0;
    copyRows(records, row, output);
    output.append(records.before());
    if (insertedRows_ > 0 && output.isInLine()) {
        output.append(form.lineEnd);
    }
    RecordReader inserted(inserted_, form.separator);
    copyRows(inserted, row, output);
    output.flush();
}

void TextEditor::copyRows(RecordReader& records, std::int64_t& row, Output& output) {
    while (records.next()) {
        ++row;
        const auto first = nextChange_;
        while (nextChange_ < changes_.size() && changes_[nextChange_].row == row) {
            ++nextChange_;
        }
        if (first == nextChange_) {
            output.append(records.whole());
            output.hasRow = true;
        } else {
            changeRow(records, changes_.data() + first, changes_.data() + nextChange_, output);
        }
    }
}

void TextEditor::changeRow(RecordReader& record, const Change* changes, const Change* end, Output& output) {
    output.append(record.before());
    if (changes->column == wholeRow) {
        return;
    }
    std::string text;
    const auto fields = static_cast<int>(record.size());
    int column = 0;
    for (; column < fields || changes != end; ++column) {
        if (column > 0) {
            text += table_->form().separator;
        }
        while (changes + 1 < end && changes[0].column == column && changes[1].column == column) {
            ++changes; // the last one counts
        }
        const bool isThere = column < fields;
        const auto field = static_cast<std::size_t>(column);
        if (changes == end || changes->column != column) {
            text += isThere ? record.raw(field) : std::string_view();
            continue;
        }
        const auto value =
            changes->isNull ? std::nullopt
                            : std::optional(std::string_view(texts_).substr(changes->start, changes->size));
        appendValue(column, value, isThere && record.isQuoted(field), text);
        ++changes;
    }
    if (text.empty()) { // an empty line is no record
        text = "\"\"";
    }
    if (!table_->form().hasNames && !output.hasRow) {
        requireNumber(text);
    }
    output.hasRow = true;
    output.append(text);
    output.append(record.lineEnd());
}

void TextEditor::requireNumber(std::string_view record) const {
    RecordReader values(record, table_->form().separator);
    values.next();
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (realInText(values.value(i), table_->columns().front().takesComma)) {
            return;
        }
    }
    throw dp::EditError(tr("В «%1» нет имён столбцов: без числа в первой строке она была бы принята за них")
                            .arg(fileName(*table_))
                            .toStdString());
}

} // namespace orvane::files
