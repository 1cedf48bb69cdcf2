// Fault tables: what a family refuses, in the order in which it looks.
//
// A family describes one correct call (a struct of its arguments) and lists its faults in the order of its checks:
//
//   struct Args { const float* source; int32_t stride, height; float* result; int32_t width; };
//   kit::FaultTable<Args> table{valid, [](const Args& a) { return qorsSumColumn_32f_D2(a.source, ...); }, {result area}};
//   table.fault("null source", qorStatusNullPointer, [](Args& a) { a.source = nullptr; });
//   ...
//   table.check();
//
// check() makes the correct call (qorStatusOk or a warning), then each fault alone, then each pair: the fault listed first must
// decide. After every faulty call the watched areas hold what they held before. A name begins with the argument that it spoils
// ("width zero", "null source"); two faults of one argument are not paired, and neither are two of which one names the argument of
// the other ("stride below width", "width zero"): the second would undo the first.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <functional>
#include <string>
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

template <class Args>
class FaultTable {
 public:
  using Call = std::function<QorStatus(const Args&)>;
  using Spoil = std::function<void(Args&)>;

  FaultTable(Args valid, Call call, std::vector<Watched> watched)
      : valid_(std::move(valid)), call_(std::move(call)), watched_(std::move(watched)) {}

  FaultTable& fault(std::string name, QorStatus status, Spoil spoil) {
    faults_.push_back({std::move(name), status, std::move(spoil)});
    return *this;
  }

  void check() const {
    for (std::size_t i = 0; i < faults_.size(); ++i) {
      expectStatus({&faults_[i]}, faults_[i].status);
      for (std::size_t j = i + 1; j < faults_.size(); ++j) {
        if (independent(faults_[i].name, faults_[j].name)) expectStatus({&faults_[i], &faults_[j]}, faults_[i].status);
      }
    }
    EXPECT_GE(call_(valid_), 0) << "the call without a fault must succeed";
  }

 private:
  struct Fault {
    std::string name;
    QorStatus status;
    Spoil spoil;
  };

  static std::string argument(const std::string& name) {
    const std::string rest = name.starts_with("null ") ? name.substr(5) : name;
    return rest.substr(0, rest.find(' '));
  }

  static bool names(const std::string& fault, const std::string& argument) {
    return (" " + fault + " ").find(" " + argument + " ") != std::string::npos;
  }
  static bool independent(const std::string& a, const std::string& b) { return !names(a, argument(b)) && !names(b, argument(a)); }

  void expectStatus(const std::vector<const Fault*>& faults, QorStatus status) const {
    Args args = valid_;
    std::string names;
    for (const Fault* fault : faults) {
      fault->spoil(args);
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
