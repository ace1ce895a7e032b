#pragma once

namespace orvane::sql {

/// The surroundings in which a text is parsed. The dialect's words and functions are the same everywhere, so
/// the parser asks nothing of them.
class ParseContext {
public:
    virtual ~ParseContext() = default;
};

} // namespace orvane::sql
