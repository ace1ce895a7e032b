#include "platform/sql/DialectCases.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>

namespace orvane::tests {

namespace {

void setField(DialectCase& dialectCase, const std::string& key, const std::string& value,
              const std::string& place) {
    static const std::map<std::string, std::string DialectCase::*> fields = {
        {"reason", &DialectCase::reason},
        {"input", &DialectCase::input},
        {"dialect", &DialectCase::dialect},
        {"sqlite", &DialectCase::sqlite},
        {"error", &DialectCase::error}};
    const auto found = fields.find(key);
    if (found == fields.end()) {
        throw std::runtime_error(place + ": unknown key " + key);
    }
    std::string& field = dialectCase.*found->second;
    field += (field.empty() ? "" : "\n") + value;
}

void readFile(const std::filesystem::path& path, std::vector<DialectCase>& cases) {
    std::ifstream file(path);
    std::string line;
    DialectCase current;
    int number = 0;
    const auto finish = [&] {
        if (!current.input.empty()) {
            if (current.dialect.empty() && current.sqlite.empty() && current.error.empty()) {
                throw std::runtime_error(current.place + ": the case expects nothing");
            }
            cases.push_back(current);
        }
        current = {};
    };
    while (std::getline(file, line)) {
        ++number;
        if (line.empty()) {
            finish();
            continue;
        }
        if (line.front() == '#') {
            continue;
        }
        const std::string place = path.filename().string() + ':' + std::to_string(number);
        const std::size_t colon = line.find(':');
        if (colon == std::string::npos) {
            throw std::runtime_error(place + ": no key");
        }
        if (current.place.empty()) {
            current.place = place;
        }
        const std::size_t value = line.find_first_not_of(' ', colon + 1);
        setField(current, line.substr(0, colon), value == std::string::npos ? "" : line.substr(value), place);
    }
    finish();
}

} // namespace

std::vector<DialectCase> readDialectCases() {
    std::vector<std::filesystem::path> files;
    for (const auto& entry :
         std::filesystem::directory_iterator(std::filesystem::path(ORVANE_TEST_DATA) / "dialect")) {
        files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    std::vector<DialectCase> cases;
    for (const auto& file : files) {
        readFile(file, cases);
    }
    return cases;
}

std::ostream& operator<<(std::ostream& stream, const DialectCase& dialectCase) {
    return stream << dialectCase.place << " (" << dialectCase.reason << "): " << dialectCase.input;
}

} // namespace orvane::tests
