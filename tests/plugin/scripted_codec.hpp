// A codec that treats each message as the message says, and notes each call:
//
//   payload    "keep …" "drop …" "fail …" "throw …"      the last throws an integer
//   empty      the hook's default, or null_verb when set
#ifndef VLT_TESTS_PLUGIN_SCRIPTED_CODEC_HPP
#define VLT_TESTS_PLUGIN_SCRIPTED_CODEC_HPP

#include <stdexcept>
#include <string>
#include <vector>

#include "plugin/abstract_simple_codec.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::test {

class ScriptedCodec final : public AbstractSimpleCodec {
 public:
  ScriptedCodec()
      : AbstractSimpleCodec(
            PluginConstructorParameters("codec", "chain", map_t(), nullptr, nullptr)) {}

  bool transformMessageTowardsHost(Message& message) override { return play("host", message); }
  bool transformMessageTowardsTransport(Message& message) override {
    return play("transport", message);
  }
  bool transformNullPayloadTowardsHost(Message& message) override {
    calls.emplace_back("host: null");
    if (null_verb.empty()) return AbstractSimpleCodec::transformNullPayloadTowardsHost(message);
    return act(null_verb);
  }
  bool transformNullPayloadTowardsTransport(Message& message) override {
    calls.emplace_back("transport: null");
    if (null_verb.empty())
      return AbstractSimpleCodec::transformNullPayloadTowardsTransport(message);
    return act(null_verb);
  }
  bool handleException(Message& message, bool towards_transport) override {
    calls.push_back(std::string(towards_transport ? "transport" : "host") + ": " + textOf(message) +
                    " failed with " + inFlight());
    if (report_fails) throw std::runtime_error("no report");
    return keeps_failed;
  }

  std::vector<std::string> calls; // "DIRECTION: PAYLOAD" and "DIRECTION: PAYLOAD failed with WHAT"
  std::string null_verb;
  bool keeps_failed = false; // the result of handleException
  bool report_fails = false; // it throws instead

 private:
  static std::string textOf(const Message& message) {
    return message.getPayload().empty() ? "null" : message.getPayload().get<const char*>();
  }

  // Rethrows the exception to tell it, which works only while the exception is in flight.
  static std::string inFlight() {
    try {
      throw;
    } catch (const std::exception& e) {
      return e.what();
    } catch (int number) {
      return std::to_string(number);
    }
  }

  static bool act(const std::string& verb) {
    if (verb == "fail") throw std::runtime_error("boom");
    if (verb == "throw") throw 42;
    return verb == "keep";
  }

  bool play(const char* direction, const Message& message) {
    const std::string text = textOf(message);
    calls.push_back(std::string(direction) + ": " + text);
    return act(text.substr(0, text.find(' ')));
  }
};

} // namespace com::velanto::connectivity::test

#endif
