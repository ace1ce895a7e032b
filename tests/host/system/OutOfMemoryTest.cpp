// Statements for which the n-th piece of memory is not there, for every n: they answer as ever or say that
// the memory is out, and the next statement knows nothing of it. Has its own main(): SQLite takes other
// functions for its memory only before it begins.

#include "support/Host.h"

#include "host/adaptor/FeatureExpression.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QSqlDatabase>
#include <QSqlDriver>

#include <sqlite3.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include <link.h>

namespace {

/// Who does not get the n-th piece.
enum class Source { SqliteOnce, SqliteFromThenOn, New };

struct Countdown {
    Source source = Source::New;
    long left = 0; ///< pieces until the one that is not there; nothing happens while it is 0
    bool hasFailed = false;
};
thread_local Countdown countdown;

/// Whether this piece is the one.
bool fails(bool isSqlite) {
    if (countdown.left == 0 || isSqlite != (countdown.source != Source::New)) {
        return false;
    }
    if (countdown.left > 1) {
        --countdown.left;
        return false;
    }
    countdown.hasFailed = true;
    if (countdown.source != Source::SqliteFromThenOn) {
        countdown.left = 0;
    }
    return true;
}

sqlite3_mem_methods original;

void failingSqliteMemory() {
    sqlite3_config(SQLITE_CONFIG_GETMALLOC, &original);
    sqlite3_mem_methods methods = original;
    methods.xMalloc = [](int size) { return fails(true) ? nullptr : original.xMalloc(size); };
    methods.xRealloc = [](void* piece, int size) {
        return fails(true) ? nullptr : original.xRealloc(piece, size);
    };
    sqlite3_config(SQLITE_CONFIG_MALLOC, &methods);
    sqlite3_config(SQLITE_CONFIG_LOOKASIDE, 0, 0); // every piece comes from there
}

using Code = std::pair<ElfW(Addr), ElfW(Addr)>;

/// Where the code of our own libraries is: others do not all survive the want of memory.
std::vector<Code> ownCode() {
    std::vector<Code> code;
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* found) {
            for (int i = 0; i < info->dlpi_phnum && std::strstr(info->dlpi_name, "liborvane_"); ++i) {
                const auto& segment = info->dlpi_phdr[i];
                const ElfW(Addr) start = info->dlpi_addr + segment.p_vaddr;
                static_cast<std::vector<Code>*>(found)->push_back({start, start + segment.p_memsz});
            }
            return 0;
        },
        &code);
    return code;
}

bool isOurs(const void* caller) {
    static const std::vector<Code> code = ownCode();
    const auto address = reinterpret_cast<ElfW(Addr)>(caller);
    return std::any_of(code.begin(), code.end(), [address](const Code& part) {
        return address >= part.first && address < part.second;
    });
}

void* allocate(std::size_t size, const void* caller) {
    const bool isMissing =
        countdown.left > 0 && countdown.source == Source::New && isOurs(caller) && fails(false);
    void* const piece = isMissing ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (!piece) {
        throw std::bad_alloc();
    }
    return piece;
}

} // namespace

void* operator new(std::size_t size) {
    return allocate(size, __builtin_return_address(0));
}
void* operator new[](std::size_t size) {
    return allocate(size, __builtin_return_address(0));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size == 0 ? 1 : size); // of who can do without
}
void operator delete(void* piece) noexcept {
    std::free(piece);
}
void operator delete[](void* piece) noexcept {
    std::free(piece);
}
void operator delete(void* piece, std::size_t) noexcept {
    std::free(piece);
}
void operator delete[](void* piece, std::size_t) noexcept {
    std::free(piece);
}

namespace orvane {
namespace {

using testing::Host;

struct Case {
    const char* name;
    const char* statement;
    const char* check = nullptr; ///< of an edit: a query whose answer tells whether it took place
};

void PrintTo(const Case& statement, std::ostream* stream) {
    *stream << statement.name;
}

sqlite3* database() {
    return *static_cast<sqlite3* const*>(
        Host::instance().engine->engineDatabase().driver()->handle().constData());
}

/// The answer of a statement as one text; a failure as "error: ...".
std::string run(const QByteArray& sql) {
    std::string text;
    sqlite3_stmt* statement = nullptr;
    int code = sqlite3_prepare_v2(database(), sql.constData(), -1, &statement, nullptr);
    while (code == SQLITE_OK || code == SQLITE_ROW) {
        code = sqlite3_step(statement);
        const Countdown paused = std::exchange(countdown, {});
        for (int i = 0; code == SQLITE_ROW && i < sqlite3_column_count(statement); ++i) {
            const auto* cell = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
            text += std::string(cell ? cell : "NULL") + '|';
        }
        countdown = paused;
    }
    const Countdown ended = std::exchange(countdown, {});
    if (code != SQLITE_DONE) {
        text = std::string("error: ") + sqlite3_errmsg(database());
    }
    sqlite3_finalize(statement);
    countdown.hasFailed = ended.hasFailed;
    return text;
}

QByteArray translated(const char* statement) {
    return Host::instance().engine->translate(QString::fromUtf8(statement)).toUtf8();
}

class OutOfMemory : public ::testing::TestWithParam<Case> {
protected:
    static void SetUpTestSuite() {
        Host& host = Host::instance();
        host.openExamples();
        QFile table(host.path(QStringLiteral("t.csv")));
        ASSERT_TRUE(table.open(QIODevice::WriteOnly));
        table.write("n,s\n");
        for (int i = 0; i < 50; ++i) {
            table.write(QByteArray::number(i) + ",text\n");
        }
        table.close();
        host.open(table.fileName());
    }
    static void TearDownTestSuite() { Host::instance().closeAll(); }

    /// Runs the statement without each piece in turn, all the first ones and then ever fewer.
    static void runWithoutEachPiece(Source source) {
        isOurs(nullptr); // learns of the libraries, all of which are loaded by now
        const QByteArray sql = translated(GetParam().statement);
        const QByteArray check = GetParam().check ? translated(GetParam().check) : QByteArray();
        const std::string expected = run(sql);
        ASSERT_EQ(expected.rfind("error", 0), std::string::npos) << expected;
        long failures = 0;
        for (long n = 1;; n += 1 + n / every) {
            const std::string before = check.isEmpty() ? std::string() : run(check);
            countdown = {source, n, false};
            const std::string answer = run(sql);
            if (!countdown.hasFailed) {
                break;
            }
            const bool isError = answer.rfind("error", 0) == 0;
            failures += isError;
            EXPECT_THAT(answer, ::testing::AnyOf(expected, "error: out of memory")) << "piece " << n;
            if (isError && check.isEmpty()) {
                EXPECT_EQ(run(sql), expected) << "after piece " << n;
            } else if (!check.isEmpty()) {
                EXPECT_EQ(run(check) != before, !isError) << "piece " << n;
            }
            if (HasFailure()) {
                return;
            }
        }
        EXPECT_GT(failures, 0);
    }

    /// ORVANE_TEST_EVERY_PIECE=1 leaves no piece out, which takes minutes.
    static inline const long every = qEnvironmentVariableIsSet("ORVANE_TEST_EVERY_PIECE") ? LONG_MAX : 100;
};

TEST_P(OutOfMemory, OfSqlite) {
    runWithoutEachPiece(Source::SqliteOnce);
}

TEST_P(OutOfMemory, OfSqliteFromThenOn) {
    runWithoutEachPiece(Source::SqliteFromThenOn);
}

TEST_P(OutOfMemory, OfOurs) {
    runWithoutEachPiece(Source::New);
}

TEST(OutOfMemoryExpression, HasItsValueOrNone) {
    Host& host = Host::instance();
    host.openExamples();
    const auto table =
        std::dynamic_pointer_cast<dp::Table>(host.catalog.dataObject(QStringLiteral("cities")));
    const dp::FeaturePtr feature = host.features(*table).front();
    adaptor::FeatureExpression expression(*host.engine, *table->schema());
    const QString texts[] = {QStringLiteral("UCase(name) & Format(population, '#,##0')"),
                             QStringLiteral("Distance(obj, MakePoint(0, 0, 4326))")};
    for (const QString& text : texts) {
        ASSERT_TRUE(expression.setText(text)) << expression.lastError().toStdString();
        const QVariant expected = expression.value(feature);
        ASSERT_FALSE(expected.isNull());
        for (const Source source : {Source::SqliteOnce, Source::SqliteFromThenOn}) {
            for (long n = 1;; ++n) {
                countdown = {source, n, false};
                const bool isSet = expression.setText(text);
                const QVariant value = isSet ? expression.value(feature) : QVariant();
                if (!std::exchange(countdown, {}).hasFailed) {
                    break;
                }
                EXPECT_TRUE(value.isNull() || value == expected) << value.toString().toStdString();
                ASSERT_TRUE(expression.setText(text)) << "after piece " << n;
                ASSERT_EQ(expression.value(feature), expected) << "after piece " << n;
            }
        }
    }
    host.closeAll();
}

INSTANTIATE_TEST_SUITE_P(
    Statements, OutOfMemory,
    ::testing::Values(
        Case{"Join", "Select Count(*), Max(c.name) From cities c Join countries k On c.country = k.iso_a2 "
                     "Where k.pop > 50000000 And c.population > 9000000"},
        Case{"Group", "Select country, Count(*), Max(name) From cities Where population > 3000000 Group By "
                      "country Order By country"},
        Case{"Order", "Select name From cities Where population > 8000000 Order By name"},
        Case{"Within",
             "Select Count(*) From cities c, countries k Where c.obj Within k.obj And k.iso_a2 = 'AT'"},
        // SpatiaLite's own functions do not survive it.
        Case{"Distance",
             "Select Count(*), Min(Distance(a.obj, b.obj)) From countries a, countries b Where a.iso_a2 = "
             "'AT' And Distance(a.obj, b.obj, 'km') < 500"},
        Case{"Touches", "Select Count(*) From countries a, countries b Where a.obj Intersects b.obj And "
                        "a.iso_a2 = 'AT' And b.iso_a2 In ('CH', 'CZ') And Touches(a.obj, b.obj)"},
        Case{"Texts",
             "Select Max(UCase(name) & Format(population, '#,##0') & Left(name, 3)) From cities Where "
             "population > 9000000 And name Like '%o%'"},
        Case{"Update", "Update t Set n = n + 1, s = UCase(s) Where n > 10", "Select Sum(n) From t"},
        Case{"Insert", "Insert Into t (n, s) Select 1000, name From cities Where population > 15000000",
             "Select Count(*) From t"}),
    [](const auto& instance) { return std::string(instance.param.name); });

} // namespace
} // namespace orvane

int main(int argc, char** argv) {
    failingSqliteMemory();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
