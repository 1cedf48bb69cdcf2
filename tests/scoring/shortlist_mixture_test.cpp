// Gaussian selection as it is used: short lists make the mask of the selected-mixture scorers.
#include <gtest/gtest.h>

#include <cmath>

#include "kit/compare.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

constexpr int32_t kGaussians = 50, kWidth = 13, kFrames = 24, kCells = 6;
constexpr int32_t kMaskBytes = (kGaussians + 7) / 8;
constexpr float kFloor = -1234.5F;

class ShortlistMixture : public testing::Test {
 protected:
  ShortlistMixture()
      : means_(random_.vector<float>(kGaussians * kWidth)),
        inverse_(kGaussians * kWidth),
        vals_(random_.vector<float>(kGaussians)),
        frames_(random_.vector<float>(kFrames * kWidth)),
        mask_(static_cast<std::size_t>(kFrames * kMaskBytes)) {
    for (float& v : inverse_) v = static_cast<float>(random_.real(0.005, 0.05));
  }

  // The mixture of the Gaussians whose bits are set, in double, from the scores of all of them.
  double expected(int32_t frame) const {
    std::vector<float> scores = vals_;
    EXPECT_EQ(qorsLogGaussMultiMix_32f_D2(means_.data(), inverse_.data(), kWidth, frames_.data() + frame * kWidth, kWidth,
                                          scores.data(), kGaussians),
              qorStatusOk);
    double sum = 0;
    for (int32_t g = 0; g < kGaussians; ++g) {
      const bool chosen = (mask_[static_cast<std::size_t>(frame * kMaskBytes + g / 8)] & (128 >> g % 8)) != 0;
      if (chosen) sum += std::exp(static_cast<double>(scores[static_cast<std::size_t>(g)]));
    }
    return sum > 0 ? std::log(sum) : static_cast<double>(kFloor);
  }

  // Rows of the mask.
  std::vector<uint8_t*> maskRows() {
    std::vector<uint8_t*> rows;
    for (int32_t f = 0; f < kFrames; ++f) rows.push_back(mask_.data() + f * kMaskBytes);
    return rows;
  }

  // All frames in one call gather their lists; one frame a call takes the plain road. Both meet the definition. Scores are of
  // magnitude 100, so their own rounding is some 1e-5, and each log addition adds 1.6e-7 and a rounding.
  void expectScores() {
    std::vector<float> gathered(kFrames), plain(kFrames);
    ASSERT_EQ(qorsLogGaussMixture_Select_32f_D2(frames_.data(), means_.data(), inverse_.data(), kWidth, kWidth, vals_.data(),
                                                mask_.data(), kGaussians, gathered.data(), kFrames, kFloor),
              qorStatusOk);
    std::vector<double> expectations;
    for (int32_t f = 0; f < kFrames; ++f) {
      expectations.push_back(expected(f));
      ASSERT_EQ(qorsLogGaussMixture_Select_32f_D2(frames_.data() + f * kWidth, means_.data(), inverse_.data(), kWidth, kWidth,
                                                  vals_.data(), mask_.data() + f * kMaskBytes, kGaussians,
                                                  &plain[static_cast<std::size_t>(f)], 1, kFloor),
                qorStatusOk);
    }
    EXPECT_TRUE(kit::within(gathered.data(), expectations.data(), kFrames, 2e-4));
    EXPECT_TRUE(kit::within(plain.data(), expectations.data(), kFrames, 2e-4));
  }

  kit::Random random_;
  std::vector<float> means_, inverse_, vals_, frames_;
  std::vector<uint8_t> mask_;
};

TEST_F(ShortlistMixture, AListForEachFrame) {
  std::vector<int32_t> counts, indices;
  for (int32_t f = 0; f < kFrames; ++f) {  // distinct indices: every third or so Gaussian from a start of its own
    const int32_t step = 2 + f % 4, start = f % step;
    counts.push_back((kGaussians - start + step - 1) / step);
    for (int32_t g = start; g < kGaussians; g += step) indices.push_back(g);
  }
  ASSERT_EQ(qorsFillShortlist_RowVar_1u(indices.data(), counts.data(), kGaussians, maskRows().data(), kFrames, kMaskBytes, 0),
            qorStatusOk);
  expectScores();
}

TEST_F(ShortlistMixture, AFrameForWhichNothingWasListedGetsTheFloor) {
  std::vector<int32_t> indices(kFrames * 2, 7);  // twice in each group: the bit is cleared again
  indices[0] = 3;                                // frame 0 keeps two Gaussians
  ASSERT_EQ(qorsFillShortlist_Row_1u(indices.data(), kGaussians, 2, maskRows().data(), kFrames, kMaskBytes, 0), qorStatusOk);
  expectScores();
  EXPECT_BITS(static_cast<float>(expected(1)), kFloor);
}

// Gaussians belong to cells of the feature space (one is in two of them); each frame names its two nearest cells, and the OR of
// their rows is its mask.
TEST_F(ShortlistMixture, CellsCondensedToTheMaskOfEachFrame) {
  constexpr int32_t kShift = 5, kStride = (kGaussians + kShift + 7) / 8;
  std::vector<uint8_t> cells(static_cast<std::size_t>(kCells * kStride));
  std::vector<uint8_t*> cellRows;
  std::vector<const uint8_t*> constRows;
  for (int32_t c = 0; c < kCells; ++c) cellRows.push_back(cells.data() + c * kStride);
  constRows.assign(cellRows.begin(), cellRows.end());
  std::vector<int32_t> cellOf, nearest;
  for (int32_t g = 0; g < kGaussians; ++g) {
    cellOf.push_back(g % kCells);
    cellOf.push_back((g + 1) % kCells);
  }
  ASSERT_EQ(qorsFillShortlist_Column_1u(cellOf.data(), 2, cellRows.data(), kCells, kStride, kShift, kGaussians), qorStatusOk);
  for (int32_t f = 0; f < kFrames; ++f) {
    nearest.push_back(static_cast<int32_t>(random_.integer(0, kCells - 1)));
    nearest.push_back(static_cast<int32_t>(random_.integer(0, kCells - 1)));
  }
  ASSERT_EQ(
      qorsBuildSignTable_8u1u(nearest.data(), 2, constRows.data(), kCells, kStride, kShift, mask_.data(), kFrames, kGaussians),
      qorStatusOk);
  for (int32_t f = 0; f < kFrames; ++f) {
    for (int32_t g = 0; g < kGaussians; ++g) {
      const auto inCell = [&](int32_t c) { return c == g % kCells || c == (g + 1) % kCells; };
      const std::size_t at = static_cast<std::size_t>(2 * f);
      EXPECT_EQ((mask_[static_cast<std::size_t>(f * kMaskBytes + g / 8)] >> (7 - g % 8)) & 1,
                inCell(nearest[at]) || inCell(nearest[at + 1]) ? 1 : 0);
    }
  }
  expectScores();
}

}  // namespace
