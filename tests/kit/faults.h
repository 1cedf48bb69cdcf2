// Fault tables: what a family refuses, in the order in which it looks.
//
// A family describes one correct call (a struct of its arguments) and lists its faults in the order of its checks, each as the
// members of the struct that it sets:
//
//   struct Args { const float* source; int32_t stride, height; float* result; int32_t width; };
//   kit::FaultTable<Args> table{valid, [](const Args& a) { return qorsSumColumn_32f_D2(a.source, ...); }, {result area}};
//   table.fault("null source", qorStatusNullPointer, &Args::source, nullptr);
//   table.fault("stride below width", qorStatusBadStride, &Args::stride, 3, kit::against(&Args::width));
//   ...
//   table.check();
//
// check() makes the correct call (qorStatusOk or a warning), then each fault alone, then each pair: the fault listed first must
// decide. After every faulty call the watched areas hold what they held before. Which pairs run is decided by the members alone, the
// name is for the report: two faults that set the same member are no pair, and neither are two of which one sets a member that the
// other is a fault against ("stride below width", "width zero"), since the second would undo the first.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "qorsr.h"

namespace kit {

// Memory that a faulty call must leave alone.
struct Watched {
  void* data;
  std::size_t bytes;

  template <class T>
  Watched(T* pointer, int64_t count) : data(pointer), bytes(static_cast<std::size_t>(count) * sizeof(T)) {}
};

// Members that a fault leaves as they are and whose value makes it one.
template <class... Members>
struct Against {
  std::tuple<Members...> members;
};

template <class... Members>
Against<Members...> against(Members... members) {
  return {{members...}};
}

template <class Args>
class FaultTable {
 public:
  using Call = std::function<QorStatus(const Args&)>;

  FaultTable(Args valid, Call call, std::vector<Watched> watched)
      : valid_(std::move(valid)), call_(std::move(call)), watched_(std::move(watched)) {}

  // The fault sets members to values (member, value, member, value, ...); kit::against(...) may follow.
  template <class T, class C, class Value, class... More>
  FaultTable& fault(std::string name, QorStatus status, T C::*member, Value value, More... more) {
    faults_.push_back({std::move(name), status, {}, {}, {}});
    describe(faults_.back(), member, value, more...);
    return *this;
  }

  void check() const {
    for (std::size_t i = 0; i < faults_.size(); ++i) {
      expectStatus({&faults_[i]}, faults_[i].status);
      for (std::size_t j = i + 1; j < faults_.size(); ++j) {
        if (independent(faults_[i], faults_[j])) expectStatus({&faults_[i], &faults_[j]}, faults_[i].status);
      }
    }
    EXPECT_GE(call_(valid_), 0) << "the call without a fault must succeed";
  }

 private:
  // One member, by the place where it lies in the struct.
  using Member = std::ptrdiff_t;

  struct Fault {
    std::string name;
    QorStatus status;
    std::vector<std::function<void(Args&)>> settings;
    std::vector<Member> set, against;
  };

  template <class T, class C>
  Member place(T C::*member) const {
    return reinterpret_cast<const char*>(&(valid_.*member)) - reinterpret_cast<const char*>(&valid_);
  }

  void describe(Fault&) const {}
  template <class T, class C, class Value, class... More>
  void describe(Fault& fault, T C::*member, Value value, More... more) const {
    fault.settings.push_back([=](Args& args) { args.*member = static_cast<T>(value); });
    fault.set.push_back(place(member));
    describe(fault, more...);
  }
  template <class... Members>
  void describe(Fault& fault, Against<Members...> others) const {
    std::apply([&](auto... member) { (fault.against.push_back(place(member)), ...); }, others.members);
  }

  static bool share(const std::vector<Member>& a, const std::vector<Member>& b) {
    return std::ranges::find_first_of(a, b) != a.end();
  }
  static bool independent(const Fault& a, const Fault& b) {
    return !share(a.set, b.set) && !share(a.set, b.against) && !share(a.against, b.set);
  }

  void expectStatus(const std::vector<const Fault*>& faults, QorStatus status) const {
    Args args = valid_;
    std::string names;
    for (const Fault* fault : faults) {
      for (const auto& set : fault->settings) set(args);
      names += (names.empty() ? "" : " and ") + fault->name;
    }
    std::vector<std::vector<std::byte>> before;
    for (const Watched& area : watched_) {
      const auto* bytes = static_cast<const std::byte*>(area.data);
      before.emplace_back(bytes, bytes + area.bytes);
    }
    EXPECT_EQ(call_(args), status) << names;
    for (std::size_t i = 0; i < watched_.size(); ++i) {
      EXPECT_EQ(std::memcmp(watched_[i].data, before[i].data(), watched_[i].bytes), 0) << names << ": area " << i << " was written";
    }
  }

  Args valid_;
  Call call_;
  std::vector<Watched> watched_;
  std::vector<Fault> faults_;
};

}  // namespace kit
