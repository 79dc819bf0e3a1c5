#include <cstdint>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "Commands.h"
#include "Harness.h"
#include "Report.h"
#include "zamrit/common/uZmRTTI.h"

namespace zm::bench {
namespace {

enum class TColor { clRed, clGreen, clBlue };

class TSample : public TPersistent {
 public:
  int Number = 1;
  double Price = 1.5;
  TColor Color = TColor::clGreen;
  TDateTime When = 45000.25;
  TSample* Next = nullptr;
  String Name = u"short";
  int GetTotal() const { return FTotal; }
  void SetTotal(int Value) { FTotal = Value; }

 private:
  int FTotal = 3;
};

ZM_ENUM(TColor, clRed, clGreen, clBlue)

}  // namespace
}  // namespace zm::bench

template <>
void zm::Describe(zm::TTypeBuilder<zm::bench::TSample>& T) {
  using zm::bench::TSample;
  T.Published(u"Number", &TSample::Number);
  T.Published(u"Price", &TSample::Price);
  T.Published(u"Color", &TSample::Color);
  T.Published(u"When", &TSample::When);
  T.Published(u"Next", &TSample::Next);
  T.Published(u"Name", &TSample::Name);
  T.Property(u"Total", &TSample::GetTotal, &TSample::SetTotal);
}

namespace zm::bench {
namespace {

constexpr double cGoal = 10;  // nanoseconds for a read or a write

/// What the optimizer must take to be used, and possibly changed.
template <class T>
void Touch(T& Value) {
  asm volatile("" : : "r"(&Value) : "memory");
}

struct TRow {
  const char* Name;
  bool HasGoal;
  std::function<void(std::size_t)> Direct;
  std::function<void(std::size_t)> Reflected;
};

template <class F>
std::function<void(std::size_t)> Repeated(F Step) {
  return [Step](std::size_t Count) {
    for (std::size_t i = 0; i < Count; ++i) Step(i);
  };
}

/// Reading and writing one member of type T.
template <class T, class Member, class Value>
void AddRows(std::vector<TRow>& Rows, const char* Read, const char* Write, TSample& Sample, T TSample::*Place,
             const Member* Reflected, Value MakeValue) {
  constexpr bool simple = std::is_trivially_copyable_v<T>;
  TSample* const sample = &Sample;
  Rows.push_back({Read, simple, Repeated([=](std::size_t) {
                    Touch(*sample);
                    T value = sample->*Place;
                    Touch(value);
                  }),
                  Repeated([=](std::size_t) {
                    Touch(*sample);
                    TValue value = Reflected->GetValue(sample);
                    T held = value.AsType<T>();
                    Touch(held);
                  })});
  Rows.push_back({Write, simple, Repeated([=](std::size_t i) {
                    sample->*Place = MakeValue(i);
                    Touch(*sample);
                  }),
                  Repeated([=](std::size_t i) {
                    Reflected->SetValue(sample, TValue::From(static_cast<T>(MakeValue(i))));
                    Touch(*sample);
                  })});
}

std::vector<TRow> MakeRows(TSample& Sample) {
  const TRttiType* type = TypeOf<TSample*>();
  std::vector<TRow> rows;
  AddRows(rows, "read an int", "write an int", Sample, &TSample::Number, type->GetField(u"Number"),
          [](std::size_t i) { return static_cast<int>(i); });
  AddRows(rows, "read a double", "write a double", Sample, &TSample::Price, type->GetField(u"Price"),
          [](std::size_t i) { return static_cast<double>(i); });
  AddRows(rows, "read an enumeration", "write an enumeration", Sample, &TSample::Color, type->GetField(u"Color"),
          [](std::size_t i) { return static_cast<TColor>(i % 3); });
  AddRows(rows, "read a date", "write a date", Sample, &TSample::When, type->GetField(u"When"),
          [](std::size_t i) { return TDateTime(static_cast<double>(i)); });
  AddRows(rows, "read a reference", "write a reference", Sample, &TSample::Next, type->GetField(u"Next"),
          [sample = &Sample](std::size_t) { return sample; });
  AddRows(rows, "read a short string", "write a short string", Sample, &TSample::Name, type->GetField(u"Name"),
          [](std::size_t) { return String(u"small"); });
  TSample* const sample = &Sample;
  const TRttiProperty* total = type->GetProperty(u"Total");
  rows.push_back({"read a property", true, Repeated([=](std::size_t) {
                    Touch(*sample);
                    int value = sample->GetTotal();
                    Touch(value);
                  }),
                  Repeated([=](std::size_t) {
                    Touch(*sample);
                    int value = total->GetValue(sample).AsType<int>();
                    Touch(value);
                  })});
  rows.push_back({"find a member by name", false, nullptr, Repeated([=](std::size_t) {
                    const TRttiField* field = type->GetField(u"color");
                    Touch(field);
                  })});
  rows.push_back({"find an object's type", false, nullptr, Repeated([=](std::size_t) {
                    const TRttiInstanceType* found = TypeOfObject(sample);
                    Touch(found);
                  })});
  return rows;
}

}  // namespace

int RunReflection(const TOptions& Options) {
  PinToOneCore();
  const auto sample = Create<TSample>();
  const std::size_t count = 10000;
  TTable table({"", "direct, ns", "reflected, ns", "goal, ns"});
  bool met = true;
  for (const TRow& row : MakeRows(*sample)) {
    std::vector<TContestant> contestants{{"reflected", [&] { row.Reflected(count); }}};
    if (row.Direct) contestants.push_back({"direct", [&] { row.Direct(count); }});
    const std::vector<TTiming> timings = Race(contestants, Options.Quick ? 0.01 : Options.Seconds / 4);
    const double reflected = timings[0].Median * 1e9 / count;
    if (row.HasGoal && reflected > cGoal) met = false;
    table.Add({row.Name, row.Direct ? Fixed(timings[1].Median * 1e9 / count, 1) : "", Fixed(reflected, 1),
               row.HasGoal ? Fixed(cGoal, 0) : ""});
  }
  Publish(
      "# Members by reflection, beside direct access\n\n" + table.Markdown() +
          (met ? "Every read and write meets its goal.\n" : "Not every read and write meets its goal.\n") +
          "A read makes a value and takes the member's type out of it again; a write makes the value too. Both copy a "
          "text twice, hence no goal for it.\n\n" +
          DescribeMachine() + "\n",
      Options.Markdown);
  return 0;
}

}  // namespace zm::bench
