#pragma once

#include "platform/Export.h"
#include "platform/sql/parsing/ParseContext.h"

#include <QObject>

namespace orvane::sql {

/// The surroundings of the engine's statements.
class ORVANE_PLATFORM_EXPORT SqlRuntime : public QObject, public ParseContext {
    Q_OBJECT
public:
    explicit SqlRuntime(QObject* parent = nullptr);
    ~SqlRuntime() override;
};

} // namespace orvane::sql
