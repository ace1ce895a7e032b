#include "host/shell/messages/DisplayWidth.h"
#include "host/shell/output/NumberText.h"
#include "host/shell/output/ResultWriter.h"
#include "platform/utils/Utf8.h"
#include "support/TextBlocks.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>

#include <charconv>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <utility>

#include <unistd.h>

namespace orvane::shell {
namespace {

/// Collects what is committed.
class TextOutput : public Output {
public:
    TextOutput() : Output(std::size_t(-1)) {}
    void commit() override {}
    void discard() override {}

protected:
    void takeText() override {}
};

struct DatabaseCloser {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};
struct StatementFinalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

/// The result of a query as a writer shows it. No engine is at hand: blobs are bytes.
std::string written(const WriterSettings& settings, const char* query) {
    sqlite3* opened = nullptr;
    sqlite3_open(":memory:", &opened);
    const std::unique_ptr<sqlite3, DatabaseCloser> database(opened);
    sqlite3_stmt* prepared = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(opened, query, -1, &prepared, nullptr), SQLITE_OK) << query;
    const std::unique_ptr<sqlite3_stmt, StatementFinalizer> statement(prepared);
    std::vector<std::string> columns;
    for (int i = 0; i < sqlite3_column_count(prepared); ++i) {
        columns.emplace_back(sqlite3_column_name(prepared, i));
    }
    TextOutput output;
    const auto writer = makeResultWriter(settings, output);
    const ResultRow row(prepared, nullptr);
    writer->begin(columns);
    while (sqlite3_step(prepared) == SQLITE_ROW) {
        writer->row(row);
    }
    writer->end();
    return output.text();
}

/// Texts in the column `name` and their numbers in another.
std::string writtenTexts(const WriterSettings& settings, const std::string& name,
                         const std::vector<std::string>& texts, Output& output) {
    sqlite3* opened = nullptr;
    sqlite3_open(":memory:", &opened);
    const std::unique_ptr<sqlite3, DatabaseCloser> database(opened);
    sqlite3_stmt* prepared = nullptr;
    sqlite3_prepare_v2(opened, "Select ?, ?", -1, &prepared, nullptr);
    const std::unique_ptr<sqlite3_stmt, StatementFinalizer> statement(prepared);
    const auto writer = makeResultWriter(settings, output);
    const ResultRow row(prepared, nullptr);
    writer->begin({name, "n"});
    for (std::size_t i = 0; i < texts.size(); ++i) {
        sqlite3_bind_text(prepared, 1, texts[i].data(), static_cast<int>(texts[i].size()), SQLITE_STATIC);
        sqlite3_bind_int64(prepared, 2, static_cast<int>(i));
        sqlite3_step(prepared);
        writer->row(row);
        sqlite3_reset(prepared);
    }
    writer->end();
    return output.text();
}

/// Short texts with everything that may harm a terminal or a table.
class TextGenerator {
public:
    std::string next() {
        static const std::vector<std::string> parts = makeParts();
        std::string text;
        for (auto count = random_() % 7; count > 0; --count) {
            text += parts[random_() % parts.size()];
        }
        return text;
    }

private:
    static std::vector<std::string> makeParts() {
        std::vector<std::string> parts{"a",
                                       "Ж",
                                       "é",
                                       "e\u0301",
                                       "東",
                                       "한",
                                       "🚀",
                                       "👍🏽",
                                       "👩\u200D🚀",
                                       "🇷🇺",
                                       "\"",
                                       ",",
                                       "\\",
                                       "|",
                                       "ש",
                                       "می\u200Cخ",
                                       "\xFF",
                                       "\xC2",
                                       "\x80",
                                       "\x9B",
                                       "\xED\xA0\x80",
                                       "🏴\U000E0067\U000E0062\U000E007F"};
        const auto add = [&parts](char32_t first, char32_t last) {
            for (char32_t character = first; character <= last; ++character) {
                utf8::append(parts.emplace_back(), character);
            }
        };
        add(0, 0x1F);
        add(0x7F, 0x9F);
        add(0x200B, 0x200F);
        add(0x2028, 0x202E);
        add(0x2060, 0x206F);
        for (const char32_t character : {0xAD, 0x61C, 0xFEFF, 0xFFFB, 0xE0001, 0xE0067, 0xE007F}) {
            add(character, character);
        }
        return parts;
    }

    std::mt19937 random_{14};
};

/// The first character that may not reach a terminal; nothing where all may.
std::string harmIn(const std::string& text) {
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t start = position;
        const char32_t c = utf8::nextCharacter(text, position);
        const bool isRaw = c == utf8::replacement && position - start == 1;
        const bool isControl = (c < 0x20 && c != '\n') || (c >= 0x7F && c <= 0x9F);
        const bool isFormat = c == 0xAD || c == 0x61C || c == 0x200B || c == 0x200E || c == 0x200F ||
                              (c >= 0x2028 && c <= 0x202E) || (c >= 0x2060 && c <= 0x206F) || c == 0xFEFF ||
                              c == 0xFFFB || c == 0xE0001;
        if (isRaw || isControl || isFormat) {
            return QString::number(isRaw ? 0 : c, 16).toStdString() + " in " + text;
        }
    }
    return {};
}

/// The fields of comma-separated values, record by record.
std::vector<std::vector<std::string>> readCsv(const std::string& text) {
    std::vector<std::vector<std::string>> records;
    std::vector<std::string> record(1);
    bool isQuoted = false;
    for (const char c : text) {
        if (c == '"') {
            isQuoted = !isQuoted;
            record.back() += c;
        } else if (c == ',' && !isQuoted) {
            record.emplace_back();
        } else if (c == '\n' && !isQuoted) {
            records.push_back(std::exchange(record, std::vector<std::string>(1)));
        } else {
            record.back() += c;
        }
    }
    for (auto& fields : records) {
        for (std::string& field : fields) {
            QByteArray bytes = QByteArray::fromStdString(field);
            if (bytes.startsWith('"')) {
                bytes = bytes.mid(1, bytes.size() - 2).replace("\"\"", "\"");
            }
            field = bytes.toStdString();
        }
    }
    return records;
}

/// Without U+FEFF, which Qt's JSON leaves out.
QString asQtReads(const std::string& text) {
    return QString::fromStdString('a' + text).mid(1).remove(QChar(0xFEFF));
}

TEST(Writers, GiveNoTextPowerOverATerminalAndLoseNone) {
    TextGenerator generator;
    for (int round = 0; round < 200; ++round) {
        const std::string name = generator.next();
        std::vector<std::string> texts;
        for (int i = 0; i < 10; ++i) {
            texts.push_back(generator.next());
        }
        for (const int width : {0, 20}) {
            TextOutput output;
            const QString table = QString::fromStdString(
                writtenTexts({Format::Table, true, std::nullopt, width}, name, texts, output));
            EXPECT_EQ(harmIn(output.text()), "");
            const QStringList lines = table.chopped(1).split(QLatin1Char('\n'));
            EXPECT_EQ(lines.size(), 12);
            for (const QString& line : lines) {
                EXPECT_EQ(displayWidth(line.toStdString()), displayWidth(lines.front().toStdString()))
                    << output.text();
            }
        }
        TextOutput csv;
        const auto records = readCsv(writtenTexts({Format::Csv, true, std::nullopt, 0}, name, texts, csv));
        TextOutput json;
        const auto document = QJsonDocument::fromJson(QByteArray::fromStdString(
            writtenTexts({Format::Json, true, std::nullopt, 0}, name, texts, json)));
        EXPECT_EQ(harmIn(json.text()), "");
        ASSERT_EQ(records.size(), texts.size() + 1);
        ASSERT_EQ(document.array().size(), static_cast<int>(texts.size())) << json.text();
        EXPECT_EQ(records[0][0], name);
        for (std::size_t i = 0; i < texts.size(); ++i) {
            EXPECT_EQ(records[i + 1][0], texts[i]);
            EXPECT_EQ(document[static_cast<int>(i)][asQtReads(name)].toString(), asQtReads(texts[i]));
        }
    }
}

TEST(TerminalOutput, ShowsEveryFormatWithoutHarm) {
    TextGenerator generator;
    std::vector<std::string> texts;
    for (int i = 0; i < 300; ++i) {
        texts.push_back(generator.next());
    }
    for (const Format format : {Format::Table, Format::Csv, Format::Json, Format::GeoJson}) {
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        TerminalOutput output(ends[1]);
        writtenTexts({format, true, std::nullopt, 0}, "t", texts, output);
        output.commit();
        ::close(ends[1]);
        std::string shown;
        char block[4096];
        for (ssize_t size = 0; (size = ::read(ends[0], block, sizeof block)) > 0;) {
            shown.append(block, static_cast<std::size_t>(size));
        }
        ::close(ends[0]);
        EXPECT_GT(shown.size(), texts.size());
        EXPECT_EQ(harmIn(shown), "");
    }
}

/// From the words before the colon of a block.
WriterSettings settingsOf(const QStringList& words) {
    static const std::map<QString, Format> formats{{QStringLiteral("csv"), Format::Csv},
                                                   {QStringLiteral("json"), Format::Json},
                                                   {QStringLiteral("geojson"), Format::GeoJson},
                                                   {QStringLiteral("table"), Format::Table}};
    WriterSettings settings{formats.at(words.front()), true, std::nullopt, 0};
    for (const QString& word : words.mid(1)) {
        const QString value = word.section(QLatin1Char('='), 1);
        if (word == QLatin1String("noheader")) {
            settings.header = false;
        } else if (word.startsWith(QLatin1String("null="))) {
            settings.nullText = value.toStdString();
        } else {
            settings.terminalWidth = value.toInt();
        }
    }
    return settings;
}

TEST(Writers, WriteEveryForm) {
    for (const tests::QuestionBlock& block : tests::readQuestions("shell/results.txt")) {
        EXPECT_EQ(written(settingsOf(block.words), block.question.c_str()), block.answer) << block.title;
    }
}

TEST(TableWriter, laterRowsThatAreWiderOnlyShiftTheirOwnLine) {
    const std::string table = written(settingsOf({QStringLiteral("table")}),
                                      "With Recursive n(i) As (Select 1 Union All Select i + 1 From n "
                                      "Where i < 1002) Select Case i When 1001 Then 'wide wide' "
                                      "Else 'ab' End As t, i From n");
    EXPECT_NE(table.find("\nab | 1000\nwide wide | 1001\nab | 1002\n"), std::string::npos);
}

TEST(NumberText, isPlainInTheUsualRangeAndTheSameEverywhere) {
    const std::pair<double, const char*> cases[] = {{0.0, "0"},
                                                    {-0.0, "0"},
                                                    {1.0, "1"},
                                                    {-2138551.0, "-2138551"},
                                                    {0.1, "0.1"},
                                                    {1e5, "100000"},
                                                    {123456789012345.6, "123456789012345.6"},
                                                    {9007199254740993.0, "9007199254740992"},
                                                    {1e16, "1e+16"},
                                                    {1e-5, "0.00001"},
                                                    {9.9e-6, "9.9e-06"},
                                                    {1.5e300, "1.5e+300"},
                                                    {5e-324, "5e-324"},
                                                    {HUGE_VAL, "Infinity"},
                                                    {-HUGE_VAL, "-Infinity"}};
    for (const auto& [value, expected] : cases) {
        std::string text;
        appendReal(text, value);
        EXPECT_EQ(text, expected);
    }
}

TEST(NumberText, readsBackEqual) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 100000; ++i) {
        const std::uint64_t bits = random();
        double value = 0;
        static_assert(sizeof value == sizeof bits);
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) {
            continue;
        }
        std::string text;
        appendReal(text, value);
        double back = 0;
        std::from_chars(text.data(), text.data() + text.size(), back);
        ASSERT_EQ(back, value) << text;
    }
}

TEST(DisplayWidth, countsColumns) {
    const std::pair<const char*, int> cases[] = {{"", 0},
                                                 {"abc", 3},
                                                 {"Москва", 6},
                                                 {"São", 3},
                                                 {"Sa\u0303o", 3},
                                                 {"東京", 4},
                                                 {"ｶﾅ", 2},
                                                 {"한국", 4},
                                                 {"🗺", 1},
                                                 {"🚀", 2},
                                                 {"👍🏽", 2},
                                                 {"👨‍👩‍👧", 2},
                                                 {"a\u0301\u0483b", 2},
                                                 {"Ѐ҂҃҉ҊԱ֑", 4}};
    for (const auto& [text, width] : cases) {
        EXPECT_EQ(displayWidth(text), width) << text;
    }
}

TEST(DisplayWidth, cutsBetweenCharacters) {
    EXPECT_EQ(prefixOfWidth("東京都", 5), 6U);
    EXPECT_EQ(prefixOfWidth("東京都", 6), 9U);
    EXPECT_EQ(prefixOfWidth("abc", 9), 3U);
    EXPECT_EQ(prefixOfWidth("abc", 0), 0U);
}

} // namespace
} // namespace orvane::shell
