#include "bench/report/tables.hpp"

#include "bench/report/text_table.hpp"

namespace com::velanto::connectivity::bench {

namespace {

std::string titled(const std::string& title, const std::vector<row_t>& rows) {
  return title + "\n\n" + layOut(rows) + '\n';
}

std::string timeAndRatio(const samples_t& reference, const samples_t& samples) {
  return fixed(median(samples), 0) + "  " + fixed(ratio(reference, samples), 2);
}

const samples_t* find(const group_t& group, const std::string& name) {
  for (const result_t& result : group.results) {
    if (result.name == name) return &result.samples;
  }
  return nullptr;
}

} // namespace

std::string environmentText(const environment_t& environment) {
  std::string text;
  for (const auto& [name, value] : environment)
    text.append(name).append(": ").append(value) += '\n';
  return text + '\n';
}

std::string contendersText(const std::string& title, const suite_t& suite) {
  std::vector<row_t> rows = {{"contender"}};
  for (const group_t& group : suite.groups) rows.front().push_back(group.name);
  for (std::size_t i = 0; i < suite.groups.front().results.size(); ++i) {
    row_t row = {suite.groups.front().results[i].name};
    for (const group_t& group : suite.groups) {
      row.push_back(timeAndRatio(group.results.front().samples, group.results[i].samples));
    }
    rows.push_back(std::move(row));
  }
  return titled(title + " (ns per message, median; plug-in's time / its time)", rows);
}

std::string droppedText(const suite_t& suite) {
  std::vector<row_t> rows = {{"kind", "converted", "dropped", "dropped / converted"}};
  for (const result_t& result : suite.groups.front().results) {
    if (&result != suite.groups.front().results.data() && result.name != "converted") {
      rows.front().push_back(result.name);
    }
  }
  for (const group_t& group : suite.groups) {
    const samples_t& dropped = group.results.front().samples;
    const samples_t& converted = *find(group, "converted");
    row_t row = {group.name, fixed(median(converted), 0), fixed(median(dropped), 0),
                 fixed(ratio(dropped, converted), 2)};
    for (std::size_t i = 1; i < group.results.size(); ++i) {
      if (group.results[i].name == "converted") continue;
      row.push_back(timeAndRatio(dropped, group.results[i].samples));
    }
    rows.push_back(std::move(row));
  }
  return titled("Dropped notifications (ns per message; the others' beside the plug-in's)", rows);
}

std::string scalingText(const suite_t& suite) {
  std::vector<row_t> rows = {{"message", "plug-in", "floor", "plug-in / floor"}};
  for (const group_t& group : suite.groups) {
    const samples_t& plugin = group.results.front().samples;
    const samples_t& floor = *find(group, "floor");
    rows.push_back({group.name, fixed(median(plugin), 1), fixed(median(floor), 1),
                    fixed(ratio(plugin, floor), 2)});
    for (std::size_t i = 1; i < group.results.size(); ++i) {
      const result_t& other = group.results[i];
      if (other.name == "floor") continue;
      rows.push_back({"  " + other.name, fixed(median(other.samples), 1), "",
                      fixed(ratio(other.samples, floor), 2)});
    }
  }
  return titled("Scaling (ns per field, series or component)", rows);
}

std::string recordingText(const suite_t& suite) {
  std::vector<row_t> rows = {{"chain"}};
  for (const group_t& group : suite.groups) rows.front().push_back(group.name);
  for (std::size_t i = 0; i < suite.groups.front().results.size(); ++i) {
    row_t row = {suite.groups.front().results[i].name};
    for (const group_t& group : suite.groups) {
      const samples_t& chain = group.results[i].samples;
      const double more = ratio(chain, group.results.front().samples) - 1;
      row.push_back(fixed(median(chain), 0) + "  " + fixed(100 * more, 1) + " %");
    }
    rows.push_back(std::move(row));
  }
  return titled("Recording (ns per message, median; more than the codec alone)", rows);
}

std::string recordedBatchesText(const suite_t& suite) {
  std::vector<row_t> rows = {{"chain", "median", "99.9th percentile"}};
  for (const result_t& result : suite.groups.front().results) {
    rows.push_back({result.name, fixed(median(result.samples) / 1000, 1),
                    fixed(quantile(result.samples, 0.999) / 1000, 1)});
  }
  return titled("Recording, " + suite.groups.front().name + " (wall time of a batch, µs)", rows);
}

std::string threadsText(const std::string& title, const suite_t& suite) {
  std::vector<row_t> rows = {{"", "1 thread", "2 threads", "speed-up", "first / this, 1 thread"}};
  const std::vector<result_t>& results = suite.groups.front().results;
  for (std::size_t i = 0; i + 1 < results.size(); i += 2) {
    const samples_t& one = results[i].samples;
    const samples_t& two = results[i + 1].samples;
    rows.push_back({results[i].name.substr(0, results[i].name.find(',')), fixed(median(one), 1),
                    fixed(median(two), 1), fixed(2 * ratio(one, two), 2),
                    fixed(ratio(results.front().samples, one), 3)});
  }
  return titled(title + " (" + suite.unit + ')', rows);
}

} // namespace com::velanto::connectivity::bench
