#include "tools/qblconv/Guess.hpp"

#include "tools/qblconv/Difference.hpp"

namespace conv {

namespace {

std::string namesOf(const Fit& fit) {
    std::string names = fit.name;
    for (const std::string& each : fit.alike) names.append(", ").append(each);
    return shown(names);
}

void tell(const Fit& fit, const std::string& name, FileReport& report) {
    if (fit.confidence < 0) return report.result(qblconvmsgs::convFit(name, namesOf(fit)));
    report.result(qblconvmsgs::convFitPercent(name, namesOf(fit), std::to_string(fit.confidence)));
}

/// Reports a line as it reads in the best encoding, and as it reads in encoding i + 1. Omits the
/// first of these reports if the call for i - 1 has made the same report.
void tell(const std::vector<Fit>& fits, const std::vector<Difference>& differences, std::size_t i,
          const std::string& name, FileReport& report) {
    const Difference& difference = differences[i];
    const bool isSaid = i > 0 && differences[i - 1].line == difference.line &&
                        differences[i - 1].first == difference.first;
    const std::string line = std::to_string(difference.line);
    if (!isSaid)
        report.result(
            qblconvmsgs::convReads(name, line, shown(fits[0].name), shown(difference.first)));
    report.result(
        qblconvmsgs::convReads(name, line, shown(fits[i + 1].name), shown(difference.second)));
}

}  // namespace

void guess(Detector& detector, Input& input, const std::string& name, std::vector<char>& block,
           GuessDetail detail, FileReport& report) {
    std::vector<Fit> fits;
    std::vector<Difference> differences;
    const bool isRead = forPasses(input, name, block, report, [&](Passes& passes) {
        fits = detector.fits(passes);
        for (std::size_t i = 1; i < fits.size() && detail != GuessDetail::kNames; ++i)
            differences.push_back(findDifference(passes, detector.strict(fits[0].name),
                                                 detector.strict(fits[i].name)));
    });
    if (!isRead) return;
    if (fits.empty()) return detector.sayNone(name, report);
    report.setOutcome(Outcome::kValid);
    if (!detector.nearly().empty()) report.result(qblconvmsgs::convNearly(name, detector.nearly()));
    for (const Fit& fit : fits) tell(fit, name, report);
    for (std::size_t i = 0; i < differences.size(); ++i) tell(fits, differences, i, name, report);
}

}  // namespace conv
