#include <orvane/Engine.h>

#include "engine/service/EngineInternal.h"

#include "platform/log/Logger.h"
#include "platform/sql/SqlError.h"
#include "platform/sql/SqlParser.h"
#include "platform/sql/SqlRuntime.h"
#include "platform/sql/SqlStrings.h"
#include <orvane/engine/SqliteStringBuilder.h>

namespace orvane {

bool Engine::tryToTranslate(const std::string& text, engine::SqliteStringBuilder& builder,
                            CheckParseResults check) const {
    sql::SqlParser parser(internal_->runtime());
    if (!parser.parse(text)) {
        builder.setError(std::make_shared<sql::GeneralSyntaxError>(
            sql::toSqlString(QObject::tr("проверьте корректность выражений в запросе"))));
    } else if (check == ExpressionOnly && !parser.result().isExpression()) {
        builder.addError(
            std::make_shared<sql::UnexpectedParseResult>(sql::toSqlString(QObject::tr("Выражение"))));
    } else {
        builder.setCollate(QStringLiteral("Locale"));
        std::wstring query = builder.buildString(*parser.result().node());
        if (builder.hasErrors()) {
            builder.addTranslateErrors();
        } else {
            builder.setQuery(std::move(query));
        }
    }
    return !builder.query().empty();
}

QString Engine::translate(const std::string& text) const {
    engine::SqliteStringBuilder builder(QString(), nullptr);
    if (tryToTranslate(text, builder, ParseAsIs)) {
        return sql::fromSqlString(builder.query());
    }
    for (const auto& error : builder.errors()) {
        loggerInstance()->write(LogLevel::Info, QStringLiteral("Engine"), 338,
                                QStringLiteral("QString orvane::Engine::translate(const string&) const"),
                                QString::fromUtf8(error->what()));
    }
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

QString Engine::translate(const QString& text) const {
    return translate(text.toStdString());
}

} // namespace orvane
