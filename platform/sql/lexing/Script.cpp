#include "platform/sql/lexing/Script.h"

#include <algorithm>

namespace orvane::sql {

namespace {

class Splitter {
public:
    explicit Splitter(std::string_view script) : script_(script) {}

    Script run() {
        while (skipBlanks()) {
            ScriptStatement statement;
            countTo(pos_);
            statement.line = line_;
            statement.column = column_;
            const std::size_t start = pos_;
            statement.isCommand = isCommand();
            if (statement.isCommand) {
                pos_ = std::min(script_.find('\n', pos_), script_.size());
            } else {
                skipStatement();
            }
            statement.text = script_.substr(start, pos_ - start);
            statement.terminated = statement.isCommand || pos_ < script_.size();
            if (pos_ < script_.size()) {
                ++pos_;
            }
            if (!statement.text.empty()) {
                result_.statements.push_back(std::move(statement));
            }
        }
        return std::move(result_);
    }

private:
    bool isCommand() const {
        const char letter = pos_ + 1 < script_.size() ? script_[pos_ + 1] : ' ';
        return at(".") && ((letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z'));
    }

    bool at(std::string_view symbols) const { return script_.substr(pos_, symbols.size()) == symbols; }

    /// Goes behind the next occurrence of `close`; to the end, and false, without.
    bool skipBeyond(std::string_view close) {
        const std::size_t found = script_.find(close, pos_);
        pos_ = found == std::string_view::npos ? script_.size() : found + close.size();
        return found != std::string_view::npos;
    }

    bool skipComment() {
        if (at("--")) {
            skipBeyond("\n");
        } else if (at("/*")) {
            pos_ += 2;
            result_.endsInComment = !skipBeyond("*/");
        } else {
            return false;
        }
        return true;
    }

    /// Goes to the first word of the next statement; false at the end of the script.
    bool skipBlanks() {
        while (pos_ < script_.size()) {
            if (at("\xEF\xBB\xBF")) { // the byte order mark that some editors write
                pos_ += 3;
            } else if (std::string_view(" \t\r\n\v\f").find(script_[pos_]) != std::string_view::npos) {
                ++pos_;
            } else if (!skipComment()) {
                return true;
            }
        }
        return false;
    }

    void skipStatement() {
        while (pos_ < script_.size() && script_[pos_] != ';') {
            const char symbol = script_[pos_];
            if (symbol == '\'' || symbol == '"' || symbol == '[') {
                ++pos_;
                skipBeyond(symbol == '[' ? "]" : std::string_view(&symbol, 1));
            } else if (!skipComment()) {
                ++pos_;
            }
        }
    }

    void countTo(std::size_t offset) {
        for (; counted_ < offset; ++counted_) {
            if (script_[counted_] == '\n') {
                ++line_;
                column_ = 1;
            } else if ((script_[counted_] & 0xC0) != 0x80) { // the first byte of a character
                ++column_;
            }
        }
    }

    std::string_view script_;
    std::size_t pos_ = 0;
    std::size_t counted_ = 0;
    int line_ = 1;
    int column_ = 1;
    Script result_;
};

} // namespace

Script splitScript(std::string_view utf8) {
    return Splitter(utf8).run();
}

} // namespace orvane::sql
