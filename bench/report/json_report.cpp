#include "bench/report/json_report.hpp"

#include <nlohmann/json.hpp>

namespace com::velanto::connectivity::bench {

namespace {

using Json = nlohmann::ordered_json;

Json describe(const group_t& group) {
  Json contenders = Json::array();
  for (const result_t& result : group.results) {
    contenders.push_back(
        {{"name", result.name},
         {"median", median(result.samples)},
         {"quartiles", {quantile(result.samples, 0.25), quantile(result.samples, 0.75)}},
         {"ratio", ratio(group.results.front().samples, result.samples)},
         {"rounds", result.samples.size()}});
  }
  return {{"name", group.name}, {"contenders", std::move(contenders)}};
}

} // namespace

std::string jsonReport(const environment_t& environment, const std::vector<suite_t>& suites) {
  Json report;
  for (const auto& [name, value] : environment) report["environment"][name] = value;
  report["suites"] = Json::array();
  for (const suite_t& suite : suites) {
    Json groups = Json::array();
    for (const group_t& group : suite.groups) groups.push_back(describe(group));
    report["suites"].push_back(
        {{"name", suite.name}, {"unit", suite.unit}, {"groups", std::move(groups)}});
  }
  return report.dump(2) + '\n';
}

} // namespace com::velanto::connectivity::bench
