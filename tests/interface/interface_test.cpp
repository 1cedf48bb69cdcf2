// Every function of the public header, called as the description says: what it accepts, what it refuses, and that it touches no more
// than the areas that are described.
#include <csignal>
#include <cstdio>
#include <functional>

#include "interface/instance.h"
#include "kit/core.h"
#include "qorsr_status.h"

namespace interface_calls {
namespace {

// Statuses that blame the arguments. A call within its description gets none of them.
bool blamesArguments(QorStatus status) {
  static constexpr QorStatus kAll[] = {
      qorStatusBadArgument, qorStatusBadSize,    qorStatusNullPointer,    qorStatusNoMemory,     qorStatusBadFftOrder,
      qorStatusBadFftFlag,  qorStatusBadContext, qorStatusBadStride,      qorStatusBadFBankFlag, qorStatusBadFBankFrequency,
      qorStatusBadLength,   qorStatusBadMode,    qorStatusBadCodebookMode};
  return std::find(std::begin(kAll), std::end(kAll), status) != std::end(kAll);
}

std::string callInProgress;
void sayWhatTouched(int signal) {
  std::fprintf(stderr, "touched what is not described: %s\n", callInProgress.c_str());
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

class Described : public testing::TestWithParam<std::size_t> {
 protected:
  static void SetUpTestSuite() {
    std::signal(SIGSEGV, sayWhatTouched);
    std::signal(SIGBUS, sayWhatTouched);
  }
  const Function& function() const { return functions()[GetParam()]; }
  // The draws of a round, the same in every run and at every level.
  Draw draw(int round, int rubbish = 0) const {
    uint64_t stream = static_cast<uint64_t>(round);
    for (const char* letter = function().name; *letter != 0; ++letter) stream = stream * 31 + static_cast<uint64_t>(*letter);
    static constexpr Place kPlaces[] = {Place::kAtEnd, Place::kAtEnd, Place::kAtStart, Place::kOddStart};
    return {stream, kit::kKinds[round % 3], kPlaces[round % 4], round % 5 == 4, rubbish};
  }
  static QorStatus call(Instance& instance) {
    callInProgress = instance.text();
    return instance.call();
  }
};

constexpr int kRounds = 24;

TEST_P(Described, AcceptsAndTouchesWhatIsDescribed) {
  int useful = 0;
  for (int round = 0; round < kRounds; ++round) {
    Instance first(function(), draw(round)), second(function(), draw(round, 1));
    const QorStatus status = call(first);
    ASSERT_FALSE(blamesArguments(status)) << "status " << status << " from " << first.text();
    ASSERT_EQ(first.touched(true), "") << first.text();
    useful += status >= 0;
    ASSERT_EQ(call(second), status) << "with other rubbish in what is only written: " << first.text();
    ASSERT_EQ(second.touched(true), "") << first.text();
    for (std::size_t i = 0; i < first.areas().size(); ++i) {
      const LaidArea& area = first.areas()[i];
      if (area.parameter().element == Element::kRecord || !area.parameter().written) continue;
      if (status == qorStatusOk) {
        ASSERT_EQ(area.contents(), second.areas()[i].contents())
            << area.parameter().name << " is 'out' and was read, or not written whole: " << first.text();
      }
      if (status >= 0) area.digest();
    }
  }
  EXPECT_GT(useful, 0) << "no call of " << kRounds << " succeeded: say what the elements hold ('; each ...')";
}

TEST_P(Described, RefusesNull) {
  for (std::size_t i = 0; i < function().parameters.size(); ++i) {
    const Parameter& parameter = function().parameters[i];
    if (parameter.kind == Kind::kValue) continue;
    Instance instance(function(), draw(static_cast<int>(i)));
    instance.arguments()[i].pointer = nullptr;
    const QorStatus status = call(instance);
    if (parameter.mayBeNull) {
      EXPECT_FALSE(blamesArguments(status)) << "status " << status << " from " << instance.text();
      EXPECT_EQ(instance.touched(true), "") << instance.text();
    } else {
      EXPECT_EQ(status, qorStatusNullPointer) << instance.text();
      EXPECT_EQ(instance.touched(false), "") << instance.text();
    }
  }
}

TEST_P(Described, RefusesOtherValues) {
  for (int round = 0; round < 4; ++round) {
    for (std::size_t i = 0; i < function().parameters.size(); ++i) {
      const Instance example(function(), draw(round));
      for (const Argument& value : valuesOutside(function().parameters[i], example.numbers())) {
        Instance instance(function(), draw(round));
        instance.arguments()[i] = value;
        EXPECT_LT(call(instance), 0) << function().parameters[i].name << " is outside its values: " << instance.text();
        EXPECT_EQ(instance.touched(false), "") << instance.text();
      }
    }
  }
}

std::string name(const testing::TestParamInfo<std::size_t>& info) { return functions()[info.param].name; }
INSTANTIATE_TEST_SUITE_P(Interface, Described, testing::Range<std::size_t>(0, functions().size()), name);

// qorsr_status.h has the words of the public header.
TEST(Status, HasItsWords) {
  EXPECT_GT(statuses().size(), 30u);
  for (const Status& status : statuses()) {
    EXPECT_STREQ(qorStatusName(status.value), status.name);
    EXPECT_STREQ(qorStatusText(status.value), status.text);
  }
  EXPECT_STREQ(qorStatusName(12345), "unknown");
  EXPECT_STREQ(qorStatusText(12345), "No status of this library.");
}

TEST(Description, IsWhole) {
  for (const std::string& mistake : mistakes()) ADD_FAILURE() << mistake;
}

}  // namespace
}  // namespace interface_calls
