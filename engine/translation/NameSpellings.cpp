#include "engine/translation/NameSpellings.h"

#include "platform/sql/lexing/SqlStrings.h"

#include <algorithm>

namespace orvane::engine {

namespace {

using namespace sql;

bool isBeyondAscii(const std::wstring& name) {
    return std::any_of(name.begin(), name.end(), [](wchar_t symbol) { return symbol >= 0x80; });
}

/// The names of a statement: those that it gives and those that it uses.
class StatementNames {
public:
    explicit StatementNames(const ast::Node& statement) {
        ast::forEachNode(statement, [this](const ast::Node& node) {
            collect(node);
            return true;
        });
    }

    std::vector<const ast::TablePrimary*> tables;
    std::vector<std::wstring> wholeTables;
    std::vector<std::wstring> given;
    bool areBeyondAscii = false;

private:
    void give(const std::wstring& name) {
        areBeyondAscii = areBeyondAscii || isBeyondAscii(name);
        given.push_back(name);
    }
    void giveAll(const ast::NodeList& columns) {
        for (const ast::NodePtr& column : columns) {
            give(static_cast<const ast::ColumnReference&>(*column).name);
        }
    }
    void use(const std::wstring& name) { areBeyondAscii = areBeyondAscii || isBeyondAscii(name); }

    void collect(const ast::Node& node) {
        if (const auto* column = ast::nodeAs<ast::ColumnReference>(&node)) {
            use(column->qualifier);
            use(column->name);
        } else if (const auto* table = ast::nodeAs<ast::TablePrimary>(&node)) {
            use(table->name);
            give(table->alias);
            tables.push_back(table);
        } else if (const auto* whole = ast::nodeAs<ast::ExplicitTable>(&node)) {
            use(whole->name);
            wholeTables.push_back(whole->name);
        } else if (const auto* result = ast::nodeAs<ast::DerivedColumn>(&node)) {
            give(result->alias);
        } else if (const auto* derived = ast::nodeAs<ast::DerivedTable>(&node)) {
            give(derived->alias);
            giveAll(derived->columns);
        }
        if (ast::isQuery(&node)) {
            for (const ast::CommonTable& named : static_cast<const ast::QueryExpression&>(node).with) {
                give(named.name);
                giveAll(named.columns);
            }
        }
    }
};

} // namespace

SqliteStringBuilder::Spellings nameSpellings(const ast::Node& statement,
                                             const std::function<std::vector<std::wstring>()>& tables,
                                             const SqliteStringBuilder::TableColumns& columns) {
    const StatementNames names(statement);
    SqliteStringBuilder::Spellings spellings;
    if (!names.areBeyondAscii) {
        return spellings;
    }
    const std::vector<std::wstring> known = tables();
    const auto addAs = [&spellings](const std::wstring& key, const std::wstring& name) {
        if (isBeyondAscii(name)) {
            spellings[toLowercase(key)].push_back(name);
        }
    };
    const auto add = [&addAs](const std::wstring& name) { addAs(name, name); };
    const auto addTable = [&](const std::wstring& written, const std::wstring& qualifier) {
        for (const std::wstring& table : known) {
            if (toLowercase(table) != toLowercase(written)) {
                continue;
            }
            add(table);
            for (const std::wstring& column : columns(table)) {
                addAs(qualifier + L'.' + column, column);
                add(column);
            }
        }
    };
    for (const ast::TablePrimary* table : names.tables) {
        addTable(table->name, table->alias.empty() ? table->name : table->alias);
    }
    for (const std::wstring& table : names.wholeTables) {
        addTable(table, table);
    }
    if (names.tables.empty()) { // an expression by itself
        const std::vector<std::wstring> own = columns({});
        std::for_each(own.begin(), own.end(), add);
    }
    std::for_each(names.given.begin(), names.given.end(), add);
    return spellings;
}

} // namespace orvane::engine
