#include "host/adaptor/explaining/ScanReport.h"

namespace orvane::adaptor {

namespace {

thread_local ScanRecorder* currentRecorder = nullptr;

}

void ScanReport::take(const IndexUse& use, const dp::TableSchema& schema) {
    if (use.attributes && *use.attributes != indexAttributes) {
        indexAttributes = *use.attributes;
        indexColumns.clear();
        for (const int attribute : *use.attributes) {
            indexColumns += schema.at(attribute)->name();
        }
    }
    if (use.isMade) {
        makingMs = use.makingCost / 1e6;
    }
    lastIndexUse = use;
}

ScanRecorder::ScanRecorder() : outer_(currentRecorder) {
    currentRecorder = this;
}

ScanRecorder::~ScanRecorder() {
    currentRecorder = outer_;
}

ScanRecorder* ScanRecorder::current() {
    return currentRecorder;
}

void ScanRecorder::restart() {
    lastNumber_ = 0;
}

std::uint64_t ScanRecorder::add(PlannedScan planned) {
    auto report = std::make_shared<ScanReport>();
    report->planned = std::move(planned);
    reports_[++lastNumber_] = std::move(report);
    return lastNumber_;
}

std::shared_ptr<ScanReport> ScanRecorder::report(std::uint64_t number) const {
    const auto found = reports_.find(number);
    return found == reports_.end() ? nullptr : found->second;
}

} // namespace orvane::adaptor
