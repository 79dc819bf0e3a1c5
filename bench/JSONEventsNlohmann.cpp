#include <nlohmann/json.hpp>
#include <stdexcept>

#include "JSONEvents.h"

namespace zm::bench {
namespace {

struct TCounter : nlohmann::json_sax<nlohmann::json> {
  TJSONEventCounts Counts;
  std::string Refusal;

  bool null() override { return Word(0); }
  bool boolean(bool Value) override { return Word(Value ? 1u : 0u); }
  bool number_integer(number_integer_t Value) override { return Number(static_cast<std::uint64_t>(Value)); }
  bool number_unsigned(number_unsigned_t Value) override { return Number(Value); }
  bool number_float(number_float_t Value, const string_t&) override { return Number(Value < 0 ? 1 : 2); }
  bool string(string_t& Text) override {
    ++Counts.Strings;
    Counts.Touch(Text.data(), Text.size());
    return true;
  }
  bool binary(binary_t&) override { return true; }
  bool start_object(std::size_t) override {
    ++Counts.Objects;
    return true;
  }
  bool key(string_t& Text) override {
    ++Counts.Members;
    Counts.Touch(Text.data(), Text.size());
    return true;
  }
  bool end_object() override { return true; }
  bool start_array(std::size_t) override {
    ++Counts.Arrays;
    return true;
  }
  bool end_array() override { return true; }
  bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception& Error) override {
    Refusal = Error.what();
    return false;
  }

 private:
  bool Word(std::uint64_t Value) {
    ++Counts.Words;
    Counts.Touched += Value;
    return true;
  }
  bool Number(std::uint64_t Value) {
    ++Counts.Numbers;
    Counts.Touched += Value;
    return true;
  }
};

}  // namespace

TJSONEventCounts ReadWithNlohmann(const TJSONSource& Source) {
  TCounter counter;
  if (!nlohmann::json::sax_parse(Source.UTF8, &counter)) throw std::runtime_error(counter.Refusal);
  return counter.Counts;
}

std::string NlohmannVersion() {
  return "nlohmann json " + std::to_string(NLOHMANN_JSON_VERSION_MAJOR) + "." +
         std::to_string(NLOHMANN_JSON_VERSION_MINOR) + "." + std::to_string(NLOHMANN_JSON_VERSION_PATCH);
}

}  // namespace zm::bench
