// Random models of many Gaussians, and what the plain model makes of them.
#pragma once

#include <vector>

#include "scoring/gaussian_cases.h"
#include "scoring/multi_mixture_calls.h"

namespace cases {

template <class T, class R>
struct Model {
  kit::Matrix<T> means, variances;
  kit::Area<T> x;
  kit::Area<R> vals;
  int32_t sf;

  Model(kit::Random& random, int32_t width, int32_t count, kit::Random::Kind kind, kit::Place place)
      : means(count, width, width + count % 3, place),
        variances(count, width, width + count % 3, place),
        x(random.vector<T>(width, kind), place),
        vals(count, place),
        sf(scaleFactor(random)) {
    means.fill(random, kind);
    variances.fill(random, kind);
    for (int32_t g = 0; g < count; ++g) vals[g] = val<R>(random);
  }

  std::vector<model::Frame<T>> frames(bool unit) const {
    std::vector<model::Frame<T>> f;
    for (int32_t g = 0; g < means.height(); ++g) {
      f.push_back({x.values(), row(means, g), unit ? std::vector<T>() : row(variances, g)});
    }
    return f;
  }
  ModelArgs<T, R> args(R* result) const {
    return {means.block(),
            variances.block(),
            means.constRows(),
            variances.constRows(),
            means.stride(),
            x.data(),
            means.width(),
            vals.data(),
            result,
            means.height(),
            sf};
  }
  bool untouched() const { return means.gapsKept() && variances.gapsKept() && x.edgesKept() && vals.edgesKept(); }
};

}  // namespace cases
