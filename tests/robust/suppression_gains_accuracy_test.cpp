// How far the tables of the amplitude gain are from their function: the error that the documentation states.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "kit/accuracy.h"
#include "model/suppression_gains.h"
#include "qorsr.h"

namespace {

// With a prior of 1 the gain is F(posterior). Below 3.2e-5, q has few values.
TEST(SuppressionGainsAccuracy, OfTheTables) {
  std::vector<float> posterior;
  for (double v = 3.2e-5; v < 100; v *= 1.001) posterior.push_back(static_cast<float>(v));
  const auto length = static_cast<int32_t>(posterior.size());
  const std::vector<float> prior(posterior.size(), 1.0F);
  std::vector<float> gain(posterior.size());
  ASSERT_EQ(qorsFilterUpdateEMNS_32f(prior.data(), posterior.data(), gain.data(), length), qorStatusOk);
  kit::LargestError largest;
  for (std::size_t i = 0; i < gain.size(); ++i)
    largest.addRelative(static_cast<long double>(gain[i]), model::amplitudeRatio(static_cast<long double>(posterior[i])));
  largest.expectDocumented(0.0070L);
}

}  // namespace
