// The sections that are looked up: ways, channels, batches, configuration, builds, and the list of
// what the page leaves out.
#include <algorithm>

#include "identity/build_name.hpp"
#include "tools/report/chart.hpp"
#include "tools/report/sections.hpp"

namespace com::velanto::connectivity::tools::report {

namespace {

constexpr std::size_t SHOWN_CHANNELS = 40;
constexpr std::size_t SHOWN_INPUTS = 20;

void writeWay(Html& html, const way_t& way) {
  const record_t& record = way.example.record;
  html << R"(<details id="way-)" << shown(anchorOf(way.shape)) << R"("><summary>)"
       << shown(counted(way.count, "message")) << ": " << shown(nameOf(record.kind)) << ", "
       << shown(nameOf(record.outcome)) << ", first at <code>" << shown(way.example.place)
       << "</code></summary>\n";
  writeFates(html, way.example);
  html << "<h3>The message</h3>\n";
  writeMessage(html, way.example);
  html << "</details>\n";
}

void writeNamedValues(Html& html, markup_t caption, const named_values_t& values) {
  if (values.empty()) return;
  html << "<table><caption>" << caption
       << R"(</caption><thead><tr><th scope="col">Name</th><th scope="col">Value</th></tr></thead>)"
          "<tbody>\n";
  for (const auto& [name, value] : values) {
    html << R"(<tr><th scope="row"><code>)" << shown(name) << "</code></th><td><code>"
         << shown(value) << "</code></td></tr>\n";
  }
  html << "</tbody></table>\n";
}

void writeEntry(Html& html, markup_t name, const std::string& value) {
  if (value.empty()) return;
  html << R"(<tr><th scope="row">)" << name << "</th><td><code>" << shown(value)
       << "</code></td></tr>\n";
}

} // namespace

void writeWays(Html& html, contents_t& contents) {
  const std::vector<way_t*> ways = contents.collection.ways();
  if (ways.empty()) return;
  html
      << R"(<section id="ways" aria-labelledby="ways-title">)"
         "<h2 id=\"ways-title\">Ways that messages went</h2>\n<p>Messages went the same way when "
         "they have the same fields and kinds of values, before and after. Of each way, the tool "
         "has explained the first message. A gathered field came out in a list or map that the "
         "plug-in has put together. A copied one came out once more, in addition to its own place. "
         "A replaced one vanished, and another value has its place.</p>\n";
  std::uint64_t others = contents.collection.otherWays();
  for (std::size_t i = 0; i < ways.size(); ++i) {
    if (i < SHOWN_WAYS) {
      writeWay(html, *ways[i]);
    } else {
      others += ways[i]->count;
    }
  }
  if (others > 0) html.leaveOut("Messages that went in further ways: " + grouped(others) + ".");
  html << "</section>\n";
}

void writeChannels(Html& html, const contents_t& contents) {
  const auto channels = contents.collection.channels();
  if (channels.empty()) return;
  html << R"(<section id="channels" aria-labelledby="channels-title">)"
          "<h2 id=\"channels-title\">Channels</h2>\n<table><caption>Events by channel</caption>"
          R"(<thead><tr><th scope="col">Channel</th><th scope="col" class="number">Events</th>)"
          "<th scope=\"col\"><span class=\"hidden\">as a bar</span></th></tr></thead><tbody>\n";
  std::uint64_t others = contents.collection.otherChannels();
  for (std::size_t i = 0; i < channels.size(); ++i) {
    if (i >= SHOWN_CHANNELS) {
      others += channels[i].second;
      continue;
    }
    html << R"(<tr><th scope="row"><code>)" << shown(channels[i].first)
         << R"(</code></th><td class="number">)" << shown(grouped(channels[i].second))
         << R"(</td><td class="bar">)";
    writeShare(html, channels[i].second, channels.front().second);
    html << "</td></tr>\n";
  }
  html << "</tbody></table>\n";
  if (others > 0) html.leaveOut("Events in further channels: " + grouped(others) + ".");
  html << "</section>\n";
}

void writeBatches(Html& html, const contents_t& contents) {
  if (contents.collection.batchSizes().classes().empty()) return;
  html << R"(<section id="batches" aria-labelledby="batches-title">)"
          "<h2 id=\"batches-title\">Batches</h2>\n";
  writeDistribution(html, "Batches by size", "Messages", "Batches",
                    contents.collection.batchSizes());
  if (contents.settings.timed) {
    writeDistribution(html, "Batches by the time that the plug-in took", "Microseconds", "Batches",
                      contents.collection.batchTimes());
  } else {
    html << R"(<p class="note">With <code>--summary</code>, the page also shows the time that the )"
            "plug-in took.</p>\n";
  }
  html << "</section>\n";
}

void writeConfiguration(Html& html, const contents_t& contents) {
  const settings_t& settings = contents.settings;
  html << R"(<section id="configuration" aria-labelledby="configuration-title">)"
          "<h2 id=\"configuration-title\">Configuration and input</h2>\n<ul>";
  for (std::size_t i = 0; i < std::min(settings.inputs.size(), SHOWN_INPUTS); ++i) {
    html << "<li>Input <code>" << shown(settings.inputs[i]) << "</code></li>";
  }
  html << "</ul>\n";
  if (settings.inputs.size() > SHOWN_INPUTS) {
    html.leaveOut("Further inputs: " + grouped(settings.inputs.size() - SHOWN_INPUTS) + ".");
  }
  writeNamedValues(html, "Configuration of the plug-in", settings.configuration);
  writeNamedValues(html, "Options of the run", settings.options);
  if (!contents.outcome.recordings.empty()) {
    html << "<h3 id=\"recordings\">Recordings</h3>\n<pre>";
    html.lines(contents.outcome.recordings, 4096);
    html << "</pre>\n";
  }
  html << "</section>\n";
}

void writeBuilds(Html& html, const contents_t& contents) {
  html << R"(<section id="builds" aria-labelledby="builds-title">)"
          "<h2 id=\"builds-title\">Builds</h2>\n";
  html << "<p>This tool: " << shown(VLT_BUILD_NAME) << "</p>\n";
  for (const build_t& build : contents.settings.builds) {
    html << R"(<table class="build"><caption>)" << shown(build.role) << "</caption><tbody>\n";
    writeEntry(html, "File", build.file.path);
    writeEntry(html, "Build", build.file.build_name);
    writeEntry(html, "Build id", build.file.build_id);
    writeEntry(html, "Product version", build.version);
    writeEntry(html, "Size", counted(build.file.size, "byte"));
    writeEntry(html, "SHA-256", build.file.sha256);
    html << "</tbody></table>\n";
  }
  html << "</section>\n";
}

void writeLeftOut(Html& html) {
  const std::vector<std::string>& omissions = html.omissions();
  html << R"(<section id="left-out" aria-labelledby="left-out-title">)"
          "<h2 id=\"left-out-title\">Left out of this page</h2>\n";
  if (omissions.empty() && html.cutTexts() == 0) html << "<p>Nothing.</p>\n";
  html << "<ul>";
  for (const std::string& omission : omissions) html << "<li>" << shown(omission) << "</li>";
  if (html.cutTexts() > 0) {
    html << "<li>Ends of long texts, each with the number of its bytes: "
         << shown(grouped(html.cutTexts())) << ".</li>";
  }
  html << "</ul></section>\n";
}

} // namespace com::velanto::connectivity::tools::report
