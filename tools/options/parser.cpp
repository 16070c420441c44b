// Reads the arguments one after the other:
//
//   --name=value, --name value   an option and its value; behind = also the empty string
//   --name                       one that takes no value, or can do without
//   --                           all that follow are operands
//   anything else, also -        an operand
//
// A value that begins with two dashes needs the form with =, so that a forgotten value does not
// consume the next option.
#include "tools/options/parser.hpp"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

#include "identity/build_name.hpp"
#include "tools/options/guess.hpp"
#include "tools/options/help.hpp"

namespace com::velanto::connectivity::tools {

namespace {

// Whether `value` is one of `choices`, "a|b|…".
bool isChoice(std::string_view choices, std::string_view value) {
  while (!choices.empty()) {
    const std::string_view choice = choices.substr(0, choices.find('|'));
    if (choice == value) return true;
    choices.remove_prefix(std::min(choice.size() + 1, choices.size()));
  }
  return false;
}

// Sets the target of an option or of the operands to an argument. Throws std::runtime_error
// "NAME: fault" for a bad one.
class Setter {
 public:
  // `choices` are the values allowed, "a|b|…", or anything without a bar.
  Setter(std::string_view name, std::string_view choices, std::string_view value) noexcept
      : name_(name), choices_(choices), value_(value) {}

  void operator()(std::monostate) const {}
  void operator()(bool* target) const { *target = true; }
  void operator()(std::string* target) const { *target = chosen(); }
  void operator()(std::optional<std::string>* target) const { *target = chosen(); }
  void operator()(std::vector<std::string>* target) const { target->push_back(chosen()); }
  void operator()(std::size_t* target) const {
    *target = number<std::size_t>(1, SIZE_MAX, "is not a whole number from 1 to 2^64-1");
  }
  void operator()(double* target) const {
    *target = number(0.001, 86400.0, "is not a number of seconds between 0.001 and 86400");
  }
  void operator()(std::optional<std::uint64_t>* target) const {
    *target = number<std::uint64_t>(0, UINT64_MAX, "is not a whole number from 0 to 2^64-1");
  }
  void operator()(std::optional<vlt_log_level_t>* target) const {
    *target = number<vlt_log_level_t>(INT32_MIN, INT32_MAX,
                                      "is not a level of the log, such as 2, 3 or 6");
  }

 private:
  [[noreturn]] void refuse(std::string_view fault) const {
    throw std::runtime_error(std::string(name_) + ": '" + std::string(value_) + "' " +
                             std::string(fault));
  }

  std::string chosen() const {
    if (choices_.find('|') == std::string_view::npos || isChoice(choices_, value_)) {
      return std::string(value_);
    }
    refuse(std::string("is none of ").append(choices_));
  }

  // The whole value, within bounds.
  template <class Number>
  Number number(Number least, Number most, const char* fault) const {
    Number result = 0;
    const char* const end = value_.data() + value_.size();
    const std::from_chars_result read = std::from_chars(value_.data(), end, result);
    if (read.ec != std::errc() || read.ptr != end || !(result >= least && result <= most)) {
      refuse(fault);
    }
    return result;
  }

  std::string_view name_;
  std::string_view choices_;
  std::string_view value_;
};

bool isRepeatable(const target_t& target) {
  return std::holds_alternative<bool*>(target) ||
         std::holds_alternative<std::vector<std::string>*>(target) ||
         std::holds_alternative<std::monostate>(target);
}

class Parser {
 public:
  Parser(const tool_t& tool, std::span<const char* const> arguments)
      : tool_(tool), rest_(arguments) {}

  // The option that ends the reading, --help or --version; empty when there is none.
  std::string_view readAll() {
    bool only_operands = false;
    while (!rest_.empty()) {
      const std::string_view argument = next();
      if (only_operands || !argument.starts_with('-') || argument == "-") {
        takeOperand(argument);
      } else if (argument == "--") {
        only_operands = true;
      } else if (const option_row_t& row = takeOption(argument);
                 std::holds_alternative<std::monostate>(row.target)) {
        return row.name;
      }
    }
    return {};
  }

 private:
  std::string_view next() {
    const std::string_view argument = rest_.front();
    rest_ = rest_.subspan(1);
    return argument;
  }

  void takeOperand(std::string_view argument) {
    const bool one_only = std::holds_alternative<std::string*>(tool_.operands_target);
    if (one_only && has_operand_) {
      throw std::runtime_error(std::string("unexpected argument '").append(argument) + "'");
    }
    has_operand_ = true;
    std::visit(Setter(tool_.operands, "", argument), tool_.operands_target);
  }

  const option_row_t& takeOption(std::string_view argument) {
    const std::size_t equals = argument.find('=');
    const option_row_t& row = rowOf(argument.substr(0, equals));
    if (!isRepeatable(row.target) && !seen_.insert(&row).second) {
      throw std::runtime_error(std::string(row.name) + " is given twice");
    }
    const bool has_value = equals != std::string_view::npos;
    std::string_view form = row.argument;
    if (form.empty()) {
      if (has_value) throw std::runtime_error(std::string(row.name) + " takes no value");
      std::visit(Setter(row.name, "", ""), row.target);
      return row;
    }
    std::string_view value = has_value ? argument.substr(equals + 1) : std::string_view();
    if (form.starts_with('[')) { // "[=a|b]"
      form = form.substr(2, form.size() - 3);
      if (!has_value) value = defaultOf(row, form);
    } else if (!has_value) {
      if (rest_.empty() || std::string_view(rest_.front()).starts_with("--")) {
        throw std::runtime_error(std::string(row.name) + " needs a value: " + row.argument);
      }
      value = next();
    }
    std::visit(Setter(row.name, form, value), row.target);
    return row;
  }

  // The value of an option that can do without one. Refuses a value that would be an operand.
  std::string_view defaultOf(const option_row_t& row, std::string_view form) const {
    if (!rest_.empty() && isChoice(form, rest_.front())) {
      const std::string value = rest_.front();
      throw std::runtime_error(std::string(row.name) + " " + value + ": write " + row.name + "=" +
                               value + ", or ./" + value + " for a file");
    }
    return form.substr(0, form.find('|'));
  }

  const option_row_t& rowOf(std::string_view name) const {
    if (name == "-h") name = "--help";
    std::vector<std::string_view> known;
    for (const option_group_t& group : tool_.groups) {
      for (const option_row_t& row : group.rows) {
        if (row.name == name) return row;
        known.emplace_back(row.name);
      }
    }
    const std::string guess = guessFor(name, known);
    throw std::runtime_error(std::string("unknown option '").append(name) + "'" +
                             (guess.empty() ? "; see --help" : guess));
  }

  const tool_t& tool_;
  std::span<const char* const> rest_;
  std::set<const option_row_t*> seen_;
  bool has_operand_ = false;
};

} // namespace

bool parse(const tool_t& tool, int count, const char* const* arguments, std::ostream& out) {
  const std::span all(arguments, static_cast<std::size_t>(count));
  const std::string_view question = Parser(tool, all.subspan(1)).readAll();
  if (question == "--help") out << helpText(tool);
  if (question == "--version")
    out << tool.name << VLT_BUILD_NAME + std::strlen(PROJECT_NAME) << '\n';
  return question.empty();
}

} // namespace com::velanto::connectivity::tools
