#pragma once

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <stdexcept>

#include "JSONEvents.h"

// The readings are compiled twice, with the library's vector instructions and without, each in a namespace of its own.
namespace zm::bench {
namespace {

template <class Unit>
struct TCounter {
  TJSONEventCounts Counts;

  bool Null() { return Word(0); }
  bool Bool(bool Value) { return Word(Value ? 1u : 0u); }
  bool Int(int Value) { return Number(static_cast<std::uint64_t>(Value)); }
  bool Uint(unsigned Value) { return Number(Value); }
  bool Int64(std::int64_t Value) { return Number(static_cast<std::uint64_t>(Value)); }
  bool Uint64(std::uint64_t Value) { return Number(Value); }
  bool Double(double Value) { return Number(Value < 0 ? 1 : 2); }
  bool RawNumber(const Unit*, rapidjson::SizeType, bool) { return true; }
  bool String(const Unit* Text, rapidjson::SizeType Length, bool) {
    ++Counts.Strings;
    Counts.Touch(Text, Length);
    return true;
  }
  bool StartObject() {
    ++Counts.Objects;
    return true;
  }
  bool Key(const Unit* Text, rapidjson::SizeType Length, bool) {
    ++Counts.Members;
    Counts.Touch(Text, Length);
    return true;
  }
  bool EndObject(rapidjson::SizeType) { return true; }
  bool StartArray() {
    ++Counts.Arrays;
    return true;
  }
  bool EndArray(rapidjson::SizeType) { return true; }

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

template <class Target>
TJSONEventCounts ReadTo(const TJSONSource& Source) {
  TCounter<typename Target::Ch> counter;
  rapidjson::GenericReader<rapidjson::UTF8<>, Target> reader;
  rapidjson::StringStream stream(Source.UTF8.c_str());
  const rapidjson::ParseResult result = reader.Parse(stream, counter);
  if (!result) throw std::runtime_error(rapidjson::GetParseError_En(result.Code()));
  return counter.Counts;
}

}  // namespace
}  // namespace zm::bench
