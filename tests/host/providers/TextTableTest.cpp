// Text tables of every form are read, edited in the middle and read again. The number of tables can be raised
// by ORVANE_TEXT_TABLES.

#include "host/providers/FileSource.h"
#include "host/providers/TestLayers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <random>
#include <set>

namespace orvane::files {
namespace {

using Rows = std::vector<std::vector<std::string>>;

/// Text values; with the first one, a column is one of texts.
const std::vector<std::string> TEXTS{"abc",        "",   "Ёлка 😀", "a,b;c\td|e", "say \"no\"", "\"", " x ",
                                     "two\nlines", "NA", "-",      "1",          "true",       "\r"};

class RandomTable {
public:
    explicit RandomTable(unsigned seed) : random_(seed) {
        separator_ = ",;\t|"[number(0, 3)];
        lineEnd_ = number(0, 1) == 0 ? "\n" : "\r\n";
        mark_ = std::vector<std::string>{"", "", "NA", "-"}[static_cast<std::size_t>(number(0, 3))];
        hasComma_ = separator_ == ';' && number(0, 1) == 0;
        joint_ = " T"[number(0, 1)];
        dateSeparator_ = "-/"[number(0, 1)];
        zone_ = std::vector<std::string>{"", "Z", "+03:00"}[static_cast<std::size_t>(number(0, 2))];
        words_ = number(0, 2);
        for (auto& quotes : quotesAll_) {
            quotes = number(0, 3) == 0;
        }
    }

    static constexpr std::size_t width = 7;
    struct Value {
        QVariant value;
        std::string cell = "NULL";
        std::string raw;
    };

    int number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

    Value value(std::size_t column, bool isFirst) {
        if (!isFirst && number(0, 4) == 0) {
            return {{}, "NULL", column == 6 ? "" : mark_};
        }
        Value made;
        char text[64];
        const QDate date(number(1000, 9999), number(1, 12), number(1, 28));
        const QTime time(number(0, 23), number(0, 59), number(0, 59), number(0, 1) * number(0, 999));
        const std::string days = date.toString(QStringLiteral("yyyy-MM-dd")).toStdString();
        const std::string hours = time.toString(QStringLiteral("hh:mm:ss.zzz")).toStdString();
        std::string fileDays = days;
        fileDays[4] = fileDays[7] = dateSeparator_;
        const std::string fileHours = time.msec() == 0 ? hours.substr(0, 8) : hours;
        switch (column) {
        case 0: {
            const qlonglong whole = number(0, 1) == 0 ? number(-9, 9) : std::int64_t{1} << number(0, 62);
            made = {whole, "i:" + std::to_string(whole), std::to_string(whole)};
            break;
        }
        case 1: {
            const double real = isFirst ? 0.5 : std::ldexp(number(-99999, 99999), number(-80, 80));
            std::snprintf(text, sizeof text, "%.17g", real);
            made = {real, std::string("r:") + text, text};
            if (hasComma_ && made.raw.find('.') != std::string::npos) {
                made.raw[made.raw.find('.')] = ',';
            }
            if (made.raw.find_first_of(".,e") == std::string::npos) { // without, a long one would be a code
                made.raw += "e0";
            }
            break;
        }
        case 2: {
            static const char* const words[3][2] = {{"false", "true"}, {"False", "True"}, {"FALSE", "TRUE"}};
            const int truth = number(0, 1);
            made = {truth != 0, "i:" + std::to_string(truth), words[words_][truth]};
            break;
        }
        case 3: made = {date, "t:" + days, fileDays}; break;
        case 4: made = {time, "t:" + hours, fileHours}; break;
        case 5:
            made = {QString::fromStdString(days + ' ' + hours), "t:" + days + ' ' + hours,
                    fileDays + joint_ + fileHours + zone_};
            break;
        default:
            made.raw = TEXTS[isFirst ? 0 : static_cast<std::size_t>(number(0, int(TEXTS.size()) - 1))];
            made.value = QString::fromStdString(made.raw);
            made.cell = "t:" + made.raw;
        }
        const bool needsQuotes = made.raw.empty() || made.raw.find_first_of(std::string("\"\r\n") +
                                                                            separator_) != std::string::npos;
        if (needsQuotes || quotesAll_[column]) {
            std::string quoted = "\"";
            for (const char character : made.raw) {
                quoted.append(character == '"' ? 2 : 1, character);
            }
            made.raw = quoted + '"';
        }
        return made;
    }

    std::string line(const std::vector<std::string>& raw) const {
        std::string text;
        for (std::size_t i = 0; i < raw.size(); ++i) {
            text += (i == 0 ? std::string() : std::string(1, separator_)) + raw[i];
        }
        return text + lineEnd_;
    }
    /// The values of a file as they stand there.
    Rows split(const std::string& text) const {
        Rows rows(1, {""});
        bool isQuoted = false;
        for (std::size_t i = 0; i < text.size(); ++i) {
            isQuoted = isQuoted != (text[i] == '"');
            if (!isQuoted && text[i] == separator_) {
                rows.back().emplace_back();
            } else if (!isQuoted && text.compare(i, lineEnd_.size(), lineEnd_) == 0) {
                rows.push_back({""});
                i += lineEnd_.size() - 1;
            } else {
                rows.back().back() += text[i];
            }
        }
        rows.pop_back();
        return rows;
    }

private:
    std::mt19937 random_;
    char separator_, joint_, dateSeparator_;
    std::string lineEnd_, mark_, zone_;
    bool hasComma_;
    int words_;
    std::array<bool, width> quotesAll_;
};

/// A row of the model: what its cells are, and what stands in the file (nothing for what has been written).
struct Row {
    std::vector<std::string> cells;
    std::vector<std::optional<std::string>> raw;
};

void expectRows(const QString& path, const std::vector<Row>& rows) {
    const auto table = openFile(path).front();
    std::vector<int> types;
    for (const auto& attribute : table->schema()->attributes()) {
        types.push_back(attribute->type());
    }
    EXPECT_THAT(types, testing::ElementsAre(QMetaType::LongLong, QMetaType::Double, QMetaType::Bool,
                                            QMetaType::QDate, QMetaType::QTime, QMetaType::QDateTime,
                                            QMetaType::QString));
    Rows cells;
    for (const auto& row : rows) {
        cells.push_back(row.cells);
    }
    EXPECT_EQ(readRows(*table, everything(*table)), cells);
}

TEST(TextTables, KeepTheirValuesTypesAndBytesWhenEdited) {
    constexpr std::size_t width = RandomTable::width;
    const int tables = qEnvironmentVariableIsSet("ORVANE_TEXT_TABLES")
                           ? qEnvironmentVariableIntValue("ORVANE_TEXT_TABLES")
                           : 60;
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("random.csv"));
    for (int i = 0; i < tables && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE(i);
        RandomTable random(static_cast<unsigned>(i));
        const std::string header =
            random.line({"целое", "real", "flag", "day", "\"hour\"", "moment", "text"});
        std::string text = (i % 5 == 0 ? "\xef\xbb\xbf" : "") + header;
        std::vector<Row> rows;
        for (int n = random.number(2, 30); n > 0; --n) {
            auto& row = rows.emplace_back();
            std::vector<std::string> raw;
            for (std::size_t column = 0; column < width; ++column) {
                const auto value = random.value(column, rows.size() == 1);
                row.cells.push_back(value.cell);
                raw.push_back(value.raw);
            }
            row.raw.assign(raw.begin(), raw.end());
            text += random.line(raw);
        }
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text.data(), static_cast<qint64>(text.size()));
        file.close();
        expectRows(path, rows);

        const auto table = openFile(path).front();
        table->beginEdits();
        const auto original = rows.size();
        std::vector<bool> isGone(original);
        for (int edit = random.number(1, 12); edit > 0; --edit) {
            dp::Feature changes(table->schema(), {});
            const auto target = static_cast<std::size_t>(random.number(1, int(original) - 1));
            const int kind = random.number(0, 5);
            std::vector<int> positions;
            Row* const row = kind == 0
                                 ? &rows.emplace_back(Row{std::vector<std::string>(width, "NULL"),
                                                          std::vector<std::optional<std::string>>(width)})
                                 : &rows[target];
            for (std::size_t column = 0; column < width; ++column) {
                if (random.number(0, 2) > 0) {
                    continue;
                }
                const auto value = random.value(column, false);
                changes.setAttribute(static_cast<int>(column), value.value);
                positions.push_back(static_cast<int>(column));
                if (kind != 1) {
                    row->cells[column] = value.cell;
                    row->raw[column].reset();
                }
            }
            changes.setId(dp::FeatureId(QVariant(static_cast<qlonglong>(target + 1))));
            if (kind == 0) {
                table->insertFeature(changes);
            } else if (kind == 1) {
                table->deleteFeature(changes.id());
                isGone[target] = true;
            } else {
                table->updateAttributes(changes, positions);
            }
        }
        table->prepareEdits();
        table->commitEdits();
        for (std::size_t row = original; row-- > 0;) {
            if (isGone[row]) {
                rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(row));
            }
        }
        expectRows(path, rows);

        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const std::string edited = file.readAll().toStdString();
        EXPECT_EQ(edited.substr(0, edited.find(header) + header.size()),
                  text.substr(0, text.find(header) + header.size()));
        const auto raw = random.split(edited.substr(edited.find(header) + header.size()));
        ASSERT_EQ(raw.size(), rows.size());
        for (std::size_t row = 0; row < rows.size(); ++row) {
            ASSERT_EQ(raw[row].size(), width);
            for (std::size_t column = 0; column < width; ++column) {
                EXPECT_EQ(raw[row][column], rows[row].raw[column].value_or(raw[row][column])) << row;
            }
        }
    }
}

TEST(TextTables, FindRowsByTheirNumbersAsAScanDoes) {
    QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("rows.csv"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    constexpr int count = 40'000;
    QByteArray text = "n,word\n";
    for (int n = 1; n <= count; ++n) {
        text += QByteArray::number(n) + (n % 7 == 0    ? ",\"two\nlines, \"\"Ё\"\"\"\n"
                                         : n % 11 == 0 ? ",\n\n"
                                                       : ",а\r\n");
    }
    file.write(text);
    file.close();
    const auto table = openFile(path).front();
    std::mt19937 random(11); // NOLINT: the same rows in every run
    for (int round = 0; round < 60; ++round) {
        std::set<std::int64_t> wanted;
        const auto number = [&](int low, int high) {
            return std::uniform_int_distribution(low, high)(random);
        };
        const int start = number(-3, count + 3);
        for (int i = number(0, 30); i > 0; --i) {
            wanted.insert(number(0, 1) == 0 ? start + number(0, 40) : number(-2, count + 2));
        }
        dp::ScanRequest request;
        request.attributes = {0, 1};
        auto& ids = request.ids.emplace();
        for (const auto id : wanted) {
            ids.emplace_back(QVariant(qlonglong{id}));
        }
        std::shuffle(ids.begin(), ids.end(), random);
        const auto cursor = table->openCursor(request);
        std::vector<std::int64_t> found;
        while (cursor->next()) {
            const auto n = cursor->cell(0).integer();
            EXPECT_EQ(cursor->featureId().value().toLongLong(), n);
            EXPECT_EQ(cursor->cell(1).type() == dp::CellType::Text ? cursor->cell(1).view() : "",
                      n % 7 == 0    ? "two\nlines, \"Ё\""
                      : n % 11 == 0 ? ""
                                    : "а")
                << n;
            found.push_back(n);
        }
        std::erase_if(wanted, [](std::int64_t id) { return id < 1 || id > count; });
        EXPECT_EQ(found, std::vector(wanted.begin(), wanted.end()));
    }
}

} // namespace
} // namespace orvane::files
