#include "tools/check/check_fixture.hpp"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "standin/standin.h"
#include "tools/check/values.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

// The links that there are, by handle.
struct registry_t {
  std::mutex lock;
  std::vector<void*> links;
  int stray_calls = 0;
};

registry_t& registry() {
  static registry_t all;
  return all;
}

bool isKnown(void* handle) {
  registry_t& all = registry();
  const std::lock_guard guard(all.lock);
  const bool known = std::find(all.links.begin(), all.links.end(), handle) != all.links.end();
  if (!known) ++all.stray_calls;
  return known;
}

void requireResult(int result, const char* call) {
  if (result != 0) throw std::runtime_error(std::string(call) + " failed");
}

} // namespace

std::string line(vlt_log_level_t level, const std::string& text) {
  const std::string category = std::string("connectivity.") + PLUGIN_NAME + "." + CHAIN_NAME;
  return std::to_string(level) + " " + category + " <" + category + "> " + text;
}

std::string dropped(const std::string& rest) {
  return line(3, "Error when transforming message towards host" + rest);
}

Log::Log(vlt_log_level_t level) {
  standin_set_default_log_level(level);
  standin_set_log_sink(&Log::file, this);
}

Log::~Log() { standin_reset_logging(); }

lines_t Log::take() {
  const std::lock_guard guard(lock_);
  return std::exchange(lines_, {});
}

void Log::file(void* context, const char* category, vlt_log_level_t level, const char* text) {
  auto& log = *static_cast<Log*>(context);
  const std::lock_guard guard(log.lock_);
  log.lines_.push_back(std::to_string(level) + " " + category + " " + text);
}

Link::Link() {
  registry_t& all = registry();
  const std::lock_guard guard(all.lock);
  all.links.push_back(this);
}

Link::~Link() {
  registry_t& all = registry();
  const std::lock_guard guard(all.lock);
  std::erase(all.links, this);
}

int Link::strayCalls() {
  registry_t& all = registry();
  const std::lock_guard guard(all.lock);
  return all.stray_calls;
}

void Link::take(void* handle, vlt_underlying_message_t* start, vlt_underlying_message_t* end) {
  if (!isKnown(handle)) return;
  auto& link = *static_cast<Link*>(handle);
  link.calls.push_back({start, end});
  if (!link.moves_out) return;
  auto* const last = reinterpret_cast<Message*>(end);
  for (auto* m = reinterpret_cast<Message*>(start); m != last; ++m) {
    link.messages.push_back(std::move(*m));
  }
}

PluginLibrary load(const Trial& trial) {
  return PluginLibrary(trial.path(), PluginLibrary::Version::ANY, trial.className());
}

data_t configured(const Trial& trial, std::string_view json) {
  data_t settings = value(json);
  if (!trial.isCodec()) set(settings, "recordingFolder", data_t(trial.folder().c_str()));
  return settings;
}

Codec::Codec(Trial& trial, const PluginLibrary& library, const vlt_underlying_data_t* configuration,
             const char* name, const char* chain)
    : trial_(trial), library_(library) {
  guarded("create", [&] {
    plugin_ = library.create(name, chain, configuration, nullptr, nullptr);
    return 0;
  });
}

int Codec::guarded(const char* name, const std::function<int()>& call) {
  try {
    return call();
  } catch (const std::exception& e) {
    trial_.holds(false, name, "no exception across the interface", e.what());
  } catch (...) {
    trial_.holds(false, name, "no exception across the interface", "one of an unknown type");
  }
  return -1;
}

void Codec::link() {
  if (!made()) throw std::runtime_error("the codec was not created");
  requireResult(setNextTowardsHost(&host, Link::take), "setNextTowardsHost");
  requireResult(setNextTowardsTransport(&transport, Link::take), "setNextTowardsTransport");
}

int Codec::destroy() {
  void* const plugin = std::exchange(plugin_, nullptr);
  if (plugin == nullptr) return 0;
  return guarded("destroy", [&] { return library_.destroy(plugin); });
}

CheckFixture::CheckFixture(Trial& trial_of, const char* configuration_json, vlt_log_level_t level)
    : trial(trial_of),
      log(level),
      loaded(load(trial_of)),
      configuration(configured(trial_of, configuration_json)),
      codec(trial_of, loaded, configuration) {
  codec.link();
}

std::vector<Message> CheckFixture::send(std::vector<Message>&& batch) {
  trial.equal("sendBatchTowardsHost", 0, codec.towardsHost(batch));
  return std::exchange(codec.host.messages, {});
}

std::vector<Message> CheckFixture::send(Message&& message) {
  std::vector<Message> batch;
  batch.push_back(std::move(message));
  return send(std::move(batch));
}

void CheckFixture::expectLog(const std::string& where, const lines_t& expected) {
  trial.equal(where + ", log", expected, log.take());
}

} // namespace com::velanto::connectivity::tools::check
