#pragma once

#include "platform/Export.h"
#include "platform/sql/parsing/ParseContext.h"

#include <QObject>
#include <QString>

#include <set>
#include <string>

namespace orvane::sql {

/// What statements may refer to beside tables: the application's own bare functions. Changed only while
/// nothing is parsed.
class ORVANE_PLATFORM_EXPORT SqlRuntime : public QObject, public ParseContext {
    Q_OBJECT
public:
    explicit SqlRuntime(QObject* parent = nullptr);
    ~SqlRuntime() override;

    /// From now on the bare name, in any letter case, stands for a call of the function without parentheses.
    void addBareFunction(const QString& name);

    bool isBareFunction(const std::wstring& lowercaseName) const override;

private:
    std::set<std::wstring> bareFunctions_;
};

} // namespace orvane::sql
