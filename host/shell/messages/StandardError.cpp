#include "host/shell/messages/StandardError.h"

#include "platform/utils/VisibleText.h"

#include <cstdio>
#include <string>

namespace orvane::shell {

void printErrorLine(const QString& line) {
    const std::string text = utils::visibleText(line.toStdString()) + '\n';
    std::fwrite(text.data(), 1, text.size(), stderr);
}

void printMessage(const QString& message) {
    printErrorLine(QStringLiteral("orvane: ") + message);
}

} // namespace orvane::shell
