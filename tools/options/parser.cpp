#include "tools/options/parser.hpp"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <charconv>
#include <cstring>
#include <string>
#include <system_error>

#include "tools/options/help.hpp"

namespace com::velanto::connectivity::tools {

namespace {

// The whole of `text` as a number, or nothing. The library's own checks let -1 through, as a very
// large number, and nan.
template <class Number>
std::optional<Number> numberIn(const std::string& text) {
  Number number = 0;
  const char* const end = text.data() + text.size();
  const std::from_chars_result result = std::from_chars(text.data(), end, number);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return number;
}

// The checks return nothing, or the fault of `text`.
std::string checkCount(const std::string& text) {
  if (numberIn<std::size_t>(text).value_or(0) > 0) return "";
  return "'" + text + "' is not a number of at least 1";
}

std::string checkSeconds(const std::string& text) {
  constexpr double MOST_SECONDS = 86400;
  const double seconds = numberIn<double>(text).value_or(0);
  if (seconds >= 0.001 && seconds <= MOST_SECONDS) return "";
  return "'" + text + "' is not a number of seconds between 0.001 and 86400";
}

std::string checkSeed(const std::string& text) {
  if (numberIn<std::uint64_t>(text)) return "";
  return "'" + text + "' is not a whole number of 64 bits";
}

std::string checkChoice(const std::string& text, const std::string& choices) {
  const bool found = text.find('|') == std::string::npos &&
                     ("|" + choices + "|").find("|" + text + "|") != std::string::npos;
  return found ? "" : "'" + text + "' is none of " + choices;
}

// Makes the library's option for a row of the table.
class OptionMaker {
 public:
  OptionMaker(CLI::App& app, const char* name, const char* argument) noexcept
      : app_(app), name_(name), argument_(argument) {}

  void operator()(std::monostate) const {}
  void operator()(bool* target) const { app_.add_flag(name_, *target); }
  void operator()(std::size_t* target) const {
    add(*target)->check(CLI::Validator(checkCount, ""));
  }
  void operator()(double* target) const { add(*target)->check(CLI::Validator(checkSeconds, "")); }
  void operator()(std::optional<std::uint64_t>* target) const {
    add(*target)->check(CLI::Validator(checkSeed, ""));
  }
  void operator()(std::vector<std::string>* target) const {
    add(*target)->allow_extra_args(name_[0] != '-'); // operands
  }
  void operator()(std::optional<std::string>* target) const {
    if (*argument_ != '[') return restrict(add(*target), argument_);
    const std::string choices = std::string(argument_ + 2, std::strlen(argument_ + 2) - 1);
    const std::string first = choices.substr(0, choices.find('|'));
    restrict(app_.add_flag(std::string(name_) + "{" + first + "}", *target), choices);
  }
  template <class Value>
  void operator()(Value* target) const {
    restrict(add(*target), argument_);
  }

 private:
  template <class Value>
  CLI::Option* add(Value& value) const {
    return app_.add_option(name_, value)->type_name(argument_);
  }
  static void restrict(CLI::Option* option, const std::string& choices) {
    if (choices.find('|') == std::string::npos) return;
    option->check(CLI::Validator(
        [choices](const std::string& text) { return checkChoice(text, choices); }, ""));
  }

  CLI::App& app_;
  const char* name_;
  const char* argument_;
};

} // namespace

bool parse(const tool_t& tool, int count, const char* const* arguments, std::ostream& out) {
  CLI::App app("", tool.name);
  app.set_help_flag("--help,-h");
  app.set_version_flag("--version", std::string(tool.name) + " " + VLT_VERSION);
  std::visit(OptionMaker(app, tool.operands, ""), tool.operands_target);
  for (const option_group_t& group : tool.groups) {
    for (const option_row_t& row : group.rows) {
      std::visit(OptionMaker(app, row.name, row.argument), row.target);
    }
  }
  try {
    app.parse(count, arguments);
    return true;
  } catch (const CLI::CallForHelp&) {
    out << helpText(tool);
  } catch (const CLI::CallForVersion& version) {
    out << version.what() << '\n';
  }
  return false;
}

} // namespace com::velanto::connectivity::tools
